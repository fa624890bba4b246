// cppmicroservices/BundleContext.h - a bundle's way into its framework
//
// A BundleContext belongs to one bundle (or to the framework itself, which
// is a bundle too): through it the bundle registers service objects under
// interfaces, looks up the best service of an interface, and installs
// further bundles. Services registered through a bundle's context are
// withdrawn when that bundle stops.
//
//   auto reg = context.RegisterService<Clock>(std::make_shared<SystemClock>(),
//                                             {{Constants::SERVICE_RANKING, Any(10)}});
//   if (auto ref = context.GetServiceReference<Clock>()) {
//     std::shared_ptr<Clock> clock = context.GetService(ref);
//   }
//
// A context is valid while its bundle is starting, active or stopping, and
// the framework's own context while the framework runs (after Init or
// Start, until it stops). A context that is not valid reads false, and every
// operation on it throws IllegalStateException("The bundle context is no
// longer valid"); a default-constructed context is never valid. A context of
// an earlier run of a framework stays invalid when the framework is started
// again.
//
// The framework never runs code of its users (a service object's destructor,
// the copy of a property value, an activator) while it holds a lock of the
// service registry, so such code may use the framework itself.

#ifndef CPPMICROSERVICES_BUNDLECONTEXT_H
#define CPPMICROSERVICES_BUNDLECONTEXT_H

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "cppmicroservices/GlobalConfig.h"
#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"

namespace cppmicroservices {

class Bundle;
class BundleContextPrivate;

/// Ownership: a handle; copies are the same context. Threads: any number of
/// threads may register, look up, unregister and install at once; one
/// object is like an int.
class BundleContext {
 public:
  /// A context of nothing; it reads false.
  BundleContext();

  /// Equal when both are the same valid context, or both are not valid.
  bool operator==(BundleContext const& rhs) const;
  bool operator!=(BundleContext const& rhs) const;

  /// Orders valid contexts among themselves; a context that is not valid
  /// is greatest.
  bool operator<(BundleContext const& rhs) const;

  /// True while the context is valid (see the top of this file).
  explicit operator bool() const;

  BundleContext& operator=(std::nullptr_t);

  /// The bundle this context belongs to.
  Bundle GetBundle() const;

  /// Registers the object whose interface pointers `service` holds, under
  /// each of their ids, with a copy of `properties`. Throws
  /// std::invalid_argument("Can't register empty InterfaceMap as a service")
  /// for a null or empty map, std::invalid_argument("Can't register as null
  /// class") when an id is empty or a pointer null, std::runtime_error
  /// ("Properties contain case variants of the key: NAME") when two property
  /// names differ only in case, and std::invalid_argument("SERVICE_RANKING
  /// property has unexpected value type. " + the BadAnyCastException's text)
  /// when the ranking is not an int.
  [[nodiscard]] ServiceRegistrationU RegisterService(
      InterfaceMapConstPtr const& service,
      ServiceProperties const& properties = ServiceProperties());

  /// Registers `impl` under the interfaces I1, Interfaces... (each a base of
  /// Impl, or Impl itself) with a copy of `properties`; throws as above (an
  /// empty `impl`, or an interface whose id is empty, is a null class).
  template <class I1, class... Interfaces, class Impl>
  ServiceRegistration<I1, Interfaces...> RegisterService(
      std::shared_ptr<Impl> const& impl,
      ServiceProperties const& properties = ServiceProperties()) {
    InterfaceMapConstPtr servicePointers = MakeInterfaceMap<I1, Interfaces...>(impl);
    return RegisterService(servicePointers, properties);
  }

  /// The best service registered under interface id `clazz` (highest
  /// ranking, then registered first), seen through `clazz`; a reference to
  /// no service when there is none. An empty `clazz` finds the service
  /// registered first, whatever its interfaces and ranking.
  ServiceReferenceU GetServiceReference(std::string const& clazz);

  /// The best service registered under S's interface id, as S. Throws
  /// ServiceException("The service interface class has no
  /// CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro") when that id is empty.
  template <class S>
  ServiceReference<S> GetServiceReference() {
    auto& clazz = us_service_interface_iid<S>();
    if (clazz.empty()) {
      throw ServiceException(
          "The service interface class has no "
          "CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro");
    }
    return ServiceReference<S>(GetServiceReference(clazz));
  }

  /// The service object of `reference`, as the interface the reference sees
  /// it through (the first one for a reference without interface id). Null
  /// when the service is unregistered meanwhile. The returned pointer keeps
  /// the object alive also after the service is unregistered. Throws
  /// std::invalid_argument("Default constructed ServiceReference is not a
  /// valid input to GetService()") when `reference` reads false, whatever
  /// the context; then IllegalStateException for a context that is not valid.
  std::shared_ptr<void> GetService(ServiceReferenceBase const& reference);

  /// Every interface pointer of the service of `reference`, by interface
  /// id; throws as above.
  InterfaceMapConstPtr GetService(ServiceReferenceU const& reference);

  /// The service object of `reference` as S; throws as above.
  template <class S>
  std::shared_ptr<S> GetService(ServiceReference<S> const& reference) {
    ServiceReferenceBase const& baseRef = reference;
    return std::static_pointer_cast<S>(GetService(baseRef));
  }

  /// Installs the bundle in the shared library at `location` (a path) and
  /// returns it, not started; installing a location again returns the bundle
  /// installed there. The library is loaded now and never unloaded. Throws
  /// std::runtime_error: LOCATION + " does not exist" for a missing file,
  /// "Could not init zip archive for bundle at " + LOCATION for a library
  /// that is no bundle, and "Failed to install bundle library at " + LOCATION
  /// + ": " + the reason for a file that cannot be loaded or a bundle whose
  /// name another installed bundle has.
  std::vector<Bundle> InstallBundles(std::string const& location);

 private:
  friend class BundlePrivate;
  friend class Bundle;
  friend class CoreBundleContext;

  BundleContext(std::shared_ptr<BundleContextPrivate> ctx);

  std::shared_ptr<BundleContextPrivate> d;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_BUNDLECONTEXT_H
