// service_registry.cpp - registrations, references, and the registry that finds services

#include "cppmicroservices/ServiceRegistrationBase.h"

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/ServiceReferenceBase.h"
#include "framework_impl.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace cppmicroservices {
namespace {

// The shared state of every reference to no service.
std::shared_ptr<ServiceReferenceBasePrivate const> const& NoService() {
  static const auto none = std::make_shared<ServiceReferenceBasePrivate const>();
  return none;
}

// "::demo::Clock" is found as "demo::Clock".
std::string WithoutLeadingColons(std::string const& id) {
  const std::size_t first = id.find_first_not_of(':');
  return first == std::string::npos ? id : id.substr(first);
}

bool EqualIgnoringCase(std::string const& a, std::string const& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

// Property names are compared without regard to case, so no two may differ
// only in case.
void CheckNoCaseVariants(ServiceProperties const& properties) {
  std::vector<std::string const*> keys;
  keys.reserve(properties.size());
  for (auto const& property : properties) keys.push_back(&property.first);
  for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
    for (std::size_t j = i + 1; j < keys.size(); ++j) {
      if (EqualIgnoringCase(*keys[i], *keys[j])) {
        throw std::runtime_error("Properties contain case variants of the key: " + *keys[i]);
      }
    }
  }
}

// The ranking of a service: its "service.ranking" property (in any case of
// letters), 0 without one. A ranking must be an int, since lookups compare
// rankings as ints; another type is refused here, at registration.
int RankingOf(ServiceProperties const& properties) {
  auto it = properties.find(Constants::SERVICE_RANKING);
  if (it == properties.end()) {
    it = std::find_if(properties.begin(), properties.end(), [](auto const& property) {
      return EqualIgnoringCase(property.first, Constants::SERVICE_RANKING);
    });
  }
  if (it == properties.end()) return 0;
  try {
    return any_cast<int>(it->second);
  } catch (BadAnyCastException const& e) {
    throw std::invalid_argument(
        std::string("SERVICE_RANKING property has unexpected value type. ") + e.what());
  }
}

// True when lookups prefer `a` to `b`: a higher ranking, or an equal ranking
// and an earlier registration.
bool Preferred(std::shared_ptr<ServiceRegistrationBasePrivate> const& a,
               std::shared_ptr<ServiceRegistrationBasePrivate> const& b) {
  if (a->coreInfo->ranking != b->coreInfo->ranking) {
    return a->coreInfo->ranking > b->coreInfo->ranking;
  }
  return a->coreInfo->id < b->coreInfo->id;
}

// The order of ServiceReferenceBase::operator< on records; null is no service.
bool RecordLess(ServiceRegistrationCoreInfo const* a, ServiceRegistrationCoreInfo const* b) {
  if (a == b) return false;
  if (a == nullptr) return true;
  if (b == nullptr) return false;
  if (a->ranking != b->ranking) return a->ranking < b->ranking;
  return a->id > b->id;
}

}  // namespace

// ------------------------------------------------------------ references

ServiceReferenceBase::ServiceReferenceBase() : d(NoService()) {}
ServiceReferenceBase::ServiceReferenceBase(ServiceReferenceBase const& ref) = default;
ServiceReferenceBase::ServiceReferenceBase(std::shared_ptr<ServiceReferenceBasePrivate const> state)
    : d(std::move(state)) {}
ServiceReferenceBase::~ServiceReferenceBase() = default;
ServiceReferenceBase& ServiceReferenceBase::operator=(ServiceReferenceBase const& reference) =
    default;

ServiceReferenceBase::operator bool() const {
  if (d->registration.expired()) return false;
  std::lock_guard lock(d->coreInfo->mutex);
  return !d->coreInfo->bundle.expired();
}

ServiceReferenceBase& ServiceReferenceBase::operator=(std::nullptr_t) {
  d = NoService();
  return *this;
}

std::string ServiceReferenceBase::GetInterfaceId() const {
  return d->interfaceId;
}

bool ServiceReferenceBase::IsConvertibleTo(std::string const& interfaceid) const {
  if (d->registration.expired()) return false;
  std::lock_guard lock(d->coreInfo->mutex);
  return d->coreInfo->service && d->coreInfo->service->count(interfaceid) != 0;
}

bool ServiceReferenceBase::operator<(ServiceReferenceBase const& reference) const {
  return RecordLess(d->coreInfo.get(), reference.d->coreInfo.get());
}

bool ServiceReferenceBase::operator==(ServiceReferenceBase const& reference) const {
  return d->coreInfo == reference.d->coreInfo;
}

void ServiceReferenceBase::SetInterfaceId(std::string const& interfaceId) {
  d = std::make_shared<ServiceReferenceBasePrivate const>(d->registration, d->coreInfo,
                                                          interfaceId);
}

// --------------------------------------------------------- registrations

ServiceRegistrationBase::ServiceRegistrationBase() = default;
ServiceRegistrationBase::ServiceRegistrationBase(ServiceRegistrationBase const& reg) = default;
ServiceRegistrationBase::ServiceRegistrationBase(ServiceRegistrationBase&& reg) noexcept = default;
ServiceRegistrationBase::ServiceRegistrationBase(
    std::shared_ptr<ServiceRegistrationBasePrivate> registrationPrivate)
    : d(std::move(registrationPrivate)) {}
ServiceRegistrationBase::~ServiceRegistrationBase() = default;
ServiceRegistrationBase& ServiceRegistrationBase::operator=(
    ServiceRegistrationBase const& registration) = default;
ServiceRegistrationBase& ServiceRegistrationBase::operator=(
    ServiceRegistrationBase&& registration) noexcept = default;

ServiceRegistrationBase::operator bool() const {
  return d != nullptr;
}

ServiceRegistrationBase& ServiceRegistrationBase::operator=(std::nullptr_t) {
  d = nullptr;
  return *this;
}

ServiceReferenceBase ServiceRegistrationBase::GetReference(std::string const& interfaceId) const {
  if (!d) throw std::logic_error("ServiceRegistrationBase object invalid");
  if (!d->coreInfo->available) throw std::logic_error("Service is unregistered");
  return ServiceReferenceBase(
      std::make_shared<ServiceReferenceBasePrivate const>(d, d->coreInfo, interfaceId));
}

void ServiceRegistrationBase::Unregister() {
  if (!d) throw std::logic_error("ServiceRegistrationBase object invalid");
  ServiceRegistrationCoreInfo& info = *d->coreInfo;
  bool unregistering = false;
  if (!info.unregistering.compare_exchange_strong(unregistering, true)) {
    return;  // another thread is unregistering it
  }
  if (!info.available) {
    info.unregistering = false;
    throw std::logic_error("Service is unregistered");
  }
  std::shared_ptr<BundlePrivate> bundle;
  {
    std::lock_guard lock(info.mutex);
    bundle = info.bundle.lock();
  }
  if (bundle) {
    if (auto core = bundle->coreCtx.lock()) core->services.Remove(d);
  }
  InterfaceMapConstPtr service;
  {
    std::lock_guard lock(info.mutex);
    info.available = false;
    info.bundle.reset();
    service = std::move(info.service);
  }
  info.unregistering = false;
  // `service`, and possibly the last pointer to the bundle, are released
  // here, after every lock: the object's destructor may use the framework.
}

bool ServiceRegistrationBase::operator<(ServiceRegistrationBase const& o) const {
  if (this == &o || d == o.d || !o.d) return false;
  if (!d) return true;
  // An unregistered service compares as a reference to no service.
  auto record = [](ServiceRegistrationBase const& r) -> ServiceRegistrationCoreInfo const* {
    return r.d->coreInfo->available ? r.d->coreInfo.get() : nullptr;
  };
  return RecordLess(record(*this), record(o));
}

bool ServiceRegistrationBase::operator==(ServiceRegistrationBase const& registration) const {
  return d == registration.d;
}

// -------------------------------------------------------------- registry

ServiceRegistrationBase ServiceRegistry::RegisterService(
    std::shared_ptr<BundlePrivate> const& bundle, InterfaceMapConstPtr const& service,
    ServiceProperties const& properties) {
  if (!service || service->empty()) {
    throw std::invalid_argument("Can't register empty InterfaceMap as a service");
  }
  std::vector<std::string> classes;
  for (auto const& [interfaceId, pointer] : *service) {
    if (interfaceId.empty() || pointer == nullptr) {
      throw std::invalid_argument("Can't register as null class");
    }
    classes.push_back(WithoutLeadingColons(interfaceId));
  }

  // Service ids are unique in the process, as a framework started again
  // must not hand out an id a stale reference still holds.
  static std::atomic<long> nextServiceId{1};
  const long serviceId = nextServiceId++;

  // The caller's properties and the framework's own; a name the caller gave
  // keeps the caller's value. Copying runs code of the caller's types, so
  // it is done before any lock is taken.
  ServiceProperties stored(properties);
  stored.insert(std::make_pair(Constants::OBJECTCLASS, Any(classes)));
  stored.insert(std::make_pair(Constants::SERVICE_ID, Any(serviceId)));
  stored.insert(std::make_pair(Constants::SERVICE_SCOPE, Any(Constants::SCOPE_SINGLETON)));
  CheckNoCaseVariants(stored);
  const int ranking = RankingOf(stored);

  auto coreInfo = std::make_shared<ServiceRegistrationCoreInfo>(serviceId, ranking, classes,
                                                                std::move(stored), service, bundle);
  auto registration = std::make_shared<ServiceRegistrationBasePrivate>(coreInfo, bundle.get());
  {
    std::lock_guard lock(mutex);
    registrations.push_back(registration);
    bundleServices[bundle.get()].push_back(registration);
    for (auto const& clazz : coreInfo->classes) {
      auto& ranked = classServices[clazz];
      ranked.insert(std::upper_bound(ranked.begin(), ranked.end(), registration, Preferred),
                    registration);
    }
  }
  return ServiceRegistrationBase(std::move(registration));
}

ServiceReferenceBase ServiceRegistry::Get(std::string const& clazz) const {
  const std::string interfaceId = WithoutLeadingColons(clazz);
  Entry best;
  {
    std::lock_guard lock(mutex);
    if (interfaceId.empty()) {
      // No interface: every service matches, and the first registered is found.
      if (!registrations.empty()) best = registrations.front();
    } else if (auto it = classServices.find(interfaceId);
               it != classServices.end() && !it->second.empty()) {
      best = it->second.front();
    }
  }
  if (!best) return ServiceReferenceBase();
  return ServiceReferenceBase(
      std::make_shared<ServiceReferenceBasePrivate const>(best, best->coreInfo, interfaceId));
}

std::vector<ServiceRegistrationBase> ServiceRegistry::GetRegisteredByBundle(
    BundlePrivate const* bundle) const {
  std::vector<Entry> entries;
  {
    std::lock_guard lock(mutex);
    auto it = bundleServices.find(bundle);
    if (it != bundleServices.end()) entries = it->second;
  }
  std::vector<ServiceRegistrationBase> result;
  result.reserve(entries.size());
  for (auto& entry : entries) result.push_back(ServiceRegistrationBase(std::move(entry)));
  return result;
}

void ServiceRegistry::Remove(std::shared_ptr<ServiceRegistrationBasePrivate> const& registration) {
  std::vector<Entry> removed;  // released after the lock
  auto take = [&](std::vector<Entry>& entries) {
    auto tail = std::stable_partition(entries.begin(), entries.end(),
                                      [&](Entry const& e) { return e != registration; });
    std::move(tail, entries.end(), std::back_inserter(removed));
    entries.erase(tail, entries.end());
  };
  std::lock_guard lock(mutex);
  take(registrations);
  if (auto it = bundleServices.find(registration->owner); it != bundleServices.end()) {
    take(it->second);
    if (it->second.empty()) bundleServices.erase(it);
  }
  for (auto const& clazz : registration->coreInfo->classes) {
    if (auto it = classServices.find(clazz); it != classServices.end()) {
      take(it->second);
      if (it->second.empty()) classServices.erase(it);
    }
  }
}

void ServiceRegistry::Clear() {
  std::vector<Entry> all;
  std::unordered_map<std::string, std::vector<Entry>> byClass;
  std::unordered_map<BundlePrivate const*, std::vector<Entry>> byBundle;
  {
    std::lock_guard lock(mutex);
    all.swap(registrations);
    byClass.swap(classServices);
    byBundle.swap(bundleServices);
  }
  // Outside the lock: a registration nobody else holds takes its service
  // object with it, last registered first.
  byClass.clear();
  byBundle.clear();
  while (!all.empty()) all.pop_back();
}

}  // namespace cppmicroservices
