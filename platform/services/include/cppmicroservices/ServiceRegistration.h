// cppmicroservices/ServiceRegistration.h - the registering side's handle on a service
//
// BundleContext::RegisterService returns a registration; its owner calls
// Unregister() to withdraw the service. The registry then drops its own
// reference to the service object, which is destroyed once no user holds it.
//
//   auto reg = context.RegisterService<Clock>(std::make_shared<SystemClock>());
//   ...
//   reg.Unregister();

#ifndef CPPMICROSERVICES_SERVICEREGISTRATION_H
#define CPPMICROSERVICES_SERVICEREGISTRATION_H

#include <memory>
#include <utility>

namespace cppmicroservices {

class BundleContext;

namespace detail {
class ServiceRecord;
}

/// Ownership: a handle; copies control the same registration. Threads: copies
/// may be used on any threads at once; one object is like an int.
class ServiceRegistrationBase {
 public:
  /// A registration of nothing; Unregister() on it throws.
  ServiceRegistrationBase() = default;

  /// Withdraws the service: references to it read false from then on and
  /// lookups no longer find it. The service object's destructor, if the
  /// registry held the last reference, runs after the registry's lock is
  /// released, so it may use the registry. Throws std::logic_error when the
  /// registration is empty or was already withdrawn (also by a stopped framework).
  void Unregister();

 private:
  friend class BundleContext;

  explicit ServiceRegistrationBase(std::shared_ptr<detail::ServiceRecord> record)
      : record_(std::move(record)) {}

  std::shared_ptr<detail::ServiceRecord> record_;
};

/// A registration typed by the interface the service was registered under.
template <class I>
class ServiceRegistration : public ServiceRegistrationBase {
 public:
  ServiceRegistration() = default;
  explicit ServiceRegistration(const ServiceRegistrationBase& base)
      : ServiceRegistrationBase(base) {}
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEREGISTRATION_H
