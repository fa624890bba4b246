// The activator of the bundle that makes sources for ui::core::create_source:
// it registers one creator service for each of the three kinds of key.

#include <memory>
#include <tuple>

#include "cppmicroservices/BundleActivator.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/ServiceProperties.h"
#include "sources.h"

namespace source_bundle {
namespace {

using ui::core::Source;
using ui::core::SourceCreatorService;

class LocationCreator final : public SourceCreatorService<krel::Location> {
 public:
  std::unique_ptr<Source> create(const krel::Location& key) override {
    return make_location_source(key);
  }
};

class BlockCreator final : public SourceCreatorService<krel::DravikId> {
 public:
  std::unique_ptr<Source> create(const krel::DravikId& key) override {
    return make_block_source(key);
  }
};

class OpenDialogCreator final : public SourceCreatorService<std::tuple<krel::DravikId, bool>> {
 public:
  std::unique_ptr<Source> create(const std::tuple<krel::DravikId, bool>& key) override {
    return make_open_dialog_source(std::get<0>(key), std::get<1>(key));
  }
};

class Activator final : public cppmicroservices::BundleActivator {
 public:
  void Start(cppmicroservices::BundleContext context) override {
    // These creators are the fallback of an installation: any creator that an
    // application registers with the default ranking (0) outranks them,
    // whether it was registered before or after this bundle started.
    const cppmicroservices::ServiceProperties fallback{
        {cppmicroservices::Constants::SERVICE_RANKING, cppmicroservices::Any(-1000)}};
    location_ = context.RegisterService<SourceCreatorService<krel::Location>>(
        std::make_shared<LocationCreator>(), fallback);
    block_ = context.RegisterService<SourceCreatorService<krel::DravikId>>(
        std::make_shared<BlockCreator>(), fallback);
    dialog_ = context.RegisterService<SourceCreatorService<std::tuple<krel::DravikId, bool>>>(
        std::make_shared<OpenDialogCreator>(), fallback);
  }

  // The framework withdraws whatever is still registered when it stops.
  void Stop(cppmicroservices::BundleContext) override {}

 private:
  cppmicroservices::ServiceRegistration<SourceCreatorService<krel::Location>> location_;
  cppmicroservices::ServiceRegistration<SourceCreatorService<krel::DravikId>> block_;
  cppmicroservices::ServiceRegistration<SourceCreatorService<std::tuple<krel::DravikId, bool>>>
      dialog_;
};

}  // namespace
}  // namespace source_bundle

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(source_bundle::Activator)
