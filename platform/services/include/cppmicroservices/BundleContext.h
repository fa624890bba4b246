// cppmicroservices/BundleContext.h - registering and finding services
//
// A BundleContext is the way into a framework's service registry: providers
// register service objects under an interface, users look up the best one.
// A context is valid while its framework runs; a default-constructed one, and
// every context of a stopped framework, reads false, and using it throws
// std::runtime_error.
//
//   auto reg = context.RegisterService<Clock>(std::make_shared<SystemClock>(),
//                                             {{Constants::SERVICE_RANKING, Any(10)}});
//   if (auto ref = context.GetServiceReference<Clock>()) {
//     std::shared_ptr<Clock> clock = context.GetService(ref);
//   }
//
// The registry never runs code of its users (a service object's destructor,
// the copy of a property value) while it holds its lock, so such code may use
// the registry itself.

#ifndef CPPMICROSERVICES_BUNDLECONTEXT_H
#define CPPMICROSERVICES_BUNDLECONTEXT_H

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"

namespace cppmicroservices {

class Framework;

namespace detail {
class Registry;
}

/// Ownership: a handle; copies share the framework's registry. Threads: the
/// registry is thread-safe, so any number of threads may register, look up
/// and unregister at once; one context object is like an int.
class BundleContext {
 public:
  /// A context of no framework; it reads false.
  BundleContext() = default;

  /// True while the framework this context belongs to runs.
  explicit operator bool() const noexcept;

  /// The service registered for interface S with the highest ranking, the
  /// first registered among equal rankings; a reference that reads false when
  /// there is none. Throws ServiceException when S's interface id is empty.
  template <class S>
  ServiceReference<S> GetServiceReference() {
    const std::string id = us_service_interface_iid<S>();
    if (id.empty()) throw ServiceException(detail::empty_interface_id_text);
    return ServiceReference<S>(FindServiceReference(id));
  }

  /// The service object of `reference`, as registered for the reference's
  /// interface; empty once the service is unregistered. Throws
  /// std::invalid_argument for a reference to no service.
  std::shared_ptr<void> GetService(const ServiceReferenceBase& reference);

  /// The service object of `reference` as its interface S.
  template <class S>
  std::shared_ptr<S> GetService(const ServiceReference<S>& reference) {
    return std::static_pointer_cast<S>(
        GetService(static_cast<const ServiceReferenceBase&>(reference)));
  }

  /// Registers `service` under interface I with a copy of `properties`.
  /// Throws std::invalid_argument for an empty pointer and ServiceException
  /// when I's interface id is empty.
  template <class I, class Impl>
  ServiceRegistration<I> RegisterService(const std::shared_ptr<Impl>& service,
                                         const ServiceProperties& properties = {}) {
    static_assert(std::is_convertible_v<Impl*, I*>,
                  "the service object must implement the interface it is registered under");
    const std::string id = us_service_interface_iid<I>();
    if (id.empty()) throw ServiceException(detail::empty_interface_id_text);
    // The registry keeps the pointer to the I part of the object, so that a
    // user reading it back as I needs no knowledge of Impl.
    std::shared_ptr<I> as_interface = service;
    return ServiceRegistration<I>(
        Register(id, std::static_pointer_cast<void>(std::move(as_interface)), properties));
  }

 private:
  friend class Framework;

  BundleContext(std::shared_ptr<detail::Registry> registry, std::uint64_t generation)
      : registry_(std::move(registry)), generation_(generation) {}

  ServiceReferenceBase FindServiceReference(const std::string& interface_id);
  ServiceRegistrationBase Register(const std::string& interface_id, std::shared_ptr<void> service,
                                   const ServiceProperties& properties);

  std::shared_ptr<detail::Registry> registry_;
  std::uint64_t generation_ = 0;  // the run of the framework this context belongs to
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_BUNDLECONTEXT_H
