// The lookup behind create_source, with the registry changing between the
// reference and the object: a service withdrawn, or the framework stopped,
// right after its reference was found.

#include "source/service_lookup_impl.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceInterface.h"

namespace lookup_test {

struct Greeter {
  virtual ~Greeter() = default;
  virtual std::string greet() const = 0;
};

struct Hello final : Greeter {
  std::string greet() const override { return "hello"; }
};

// An interface declared with an empty id, which no registry can look up.
struct Nameless {
  virtual ~Nameless() = default;
};

}  // namespace lookup_test

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(lookup_test::Nameless, "")

namespace {

using lookup_test::Greeter;
using ui::core::detail::find_service_object;

class ServiceLookup : public ::testing::Test {
 protected:
  ServiceLookup() : framework_(cppmicroservices::FrameworkFactory().NewFramework()) {
    framework_.Start();
    context_ = framework_.GetBundleContext();
  }
  ~ServiceLookup() override {
    framework_.Stop();
    (void)framework_.WaitForStop(std::chrono::milliseconds::zero());
  }

  cppmicroservices::Framework framework_;
  cppmicroservices::BundleContext context_;
};

TEST_F(ServiceLookup, FindsTheRegisteredObject) {
  auto hello = std::make_shared<lookup_test::Hello>();
  auto registration = context_.RegisterService<Greeter>(hello);
  std::shared_ptr<Greeter> found = find_service_object<Greeter>(context_);
  ASSERT_TRUE(found);
  EXPECT_EQ(found.get(), hello.get());
  EXPECT_EQ(found->greet(), "hello");
  registration.Unregister();
}

TEST_F(ServiceLookup, NothingRegisteredGivesNoObject) {
  EXPECT_EQ(find_service_object<Greeter>(context_), nullptr);
}

TEST_F(ServiceLookup, InvalidContextGivesNoObject) {
  EXPECT_EQ(find_service_object<Greeter>(cppmicroservices::BundleContext()), nullptr);
  cppmicroservices::BundleContext stale = context_;
  framework_.Stop();
  (void)framework_.WaitForStop(std::chrono::milliseconds::zero());
  EXPECT_EQ(find_service_object<Greeter>(stale), nullptr);
}

TEST_F(ServiceLookup, ServiceWithdrawnAfterItsReferenceWasFoundGivesNoObject) {
  auto registration = context_.RegisterService<Greeter>(std::make_shared<lookup_test::Hello>());
  bool withdrawn = false;
  std::shared_ptr<Greeter> found;
  EXPECT_NO_THROW(found = find_service_object<Greeter>(context_, [&] {
                    registration.Unregister();
                    withdrawn = true;
                  }));
  EXPECT_TRUE(withdrawn);
  EXPECT_EQ(found, nullptr);
}

TEST_F(ServiceLookup, FrameworkStoppedAfterTheReferenceWasFoundGivesNoObject) {
  auto registration = context_.RegisterService<Greeter>(std::make_shared<lookup_test::Hello>());
  std::shared_ptr<Greeter> found;
  EXPECT_NO_THROW(found = find_service_object<Greeter>(context_, [&] {
                    framework_.Stop();
                    (void)framework_.WaitForStop(std::chrono::milliseconds::zero());
                  }));
  EXPECT_EQ(found, nullptr);
}

TEST_F(ServiceLookup, OtherRegistryFailuresGoThrough) {
  EXPECT_THROW((void)find_service_object<lookup_test::Nameless>(context_),
               cppmicroservices::ServiceException);
}

}  // namespace
