// The activator of the scripted test bundles (see test_bundle_api.h); built
// once per bundle, each with its own US_BUNDLE_NAME.

#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "cppmicroservices/BundleActivator.h"
#include "cppmicroservices/BundleContext.h"
#include "test_bundle_api.h"

namespace {

const std::string kBundle = US_STR(US_BUNDLE_NAME);

class NamedMarker final : public services_test::Marker {
 public:
  NamedMarker(std::string name, services_test::Script* script)
      : name_(std::move(name)), script_(script) {}
  ~NamedMarker() override {
    if (script_ != nullptr) script_->record("release " + name_);
  }
  std::string name() const override { return name_; }

 private:
  std::string name_;
  services_test::Script* script_;
};

void act(const std::string& action) {
  const std::string runtime_error = "runtime_error:";
  if (action.empty()) return;
  if (action == "int") throw 42;
  if (action == "system_error") {
    throw std::system_error(std::make_error_code(std::errc::permission_denied), "denied");
  }
  if (action.compare(0, runtime_error.size(), runtime_error) == 0) {
    throw std::runtime_error(action.substr(runtime_error.size()));
  }
  throw std::logic_error("unknown action " + action);
}

class Activator final : public cppmicroservices::BundleActivator {
 public:
  ~Activator() override {
    if (script_ != nullptr) script_->record("destroy " + kBundle);
  }

  void Start(cppmicroservices::BundleContext context) override {
    // The test's Script outlives the bundle, so a plain pointer is kept.
    if (auto ref = context.GetServiceReference<services_test::Script>()) {
      script_ = context.GetService(ref).get();
    }
    if (script_ != nullptr) {
      script_->record("start " + kBundle);
      script_->keep_context(kBundle, context);
    }
    first_ = context.RegisterService<services_test::Marker>(
        std::make_shared<NamedMarker>(kBundle + "/1", script_));
    second_ = context.RegisterService<services_test::Marker>(
        std::make_shared<NamedMarker>(kBundle + "/2", script_));
    if (script_ != nullptr) act(script_->start_action(kBundle));
  }

  void Stop(cppmicroservices::BundleContext context) override {
    if (script_ == nullptr) return;
    script_->record("stop " + kBundle + (context ? "" : " with an invalid context"));
    act(script_->stop_action(kBundle));
  }

 private:
  services_test::Script* script_ = nullptr;
  cppmicroservices::ServiceRegistration<services_test::Marker> first_;
  cppmicroservices::ServiceRegistration<services_test::Marker> second_;
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
