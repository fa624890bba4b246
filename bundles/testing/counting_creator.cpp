// A bundle of the set kalder_ui_create_source that reports its starts and
// provides only the creator for locations.

#include <memory>

#include "cppmicroservices/BundleActivator.h"
#include "probe.h"
#include "sources.h"

namespace {

class LocationCreator final : public ui::core::SourceCreatorService<krel::Location> {
 public:
  std::unique_ptr<ui::core::Source> create(const krel::Location& key) override {
    return source_bundle::make_location_source(key);
  }
};

class Activator final : public cppmicroservices::BundleActivator {
 public:
  void Start(cppmicroservices::BundleContext context) override {
    bundle_probe::record(bundle_probe::Event::start_called, "counting");
    (void)context.RegisterService<ui::core::SourceCreatorService<krel::Location>>(
        std::make_shared<LocationCreator>());
    bundle_probe::record(bundle_probe::Event::started, "counting");
  }
  void Stop(cppmicroservices::BundleContext) override {
    bundle_probe::record(bundle_probe::Event::stopped, "counting");
  }
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
