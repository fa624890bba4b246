// cppmicroservices/ServiceReference.h - references to registered services
//
// BundleContext::GetServiceReference<S>() gives a reference to the best
// service registered for interface S; BundleContext::GetService turns the
// reference into the service object. A reference reads false when no service
// was found, and from the moment its service is unregistered.
//
//   auto ref = context.GetServiceReference<Clock>();
//   if (ref) std::shared_ptr<Clock> clock = context.GetService(ref);

#ifndef CPPMICROSERVICES_SERVICEREFERENCE_H
#define CPPMICROSERVICES_SERVICEREFERENCE_H

#include <memory>
#include <string>
#include <utility>

namespace cppmicroservices {

class BundleContext;

namespace detail {
class ServiceRecord;
}

/// A reference to one registered service, seen through one of its interfaces.
/// Ownership: a handle; copies refer to the same registration, which stays
/// readable (but not usable) after the service is unregistered. Threads: copies
/// may be used on any threads at once; one object is like an int.
class ServiceReferenceBase {
 public:
  /// A reference to no service; it reads false.
  ServiceReferenceBase() = default;

  /// True while the service referred to is registered.
  explicit operator bool() const noexcept;

  /// The id of the interface the reference was obtained for; empty when it
  /// refers to no service.
  [[nodiscard]] const std::string& GetInterfaceId() const noexcept { return interface_id_; }

  /// Two references are equal when they refer to the same registration.
  friend bool operator==(const ServiceReferenceBase& a, const ServiceReferenceBase& b) noexcept {
    return a.record_ == b.record_;
  }

 private:
  friend class BundleContext;

  ServiceReferenceBase(std::shared_ptr<detail::ServiceRecord> record, std::string interface_id)
      : record_(std::move(record)), interface_id_(std::move(interface_id)) {}

  std::shared_ptr<detail::ServiceRecord> record_;
  std::string interface_id_;
};

/// A reference typed by its interface S, so that GetService can return
/// std::shared_ptr<S>.
template <class S>
class ServiceReference : public ServiceReferenceBase {
 public:
  ServiceReference() = default;

  /// Adopts an untyped reference; the caller vouches that it was obtained for S.
  ServiceReference(const ServiceReferenceBase& base) : ServiceReferenceBase(base) {}
};

/// A reference whose interface type is not known at compile time.
using ServiceReferenceU = ServiceReference<void>;

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEREFERENCE_H
