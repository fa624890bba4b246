// cppmicroservices/ServiceReference.h - a reference to a registered service, typed
//
// ServiceReference<S> is the reference BundleContext::GetServiceReference<S>()
// gives, so that BundleContext::GetService returns std::shared_ptr<S>. It
// reads false when no service was found, and from the moment its service is
// unregistered:
//
//   auto ref = context.GetServiceReference<Clock>();
//   if (ref) std::shared_ptr<Clock> clock = context.GetService(ref);
//
// An untyped reference converts to ServiceReference<S> when its service is
// registered under S's interface id; otherwise the result refers to no
// service. ServiceReferenceU (ServiceReference<void>) keeps any reference.

#ifndef CPPMICROSERVICES_SERVICEREFERENCE_H
#define CPPMICROSERVICES_SERVICEREFERENCE_H

#include <string>

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices {

/// Ownership and threads: as ServiceReferenceBase.
template <class S>
class ServiceReference : public ServiceReferenceBase {
 public:
  using ServiceType = S;

  /// A reference to no service.
  ServiceReference() : ServiceReferenceBase() {}

  ServiceReference(ServiceReference const&) = default;
  ServiceReference& operator=(ServiceReference const&) = default;

  /// `base` seen through S; a reference to no service when the service is
  /// not registered under S's interface id.
  ServiceReference(ServiceReferenceBase const& base) : ServiceReferenceBase(base) { SeeAsS(); }

  using ServiceReferenceBase::operator=;

  ServiceReference& operator=(ServiceReferenceBase const& reference) {
    ServiceReferenceBase::operator=(reference);
    SeeAsS();
    return *this;
  }

#if __cplusplus >= 202002L
  bool operator==(ServiceReference const& reference) const {
    return ServiceReferenceBase::operator==(reference);
  }
#else
  using ServiceReferenceBase::operator==;
#endif

 private:
  void SeeAsS() {
    std::string const interfaceId(us_service_interface_iid<S>());
    if (GetInterfaceId() == interfaceId) return;
    if (IsConvertibleTo(interfaceId)) {
      SetInterfaceId(interfaceId);
    } else {
      operator=(nullptr);
    }
  }
};

/// A reference whose interface is not known at compile time; converting
/// keeps the interface id it was obtained for.
template <>
class ServiceReference<void> : public ServiceReferenceBase {
 public:
  ServiceReference() : ServiceReferenceBase() {}
  ServiceReference(ServiceReference const&) = default;
  ServiceReference& operator=(ServiceReference const&) = default;
  ServiceReference(ServiceReferenceBase const& base) : ServiceReferenceBase(base) {}

  using ServiceReferenceBase::operator=;

#if __cplusplus >= 202002L
  bool operator==(ServiceReference const& reference) const {
    return ServiceReferenceBase::operator==(reference);
  }
#else
  using ServiceReferenceBase::operator==;
#endif

  using ServiceType = void;
};

using ServiceReferenceU = ServiceReference<void>;

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEREFERENCE_H
