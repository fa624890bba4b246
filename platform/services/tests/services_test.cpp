#include "cppmicroservices/BundleContext.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "cppmicroservices/BundleActivator.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceInterface.h"

namespace svc_test {

struct Clock {
  virtual ~Clock() = default;
  virtual int now() const = 0;
};

template <class T>
struct Box {
  virtual ~Box() = default;
};

struct Named {
  virtual ~Named() = default;
};

struct Unnamed {
  virtual ~Unnamed() = default;
};

}  // namespace svc_test

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(svc_test::Named, "org.example.Named/1.0")
CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(svc_test::Unnamed, "")

namespace {

using cppmicroservices::Any;
using cppmicroservices::BundleContext;
using cppmicroservices::Framework;
using cppmicroservices::FrameworkFactory;
using cppmicroservices::ServiceProperties;
using svc_test::Clock;

// A clock that tells which one it is, and counts its live instances.
std::atomic<int> live_clocks{0};

class FixedClock : public Clock {
 public:
  explicit FixedClock(int value) : value_(value) { ++live_clocks; }
  ~FixedClock() override { --live_clocks; }
  int now() const override { return value_; }

 private:
  int value_;
};

ServiceProperties ranked(int ranking) {
  return {{cppmicroservices::Constants::SERVICE_RANKING, Any(ranking)}};
}

// A started framework of its own for each test.
class Registry : public ::testing::Test {
 protected:
  Registry() : framework_(FrameworkFactory().NewFramework()) {
    framework_.Start();
    context_ = framework_.GetBundleContext();
  }
  ~Registry() override { framework_.Stop(); }

  int current_clock() {
    auto ref = context_.GetServiceReference<Clock>();
    if (!ref) return -1;
    return context_.GetService(ref)->now();
  }

  Framework framework_;
  BundleContext context_;
};

// Runs `fn` on another thread and fails the whole run if it never returns:
// a call that deadlocks on the registry's lock would otherwise hang the test.
template <class Fn>
::testing::AssertionResult returns_without_deadlock(Fn fn) {
  auto done = std::make_shared<std::promise<void>>();
  auto result = done->get_future();
  std::thread([fn = std::move(fn), done]() mutable {
    try {
      fn();
      done->set_value();
    } catch (...) {
      done->set_exception(std::current_exception());
    }
  }).detach();
  if (result.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
    std::fprintf(stderr, "the call did not return: the registry deadlocked\n");
    std::_Exit(1);
  }
  try {
    result.get();
  } catch (const std::exception& e) {
    return ::testing::AssertionFailure() << "threw " << e.what();
  }
  return ::testing::AssertionSuccess();
}

TEST(ServiceInterface, DefaultIdIsTheDemangledTypeName) {
  EXPECT_EQ(us_service_interface_iid<svc_test::Clock>(), "svc_test::Clock");
  EXPECT_EQ(us_service_interface_iid<svc_test::Box<int>>(), "svc_test::Box<int>");
  EXPECT_EQ(cppmicroservices::detail::GetDemangledName(typeid(svc_test::Box<long>)),
            "svc_test::Box<long>");
}

TEST(ServiceInterface, DeclarationReplacesTheDefaultId) {
  EXPECT_EQ(us_service_interface_iid<svc_test::Named>(), "org.example.Named/1.0");
  EXPECT_EQ(us_service_interface_iid<void>(), "");
}

TEST_F(Registry, EmptyInterfaceIdIsAServiceException) {
  const std::string expected =
      "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro";
  try {
    (void)context_.GetServiceReference<svc_test::Unnamed>();
    FAIL() << "no exception";
  } catch (const cppmicroservices::ServiceException& e) {
    EXPECT_EQ(std::string(e.what()), expected);
  }
  try {
    (void)context_.RegisterService<svc_test::Unnamed>(std::make_shared<svc_test::Unnamed>());
    FAIL() << "no exception";
  } catch (const cppmicroservices::ServiceException& e) {
    EXPECT_EQ(std::string(e.what()), expected);
  }
  static_assert(std::is_base_of_v<std::runtime_error, cppmicroservices::ServiceException>);
}

TEST_F(Registry, DeclaredIdIsWhatProvidersAndUsersMeetUnder) {
  auto reg = context_.RegisterService<svc_test::Named>(std::make_shared<svc_test::Named>());
  auto ref = context_.GetServiceReference<svc_test::Named>();
  ASSERT_TRUE(ref);
  EXPECT_EQ(ref.GetInterfaceId(), "org.example.Named/1.0");
}

TEST(BundleContext, DefaultConstructedContextReadsInvalidAndRefusesUse) {
  BundleContext context;
  EXPECT_FALSE(context);
  EXPECT_THROW((void)context.GetServiceReference<Clock>(), std::runtime_error);
  EXPECT_THROW((void)context.RegisterService<Clock>(std::make_shared<FixedClock>(1)),
               std::runtime_error);
}

TEST(Framework, ContextIsValidOnlyWhileTheFrameworkRuns) {
  Framework framework = FrameworkFactory().NewFramework();
  EXPECT_FALSE(framework.GetBundleContext());
  framework.Start();
  BundleContext first_run = framework.GetBundleContext();
  EXPECT_TRUE(first_run);
  framework.Start();  // a running framework stays as it is
  EXPECT_TRUE(first_run);
  framework.Stop();
  EXPECT_FALSE(first_run);
  EXPECT_FALSE(framework.GetBundleContext());
  framework.Start();
  EXPECT_FALSE(first_run) << "a context of an earlier run came back to life";
  EXPECT_TRUE(framework.GetBundleContext());
  framework.Stop();
  framework.Stop();  // stopping a stopped framework does nothing
  EXPECT_FALSE(Framework().GetBundleContext());
  EXPECT_THROW(Framework().Start(), std::logic_error);
}

TEST_F(Registry, LookupWithoutAServiceGivesAnInvalidReference) {
  auto ref = context_.GetServiceReference<Clock>();
  EXPECT_FALSE(ref);
  EXPECT_TRUE(ref.GetInterfaceId().empty());
  EXPECT_THROW((void)context_.GetService(ref), std::invalid_argument);
  EXPECT_THROW(
      (void)context_.GetService(static_cast<const cppmicroservices::ServiceReferenceBase&>(ref)),
      std::invalid_argument);
}

TEST_F(Registry, GetServiceReturnsTheRegisteredObject) {
  auto clock = std::make_shared<FixedClock>(7);
  auto reg = context_.RegisterService<Clock>(clock);
  auto ref = context_.GetServiceReference<Clock>();
  ASSERT_TRUE(ref);
  EXPECT_EQ(ref.GetInterfaceId(), "svc_test::Clock");
  std::shared_ptr<Clock> typed = context_.GetService(ref);
  EXPECT_EQ(typed.get(), clock.get());
  std::shared_ptr<void> untyped =
      context_.GetService(static_cast<const cppmicroservices::ServiceReferenceBase&>(ref));
  EXPECT_EQ(static_cast<Clock*>(untyped.get()), clock.get());
  EXPECT_EQ(typed->now(), 7);
}

// The interface is the second base, so its address differs from the object's.
struct Logger {
  virtual ~Logger() = default;
  virtual std::string name() const = 0;
};
struct ClockAndLogger : Logger, Clock {
  int now() const override { return 42; }
  std::string name() const override { return "both"; }
};

TEST_F(Registry, UntypedServiceIsTheInterfacePartOfTheObject) {
  auto both = std::make_shared<ClockAndLogger>();
  auto reg = context_.RegisterService<Clock>(both);
  auto ref = context_.GetServiceReference<Clock>();
  std::shared_ptr<void> untyped =
      context_.GetService(static_cast<const cppmicroservices::ServiceReferenceBase&>(ref));
  EXPECT_EQ(untyped.get(), static_cast<void*>(static_cast<Clock*>(both.get())));
  EXPECT_EQ(static_cast<Clock*>(untyped.get())->now(), 42);
}

TEST_F(Registry, RegisteringAnEmptyPointerIsRefused) {
  EXPECT_THROW((void)context_.RegisterService<Clock>(std::shared_ptr<FixedClock>()),
               std::invalid_argument);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

TEST_F(Registry, HighestRankingWins) {
  auto low = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1), ranked(1));
  auto high = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2), ranked(5));
  auto middle = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(3));
  EXPECT_EQ(current_clock(), 2);
  high.Unregister();
  EXPECT_EQ(current_clock(), 3);
  middle.Unregister();
  EXPECT_EQ(current_clock(), 1);
}

TEST_F(Registry, EqualRankingsPreferTheFirstRegistered) {
  auto first = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1), ranked(4));
  auto second = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2), ranked(4));
  auto third = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(4));
  EXPECT_EQ(current_clock(), 1);
  first.Unregister();
  EXPECT_EQ(current_clock(), 2);
}

TEST_F(Registry, MissingOrNonIntRankingCountsAsZero) {
  auto text = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1),
                                              {{"service.ranking", Any(std::string("9"))}});
  auto none = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2));
  auto negative = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(-1));
  EXPECT_EQ(current_clock(), 1);  // 0, registered first
  text.Unregister();
  EXPECT_EQ(current_clock(), 2);
  none.Unregister();
  EXPECT_EQ(current_clock(), 3);
}

TEST_F(Registry, UnregisteredServiceIsNoLongerFound) {
  auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1));
  auto ref = context_.GetServiceReference<Clock>();
  ASSERT_TRUE(ref);
  reg.Unregister();
  EXPECT_FALSE(ref);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
  EXPECT_EQ(context_.GetService(ref), nullptr);
  EXPECT_THROW(reg.Unregister(), std::logic_error);
  EXPECT_THROW(cppmicroservices::ServiceRegistration<Clock>().Unregister(), std::logic_error);
}

TEST_F(Registry, UnregisterReleasesTheRegistrysReferenceOnly) {
  const int before = live_clocks;
  auto clock = std::make_shared<FixedClock>(1);
  auto reg = context_.RegisterService<Clock>(clock);
  std::shared_ptr<Clock> held = context_.GetService(context_.GetServiceReference<Clock>());
  clock.reset();
  reg.Unregister();
  EXPECT_EQ(live_clocks, before + 1) << "a user's reference must keep the object alive";
  EXPECT_EQ(held->now(), 1);
  held.reset();
  EXPECT_EQ(live_clocks, before);
}

// A service whose destructor uses the registry it was registered in.
class RegistryUsingClock : public Clock {
 public:
  RegistryUsingClock(BundleContext context, std::atomic<int>& seen)
      : context_(context), seen_(seen) {}
  ~RegistryUsingClock() override {
    if (!context_) {
      seen_ = -2;
      return;
    }
    auto successor = context_.RegisterService<Clock>(std::make_shared<FixedClock>(99));
    auto ref = context_.GetServiceReference<Clock>();
    seen_ = ref ? context_.GetService(ref)->now() : -1;
    successor.Unregister();
  }
  int now() const override { return 5; }

 private:
  BundleContext context_;
  std::atomic<int>& seen_;
};

TEST_F(Registry, ServiceDestructorMayUseTheRegistryDuringUnregister) {
  std::atomic<int> seen{0};
  auto reg = context_.RegisterService<Clock>(std::make_shared<RegistryUsingClock>(context_, seen));
  EXPECT_TRUE(returns_without_deadlock([&] { reg.Unregister(); }));
  EXPECT_EQ(seen, 99);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

TEST(Framework, StopReleasesServicesOutsideTheLockLastRegisteredFirst) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  BundleContext context = framework.GetBundleContext();
  std::vector<int> order;
  struct Recording : Clock {
    Recording(int id, BundleContext c, std::vector<int>& o) : id_(id), context_(c), order_(o) {}
    ~Recording() override {
      // The context reads invalid, and asking it must not wait for the lock.
      order_.push_back(context_ ? -id_ : id_);
      try {
        (void)context_.GetServiceReference<Clock>();
        order_.push_back(0);
      } catch (const std::runtime_error&) {
      }
    }
    int now() const override { return id_; }
    int id_;
    BundleContext context_;
    std::vector<int>& order_;
  };
  auto r1 = context.RegisterService<Clock>(std::make_shared<Recording>(1, context, order));
  auto r2 = context.RegisterService<Clock>(std::make_shared<Recording>(2, context, order));
  auto r3 = context.RegisterService<Clock>(std::make_shared<Recording>(3, context, order));
  auto ref = context.GetServiceReference<Clock>();
  EXPECT_TRUE(returns_without_deadlock([&] { framework.Stop(); }));
  EXPECT_EQ(order, (std::vector<int>{3, 2, 1}));
  EXPECT_FALSE(ref);
  EXPECT_FALSE(context);
  EXPECT_THROW(r1.Unregister(), std::logic_error);
  EXPECT_THROW((void)context.RegisterService<Clock>(std::make_shared<FixedClock>(1)),
               std::runtime_error);
  EXPECT_THROW((void)context.GetService(ref), std::runtime_error);
}

// A property value whose copy looks at the registry: the registry copies
// properties before it takes its lock.
struct Inspecting {
  Inspecting(BundleContext* c) : context(c) {}
  Inspecting(const Inspecting& other) : context(other.context) {
    if (context) (void)context->GetServiceReference<Clock>();
  }
  BundleContext* context;
};

TEST_F(Registry, CopyingAPropertyValueMayUseTheRegistry) {
  ServiceProperties props{{"inspector", Any(Inspecting(nullptr))}};
  props.at("inspector") = Any(Inspecting(&context_));
  EXPECT_TRUE(returns_without_deadlock([&] {
    auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), props);
    reg.Unregister();
  }));
}

// An activator as a bundle writes it; the macro defines the factory a loader
// would look up by name.
class TestActivator : public cppmicroservices::BundleActivator {
 public:
  void Start(BundleContext context) override {
    reg_ = context.RegisterService<Clock>(std::make_shared<FixedClock>(11));
  }
  void Stop(BundleContext) override { reg_.Unregister(); }

 private:
  cppmicroservices::ServiceRegistration<Clock> reg_;
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(TestActivator)

namespace {

TEST_F(Registry, ExportedFactoryCreatesAnActivatorThatRegistersAndWithdraws) {
  EXPECT_STREQ(cppmicroservices::detail::bundle_activator_factory,
               "cppmicroservices_create_bundle_activator");
  cppmicroservices::detail::BundleActivatorFactory factory =
      &cppmicroservices_create_bundle_activator;
  std::unique_ptr<cppmicroservices::BundleActivator> activator(factory());
  activator->Start(context_);
  EXPECT_EQ(current_clock(), 11);
  activator->Stop(context_);
  EXPECT_EQ(current_clock(), -1);
}

TEST_F(Registry, ConcurrentRegistrationLookupAndWithdrawalAreSafe) {
  constexpr int threads = 4;
  constexpr int rounds = 500;
  std::atomic<int> wrong{0};
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([&, t] {
      for (int i = 0; i < rounds; ++i) {
        auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(t), ranked(t));
        auto ref = context_.GetServiceReference<Clock>();
        // Our own service is registered, so some service is always found,
        // though another thread may withdraw the one found at any moment.
        if (ref.GetInterfaceId() != "svc_test::Clock") ++wrong;
        auto service = context_.GetService(ref);
        if (service && (service->now() < 0 || service->now() >= threads)) ++wrong;
        reg.Unregister();
      }
    });
  }
  for (auto& w : workers) w.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

}  // namespace
