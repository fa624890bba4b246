#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"
#include "registry_impl.h"

namespace cppmicroservices {
namespace detail {
namespace {

[[noreturn]] void throw_context_invalid() {
  throw std::runtime_error("The bundle context is no longer valid");
}

int ranking_of(const ServiceProperties& properties) {
  const auto it = properties.find(Constants::SERVICE_RANKING);
  if (it == properties.end()) return 0;
  const int* ranking = any_cast<int>(&it->second);
  return ranking ? *ranking : 0;
}

// True when `a` is preferred over `b` by a lookup.
bool preferred(const RecordPtr& a, const RecordPtr& b) {
  if (a->ranking_ != b->ranking_) return a->ranking_ > b->ranking_;
  return a->id_ < b->id_;
}

}  // namespace

std::string GetDemangledName(const std::type_info& type) {
  int status = 0;
  char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
  if (status != 0 || demangled == nullptr) return type.name();
  std::string name(demangled);
  std::free(demangled);
  return name;
}

std::uint64_t Registry::generation() const {
  std::lock_guard lock(mutex_);
  return generation_;
}

void Registry::start() {
  std::lock_guard lock(mutex_);
  live_generation_.store(generation_ + 1, std::memory_order_release);
}

void Registry::stop() {
  std::map<std::string, std::vector<RecordPtr>> withdrawn;
  std::vector<std::pair<std::uint64_t, std::shared_ptr<void>>> objects;
  {
    std::lock_guard lock(mutex_);
    if (live_generation_.load(std::memory_order_relaxed) == 0) return;
    live_generation_.store(0, std::memory_order_release);
    ++generation_;
    withdrawn.swap(services_);
    for (auto& [id, records] : withdrawn) {
      for (const RecordPtr& record : records) {
        record->registered_.store(false, std::memory_order_release);
        objects.emplace_back(record->id_, std::move(record->service_));
      }
    }
  }
  // Outside the lock: the service objects' destructors may use the registry.
  // The last registered goes first, as a later service may depend on an
  // earlier one.
  std::sort(objects.begin(), objects.end(),
            [](const auto& a, const auto& b) { return a.first > b.first; });
  for (auto& entry : objects) entry.second.reset();
}

RecordPtr Registry::find(const std::string& interface_id, std::uint64_t generation) {
  std::lock_guard lock(mutex_);
  if (!is_valid(generation)) throw_context_invalid();
  const auto it = services_.find(interface_id);
  if (it == services_.end() || it->second.empty()) return nullptr;
  return it->second.front();
}

std::shared_ptr<void> Registry::service_of(const ServiceRecord& record, std::uint64_t generation) {
  std::lock_guard lock(mutex_);
  if (!is_valid(generation)) throw_context_invalid();
  return record.service_;
}

RecordPtr Registry::add(const std::string& interface_id, std::shared_ptr<void> service,
                        const ServiceProperties& properties, std::uint64_t generation) {
  // The properties are copied before the lock is taken: copying a value may
  // run code of the caller's types.
  ServiceProperties copy = properties;
  const int ranking = ranking_of(copy);
  std::unique_lock lock(mutex_);
  if (!is_valid(generation)) {
    lock.unlock();
    throw_context_invalid();
  }
  auto record = std::make_shared<ServiceRecord>(next_id_++, ranking, interface_id, std::move(copy),
                                                std::move(service), weak_from_this());
  auto& records = services_[interface_id];
  records.insert(std::upper_bound(records.begin(), records.end(), record, preferred), record);
  return record;
}

void Registry::remove(const RecordPtr& record) {
  std::shared_ptr<void> object;
  {
    std::lock_guard lock(mutex_);
    if (!record->registered_.load(std::memory_order_relaxed)) {
      throw std::logic_error("The service is already unregistered");
    }
    auto& records = services_[record->interface_id_];
    records.erase(std::find(records.begin(), records.end(), record));
    if (records.empty()) services_.erase(record->interface_id_);
    record->registered_.store(false, std::memory_order_release);
    object = std::move(record->service_);
  }
  // `object` is released here, after the lock: its destructor may use the registry.
}

}  // namespace detail

ServiceReferenceBase::operator bool() const noexcept {
  return record_ && record_->registered_.load(std::memory_order_acquire);
}

void ServiceRegistrationBase::Unregister() {
  if (!record_) throw std::logic_error("The service registration is empty");
  const auto registry = record_->registry_.lock();
  if (!registry) throw std::logic_error("The service is already unregistered");
  registry->remove(record_);
}

BundleContext::operator bool() const noexcept {
  return registry_ && registry_->is_valid(generation_);
}

ServiceReferenceBase BundleContext::FindServiceReference(const std::string& interface_id) {
  if (!registry_) detail::throw_context_invalid();
  auto record = registry_->find(interface_id, generation_);
  if (!record) return ServiceReferenceBase();
  return ServiceReferenceBase(std::move(record), interface_id);
}

std::shared_ptr<void> BundleContext::GetService(const ServiceReferenceBase& reference) {
  if (!registry_) detail::throw_context_invalid();
  if (!reference.record_) throw std::invalid_argument("The service reference is invalid");
  return registry_->service_of(*reference.record_, generation_);
}

ServiceRegistrationBase BundleContext::Register(const std::string& interface_id,
                                                std::shared_ptr<void> service,
                                                const ServiceProperties& properties) {
  if (!registry_) detail::throw_context_invalid();
  if (!service) throw std::invalid_argument("The service object is empty");
  return ServiceRegistrationBase(
      registry_->add(interface_id, std::move(service), properties, generation_));
}

void Framework::Start() {
  if (!registry_) throw std::logic_error("The framework is empty");
  registry_->start();
}

void Framework::Stop() {
  if (registry_) registry_->stop();
}

BundleContext Framework::GetBundleContext() const {
  if (!registry_) return BundleContext();
  return BundleContext(registry_, registry_->generation());
}

Framework FrameworkFactory::NewFramework() {
  return Framework(std::make_shared<detail::Registry>());
}

}  // namespace cppmicroservices
