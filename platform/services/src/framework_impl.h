// framework_impl.h - the state behind the framework's handles
//
// Private to the built-in registry. One CoreBundleContext per framework owns
// the service registry and the bundle registry; the framework itself is the
// bundle FrameworkPrivate. Handles (Bundle, BundleContext, ServiceReference,
// ServiceRegistration) share these objects:
//
//   Framework, Bundle         -> BundlePrivate (and the CoreBundleContext)
//   BundleContext             -> BundleContextPrivate -> weak BundlePrivate
//   ServiceRegistration       -> ServiceRegistrationBasePrivate -> ServiceRegistrationCoreInfo
//   ServiceReference          -> weak ServiceRegistrationBasePrivate, ServiceRegistrationCoreInfo
//
// A reference keeps the record of its service (so that it can still be
// compared and asked whether it is valid) but not the registration: it reads
// false once nobody holds the registration any more.
//
// Locks, outermost first: a bundle's `operation` (held while its activator
// runs), then one of the short locks: ServiceRegistry::mutex,
// BundleRegistry::mutex, ServiceRegistrationCoreInfo::mutex,
// BundlePrivate::contextMutex. No short lock is held while another is
// taken, nor while code of a user runs; what a short lock guards is copied
// or moved out and released after the lock is.

#ifndef CPPMICROSERVICES_SRC_FRAMEWORK_IMPL_H
#define CPPMICROSERVICES_SRC_FRAMEWORK_IMPL_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"

namespace cppmicroservices {

struct BundleActivator;
class BundlePrivate;
class CoreBundleContext;

// ---------------------------------------------------------------- services

/// The record of one registration, shared by the registration and every
/// reference to it.
class ServiceRegistrationCoreInfo {
 public:
  ServiceRegistrationCoreInfo(long serviceId, int rank, std::vector<std::string> ids,
                              ServiceProperties props, InterfaceMapConstPtr object,
                              std::shared_ptr<BundlePrivate> const& registrant)
      : id(serviceId),
        ranking(rank),
        classes(std::move(ids)),
        properties(std::move(props)),
        service(std::move(object)),
        bundle(registrant) {}

  const long id;                           // SERVICE_ID
  const int ranking;                       // SERVICE_RANKING, 0 when not given
  const std::vector<std::string> classes;  // the interface ids lookups find it by
  const ServiceProperties properties;      // as registered, with the framework's own
  std::atomic<bool> available{true};       // false once unregistered
  std::atomic<bool> unregistering{false};  // true while Unregister runs

  mutable std::mutex mutex;
  InterfaceMapConstPtr service;         // guarded by mutex; null once unregistered
  std::weak_ptr<BundlePrivate> bundle;  // guarded by mutex; the registering bundle,
                                        // reset once unregistered
};

/// What a ServiceRegistrationBase handle shares; the registry holds it too
/// while the service is registered.
class ServiceRegistrationBasePrivate {
 public:
  ServiceRegistrationBasePrivate(std::shared_ptr<ServiceRegistrationCoreInfo> info,
                                 BundlePrivate const* registrant)
      : coreInfo(std::move(info)), owner(registrant) {}

  const std::shared_ptr<ServiceRegistrationCoreInfo> coreInfo;
  BundlePrivate const* const owner;  // the registering bundle, as a key; never dereferenced
};

/// What a ServiceReferenceBase handle shares; immutable.
class ServiceReferenceBasePrivate {
 public:
  // A reference to no service.
  ServiceReferenceBasePrivate() : registration(), coreInfo(), interfaceId() {}
  ServiceReferenceBasePrivate(std::weak_ptr<ServiceRegistrationBasePrivate> reg,
                              std::shared_ptr<ServiceRegistrationCoreInfo> info, std::string id)
      : registration(std::move(reg)), coreInfo(std::move(info)), interfaceId(std::move(id)) {}

  const std::weak_ptr<ServiceRegistrationBasePrivate> registration;
  const std::shared_ptr<ServiceRegistrationCoreInfo> coreInfo;  // null: no service
  const std::string interfaceId;
};

/// The services registered with one framework, by interface id.
class ServiceRegistry {
 public:
  /// Registers `service` for `bundle`; throws as BundleContext::RegisterService.
  ServiceRegistrationBase RegisterService(std::shared_ptr<BundlePrivate> const& bundle,
                                          InterfaceMapConstPtr const& service,
                                          ServiceProperties const& properties);

  /// The best service registered under `clazz`, seen through it.
  ServiceReferenceBase Get(std::string const& clazz) const;

  /// The registrations of `bundle`, first registered first.
  std::vector<ServiceRegistrationBase> GetRegisteredByBundle(BundlePrivate const* bundle) const;

  /// Forgets one registration.
  void Remove(std::shared_ptr<ServiceRegistrationBasePrivate> const& registration);

  /// Forgets every registration, without unregistering any.
  void Clear();

 private:
  using Entry = std::shared_ptr<ServiceRegistrationBasePrivate>;

  mutable std::mutex mutex;
  std::vector<Entry> registrations;                                   // registration order
  std::unordered_map<std::string, std::vector<Entry>> classServices;  // best first
  std::unordered_map<BundlePrivate const*, std::vector<Entry>> bundleServices;
};

// ----------------------------------------------------------------- bundles

/// What a BundleContext handle shares.
class BundleContextPrivate {
 public:
  explicit BundleContextPrivate(std::shared_ptr<BundlePrivate> const& owner) : bundle(owner) {}

  bool IsValid() const noexcept { return valid.load(); }

  /// The bundle of a valid context; throws IllegalStateException otherwise.
  std::shared_ptr<BundlePrivate> CheckValid() const;

  const std::weak_ptr<BundlePrivate> bundle;
  std::atomic<bool> valid{true};
};

/// A bundle; FrameworkPrivate is the framework's.
class BundlePrivate : public std::enable_shared_from_this<BundlePrivate> {
 public:
  using CreateActivatorHook = BundleActivator* (*)();
  using DestroyActivatorHook = void (*)(BundleActivator*);
  using SetContextHook = void (*)(BundleContextPrivate*);

  BundlePrivate(std::shared_ptr<CoreBundleContext> const& core, long bundleId,
                std::string bundleLocation, std::string name, void* handle);
  virtual ~BundlePrivate();

  BundlePrivate(BundlePrivate const&) = delete;
  BundlePrivate& operator=(BundlePrivate const&) = delete;

  virtual void Start();
  virtual void Stop();

  /// Invalidates the context of a bundle whose framework stops; the bundle
  /// is left INSTALLED.
  void SetStateInstalled();

  /// The context while the bundle is starting, active or stopping; null otherwise.
  std::shared_ptr<BundleContextPrivate> GetContext() const;

  /// "Bundle NAME (location=FILE)", how messages name the bundle.
  std::string Describe() const;

  static Bundle MakeBundle(std::shared_ptr<BundlePrivate> const& d) { return Bundle(d); }
  static BundleContext MakeBundleContext(std::shared_ptr<BundleContextPrivate> const& d) {
    return BundleContext(d);
  }

  const std::weak_ptr<CoreBundleContext> coreCtx;
  const long coreId;  // CoreBundleContext::id
  const long id;
  const std::string location;
  const std::string symbolicName;
  void* const library;  // the handle of the bundle's library; null for a framework
  std::atomic<std::uint32_t> state{Bundle::STATE_INSTALLED};

 protected:
  /// Creates a valid context and makes it the bundle's.
  std::shared_ptr<BundleContextPrivate> NewContext();

  /// Makes the context invalid and forgets it; tells the library.
  void InvalidateContext();

  /// Unregisters every service the bundle registered, first registered first.
  void RemoveBundleResources();

  // Held while the bundle starts or stops; recursive so that an activator may
  // start or stop its own bundle, which the state then decides about.
  std::recursive_mutex operation;

 private:
  std::exception_ptr Start0(std::shared_ptr<BundleContextPrivate> const& ctx);
  void StartFailed();
  std::exception_ptr Stop0();

  mutable std::mutex contextMutex;
  std::shared_ptr<BundleContextPrivate> bundleContext;  // guarded by contextMutex

  // Guarded by `operation`.
  std::unique_ptr<BundleActivator, DestroyActivatorHook> activator{nullptr, nullptr};
  SetContextHook setContext = nullptr;
};

/// The framework, bundle 0 of its CoreBundleContext.
class FrameworkPrivate final : public BundlePrivate {
 public:
  explicit FrameworkPrivate(std::shared_ptr<CoreBundleContext> const& core);

  void Start() override;
  void Stop() override;
  void Init();
  FrameworkEvent WaitForStop(std::chrono::milliseconds const& timeout);

 private:
  // What WaitForStop reports; `valid` is false while a wait is pending.
  struct StopEvent {
    bool valid;
    FrameworkEvent::Type type;
    std::exception_ptr exception;
  };

  void DoInit();
  void Shutdown0(bool wasActive);
  void StopAllBundles(CoreBundleContext& core);
  // Ends a stop: the framework is RESOLVED (or still INSTALLED) and waiters
  // are told how the stop went.
  void SetStopEvent(FrameworkEvent::Type type, std::exception_ptr exception);

  std::mutex stopMutex;
  std::condition_variable stopChanged;
  StopEvent stopEvent{true, FrameworkEvent::FRAMEWORK_ERROR, nullptr};  // guarded by stopMutex
};

/// The bundles installed with one framework, by location.
class BundleRegistry {
 public:
  explicit BundleRegistry(CoreBundleContext& framework) : core(framework) {}

  /// Installs the bundle at `location`; throws as BundleContext::InstallBundles.
  std::vector<Bundle> Install(std::string const& location);

  /// Every installed bundle, in order of location.
  std::vector<std::shared_ptr<BundlePrivate>> GetBundles() const;

  /// Forgets every bundle; the next one installed gets id 1.
  void Clear();

 private:
  CoreBundleContext& core;
  mutable std::mutex mutex;
  std::map<std::string, std::shared_ptr<BundlePrivate>> bundles;  // guarded by mutex
  long nextId = 1;                                                // guarded by mutex
};

/// One framework: its registries, and the framework bundle.
class CoreBundleContext : public std::enable_shared_from_this<CoreBundleContext> {
 public:
  CoreBundleContext();

  const long id;  // distinguishes frameworks of one process
  ServiceRegistry services;
  BundleRegistry bundleRegistry{*this};
  std::shared_ptr<FrameworkPrivate> systemBundle;  // set once, right after construction
  std::atomic<bool> stopped{false};                // from the start of a stop to the next Start
};

/// The text of the exception being handled: its what(), or "unknown" for
/// one that is no std::exception.
std::string GetLastExceptionStr();

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SRC_FRAMEWORK_IMPL_H
