// cppmicroservices/BundleActivator.h - the entry point of a bundle
//
// A bundle is a shared library that registers services when it is started.
// Its activator class says what to do on start and stop, and the library
// exports it with CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR, written once at
// global scope in one of its source files (no semicolon after it):
//
//   class Activator : public cppmicroservices::BundleActivator {
//     void Start(cppmicroservices::BundleContext context) override {
//       reg_ = context.RegisterService<Clock>(std::make_shared<SystemClock>());
//     }
//     void Stop(cppmicroservices::BundleContext) override {}
//     cppmicroservices::ServiceRegistration<Clock> reg_;
//   };
//   CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
//
// The macro defines an extern "C" function, named by
// detail::bundle_activator_factory, that creates the activator with `new`; a
// loader finds it in the library with dlsym and owns the object it returns.

#ifndef CPPMICROSERVICES_BUNDLEACTIVATOR_H
#define CPPMICROSERVICES_BUNDLEACTIVATOR_H

#include "cppmicroservices/BundleContext.h"

namespace cppmicroservices {

/// Ownership: created by the bundle's factory, owned and destroyed by the
/// loader. Threads: Start and Stop are called once each, one after the other.
struct BundleActivator {
  virtual ~BundleActivator() = default;

  /// Called when the bundle starts; typically registers the bundle's
  /// services. An exception leaves the bundle not started.
  virtual void Start(BundleContext context) = 0;

  /// Called when the bundle stops, before its framework withdraws the
  /// services that are still registered.
  virtual void Stop(BundleContext context) = 0;
};

namespace detail {

/// The signature and the exported name of the factory the export macro defines.
using BundleActivatorFactory = BundleActivator* (*)();
inline constexpr const char* bundle_activator_factory = "cppmicroservices_create_bundle_activator";

}  // namespace detail
}  // namespace cppmicroservices

#define CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(_activator_type)                        \
  extern "C" __attribute__((visibility("default"))) ::cppmicroservices::BundleActivator* \
  cppmicroservices_create_bundle_activator() {                                           \
    return new _activator_type();                                                        \
  }

#endif  // CPPMICROSERVICES_BUNDLEACTIVATOR_H
