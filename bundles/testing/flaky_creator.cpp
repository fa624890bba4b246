// A bundle of the set kalder_ui_create_source whose first start fails, as a
// bundle does whose resources are not ready yet; later starts succeed.

#include <memory>
#include <stdexcept>

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
    bundle_probe::record(bundle_probe::Event::start_called, "flaky");
    if (bundle_probe::count(bundle_probe::Event::start_called, "flaky") == 1) {
      throw std::runtime_error("the flaky bundle refuses its first start");
    }
    (void)context.RegisterService<ui::core::SourceCreatorService<krel::Location>>(
        std::make_shared<LocationCreator>());
    bundle_probe::record(bundle_probe::Event::started, "flaky");
  }
  void Stop(cppmicroservices::BundleContext) override {}
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
