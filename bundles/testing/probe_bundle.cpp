// A bundle that registers a Marker service and reports its start and stop.

#include <memory>

#include "cppmicroservices/BundleActivator.h"
#include "probe.h"

namespace {

class ProbeMarker final : public bundle_probe::Marker {
 public:
  std::string bundle() const override { return "probe"; }
};

class Activator final : public cppmicroservices::BundleActivator {
 public:
  void Start(cppmicroservices::BundleContext context) override {
    bundle_probe::record(bundle_probe::Event::start_called, "probe");
    marker_ = context.RegisterService<bundle_probe::Marker>(std::make_shared<ProbeMarker>());
    bundle_probe::record(bundle_probe::Event::started, "probe");
  }

  void Stop(cppmicroservices::BundleContext context) override {
    // The context is still valid while bundles stop.
    if (context) marker_.Unregister();
    bundle_probe::record(bundle_probe::Event::stopped, "probe");
  }

 private:
  cppmicroservices::ServiceRegistration<bundle_probe::Marker> marker_;
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
