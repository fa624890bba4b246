// registry_impl.h - the records behind contexts, references and registrations
//
// Private to the service registry. One Registry per framework holds, per
// interface id, the registered services in the order a lookup prefers them.
// ServiceRecords are shared by the registry, references and registrations; a
// record outlives its registration so that a stale reference can still be
// asked whether it is valid.

#ifndef CPPMICROSERVICES_SRC_REGISTRY_IMPL_H
#define CPPMICROSERVICES_SRC_REGISTRY_IMPL_H

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "cppmicroservices/ServiceProperties.h"

namespace cppmicroservices::detail {

class Registry;

class ServiceRecord {
 public:
  ServiceRecord(std::uint64_t id, int ranking, std::string interface_id,
                ServiceProperties properties, std::shared_ptr<void> service,
                std::weak_ptr<Registry> registry)
      : id_(id),
        ranking_(ranking),
        interface_id_(std::move(interface_id)),
        properties_(std::move(properties)),
        registry_(std::move(registry)),
        service_(std::move(service)) {}

  // Fixed at registration.
  const std::uint64_t id_;  // registration order
  const int ranking_;
  const std::string interface_id_;
  const ServiceProperties properties_;
  const std::weak_ptr<Registry> registry_;

  // Written only under the registry's lock. `registered_` is atomic as well so
  // that a reference can be tested without taking the lock; it is set false
  // before the service pointer is moved out.
  std::shared_ptr<void> service_;
  std::atomic<bool> registered_{true};
};

using RecordPtr = std::shared_ptr<ServiceRecord>;

class Registry : public std::enable_shared_from_this<Registry> {
 public:
  /// True while the framework runs its run number `generation`.
  [[nodiscard]] bool is_valid(std::uint64_t generation) const noexcept {
    // Acquire pairs with the release stores in start() and stop(), so a
    // thread that sees a run as live also sees the registry it started.
    return live_generation_.load(std::memory_order_acquire) == generation + 1;
  }

  /// The number of the current (or, when stopped, the next) run.
  [[nodiscard]] std::uint64_t generation() const;

  void start();
  void stop();

  /// The best record for `interface_id`, or null. Throws std::runtime_error
  /// when `generation` is not live.
  [[nodiscard]] RecordPtr find(const std::string& interface_id, std::uint64_t generation);

  /// A copy of the record's service pointer while it is registered.
  [[nodiscard]] std::shared_ptr<void> service_of(const ServiceRecord& record,
                                                 std::uint64_t generation);

  /// Adds a service; throws std::runtime_error when `generation` is not live.
  [[nodiscard]] RecordPtr add(const std::string& interface_id, std::shared_ptr<void> service,
                              const ServiceProperties& properties, std::uint64_t generation);

  /// Withdraws one service; throws std::logic_error when it is not registered.
  void remove(const RecordPtr& record);

 private:
  mutable std::mutex mutex_;
  std::uint64_t generation_ = 0;  // guarded by mutex_
  std::uint64_t next_id_ = 1;     // guarded by mutex_
  // Per interface id, the records in lookup order: ranking descending, then
  // registration order. Guarded by mutex_.
  std::map<std::string, std::vector<RecordPtr>> services_;
  // generation_ + 1 while running, 0 while stopped; written under mutex_.
  std::atomic<std::uint64_t> live_generation_{0};
};

}  // namespace cppmicroservices::detail

#endif  // CPPMICROSERVICES_SRC_REGISTRY_IMPL_H
