// cppmicroservices/ServiceRegistration.h - the registering side's handle on a service, typed
//
// ServiceRegistration<I1, Interfaces...> is what
// BundleContext::RegisterService<I1, Interfaces...> returns; GetReference()
// gives a reference to the service as I1, GetReference<I>() as any of the
// interfaces it was registered under:
//
//   auto reg = context.RegisterService<Clock, Timer>(std::make_shared<ClockAndTimer>());
//   cppmicroservices::ServiceReference<Timer> timer = reg.GetReference<Timer>();
//   reg.Unregister();
//
// Everything else is ServiceRegistrationBase's.

#ifndef CPPMICROSERVICES_SERVICEREGISTRATION_H
#define CPPMICROSERVICES_SERVICEREGISTRATION_H

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceRegistrationBase.h"

namespace cppmicroservices {

/// Ownership and threads: as ServiceRegistrationBase.
template <class I1, class... Interfaces>
class ServiceRegistration : public ServiceRegistrationBase {
 public:
  /// A registration of nothing.
  ServiceRegistration() : ServiceRegistrationBase() {}

  /// A reference to the service as Interface, one of the interfaces it was
  /// registered under. Throws as ServiceRegistrationBase::GetReference.
  template <class Interface>
  ServiceReference<Interface> GetReference() const {
    static_assert(detail::Contains<Interface, I1, Interfaces...>::value,
                  "Requested interface type not available");
    return this->ServiceRegistrationBase::GetReference(us_service_interface_iid<Interface>());
  }

  /// A reference to the service as I1.
  ServiceReference<I1> GetReference() const {
    return this->ServiceRegistrationBase::GetReference(us_service_interface_iid<I1>());
  }

  using ServiceRegistrationBase::operator=;

 private:
  friend class BundleContext;

  ServiceRegistration(ServiceRegistrationBase const& base) : ServiceRegistrationBase(base) {}
};

/// A registration whose interfaces are not known at compile time.
template <>
class ServiceRegistration<void> : public ServiceRegistrationBase {
 public:
  ServiceRegistration() : ServiceRegistrationBase() {}
  ServiceRegistration(ServiceRegistrationBase const& base) : ServiceRegistrationBase(base) {}

  using ServiceRegistrationBase::operator=;
};

using ServiceRegistrationU = ServiceRegistration<void>;

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEREGISTRATION_H
