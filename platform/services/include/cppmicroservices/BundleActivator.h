// cppmicroservices/BundleActivator.h - the entry point of a bundle
//
// A bundle is a shared library that registers services when it is started.
// Its activator class says what to do on start and stop, and one source file
// of the library exports it with CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR,
// written once at global scope (no semicolon after it). The library is built
// with US_BUNDLE_NAME defined to the bundle's name (ui_core_add_bundle does
// that); this header refuses to compile without it.
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
// The macro defines two extern "C" functions named after the bundle,
// US_CREATE_ACTIVATOR_FUNC(US_BUNDLE_NAME) (creates the activator with new)
// and US_DESTROY_ACTIVATOR_FUNC(US_BUNDLE_NAME) (deletes it); the framework
// finds them in the library when it starts the bundle. A bundle without
// them has no activator and starts all the same.

#ifndef CPPMICROSERVICES_BUNDLEACTIVATOR_H
#define CPPMICROSERVICES_BUNDLEACTIVATOR_H

#ifndef US_BUNDLE_NAME
#error Missing US_BUNDLE_NAME preprocessor define
#endif

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/GlobalConfig.h"

namespace cppmicroservices {

/// Ownership: created and destroyed by the framework through the exported
/// functions. Threads: Start and Stop are called one after the other, on the
/// thread that starts or stops the bundle.
struct BundleActivator {
  virtual ~BundleActivator() = default;

  /// Called when the bundle starts, with the bundle's own context; typically
  /// registers the bundle's services. An exception makes the start fail:
  /// the services registered so far are withdrawn and the context invalidated.
  virtual void Start(BundleContext context) = 0;

  /// Called when the bundle stops, with the same context, before the
  /// framework withdraws the bundle's remaining services.
  virtual void Stop(BundleContext context) = 0;
};

}  // namespace cppmicroservices

#define CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(_activator_type)                       \
  extern "C" US_ABI_EXPORT cppmicroservices::BundleActivator* US_CREATE_ACTIVATOR_FUNC( \
      US_BUNDLE_NAME)();                                                                \
  extern "C" US_ABI_EXPORT cppmicroservices::BundleActivator* US_CREATE_ACTIVATOR_FUNC( \
      US_BUNDLE_NAME)() {                                                               \
    return new _activator_type();                                                       \
  }                                                                                     \
  extern "C" US_ABI_EXPORT void US_DESTROY_ACTIVATOR_FUNC(US_BUNDLE_NAME)(              \
      cppmicroservices::BundleActivator * activator);                                   \
  extern "C" US_ABI_EXPORT void US_DESTROY_ACTIVATOR_FUNC(US_BUNDLE_NAME)(              \
      cppmicroservices::BundleActivator * activator) {                                  \
    delete activator;                                                                   \
  }

#endif  // CPPMICROSERVICES_BUNDLEACTIVATOR_H
