// cppmicroservices/ServiceReferenceBase.h - a reference to a registered service, untyped
//
// A lookup (BundleContext::GetServiceReference) gives a reference to the best
// service registered under an interface id; BundleContext::GetService turns
// it into the service object. A reference reads false when the lookup found
// nothing, and from the moment its service is unregistered. Most code uses
// the typed ServiceReference<S> of ServiceReference.h.
//
//   cppmicroservices::ServiceReferenceU ref = context.GetServiceReference("demo.Clock/1.0");
//   if (ref) std::shared_ptr<void> clock = context.GetService(
//       static_cast<const cppmicroservices::ServiceReferenceBase&>(ref));

#ifndef CPPMICROSERVICES_SERVICEREFERENCEBASE_H
#define CPPMICROSERVICES_SERVICEREFERENCEBASE_H

#include <cstddef>
#include <memory>
#include <string>

namespace cppmicroservices {

class ServiceReferenceBasePrivate;

/// A reference to one registration, seen through one of its interface ids.
/// Ownership: a handle; copies refer to the same registration. Threads:
/// copies may be used on any threads at once; one object is like an int.
class ServiceReferenceBase {
 public:
  ServiceReferenceBase(ServiceReferenceBase const& ref);

  /// True while the service referred to is registered.
  explicit operator bool() const;

  /// Makes this a reference to no service.
  ServiceReferenceBase& operator=(std::nullptr_t);

  ~ServiceReferenceBase();

  /// The interface id this reference sees the service through (what the
  /// lookup asked for); empty for a reference to no service.
  std::string GetInterfaceId() const;

  /// True when the service is registered under `interfaceid`.
  bool IsConvertibleTo(std::string const& interfaceid) const;

  /// The order lookups prefer services in, lowest first: a lower ranking
  /// is less, and among equal rankings the later registration. A reference to
  /// no service is less than any other.
  bool operator<(ServiceReferenceBase const& reference) const;

  /// True when both refer to the same registration, or both to none.
  bool operator==(ServiceReferenceBase const& reference) const;

  ServiceReferenceBase& operator=(ServiceReferenceBase const& reference);

 private:
  friend class BundleContext;
  friend class ServiceRegistrationBase;
  friend class ServiceRegistry;

  template <class S>
  friend class ServiceReference;

  ServiceReferenceBase();
  ServiceReferenceBase(std::shared_ptr<ServiceReferenceBasePrivate const> d);

  void SetInterfaceId(std::string const& interfaceId);

  // Never null; immutable once made, so copies share it.
  std::shared_ptr<ServiceReferenceBasePrivate const> d;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEREFERENCEBASE_H
