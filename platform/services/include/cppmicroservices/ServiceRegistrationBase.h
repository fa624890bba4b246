// cppmicroservices/ServiceRegistrationBase.h - the registering side's handle on a service, untyped
//
// BundleContext::RegisterService returns a registration; its owner calls
// Unregister() to withdraw the service. The framework then drops its own
// pointer to the service object, which is destroyed once no user holds it.
// Most code uses the typed ServiceRegistration<I...> of ServiceRegistration.h.
//
//   auto reg = context.RegisterService<Clock>(std::make_shared<SystemClock>());
//   ...
//   reg.Unregister();
//
// A registration reads true from the moment it is made, also after its
// service is unregistered; only a default-constructed one, or one assigned
// nullptr, reads false.

#ifndef CPPMICROSERVICES_SERVICEREGISTRATIONBASE_H
#define CPPMICROSERVICES_SERVICEREGISTRATIONBASE_H

#include <cstddef>
#include <memory>
#include <string>

#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReference.h"

namespace cppmicroservices {

class ServiceRegistrationBasePrivate;

/// Ownership: a handle; copies control the same registration. Threads:
/// copies may be used on any threads at once; one object is like an int.
class ServiceRegistrationBase {
 public:
  ServiceRegistrationBase(ServiceRegistrationBase const& reg);
  ServiceRegistrationBase(ServiceRegistrationBase&& reg) noexcept;

  /// True unless this is a registration of nothing.
  explicit operator bool() const;

  /// Makes this a registration of nothing (the service stays registered).
  ServiceRegistrationBase& operator=(std::nullptr_t);

  ~ServiceRegistrationBase();

  /// A reference to the service seen through `interfaceId` (not checked).
  /// Throws std::logic_error("ServiceRegistrationBase object invalid") for a
  /// registration of nothing and std::logic_error("Service is unregistered")
  /// once the service is unregistered.
  ServiceReferenceBase GetReference(std::string const& interfaceId = std::string()) const;

  /// Withdraws the service: references to it read false from then on and
  /// lookups no longer find it. The framework's pointer to the service object
  /// is released after its locks are, so the object's destructor may use the
  /// framework. Throws std::logic_error("ServiceRegistrationBase object
  /// invalid") for a registration of nothing, and std::logic_error("Service
  /// is unregistered") when the service was unregistered already (also when
  /// its bundle stopped). While another thread is unregistering the same
  /// service, returns at once.
  void Unregister();

  /// Orders as the references of the registrations do (see
  /// ServiceReferenceBase); an unregistered service is less than a
  /// registered one.
  bool operator<(ServiceRegistrationBase const& o) const;

  /// True when both control the same registration, or both none.
  bool operator==(ServiceRegistrationBase const& registration) const;

  ServiceRegistrationBase& operator=(ServiceRegistrationBase const& registration);
  ServiceRegistrationBase& operator=(ServiceRegistrationBase&& registration) noexcept;

 private:
  friend class ServiceRegistry;

  template <class I1, class... Interfaces>
  friend class ServiceRegistration;

  ServiceRegistrationBase();
  ServiceRegistrationBase(std::shared_ptr<ServiceRegistrationBasePrivate> registrationPrivate);

  std::shared_ptr<ServiceRegistrationBasePrivate> d;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEREGISTRATIONBASE_H
