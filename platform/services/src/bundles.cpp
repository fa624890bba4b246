// bundles.cpp - bundles, their contexts, and the loader that installs them

#include "cppmicroservices/Bundle.h"

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/GlobalConfig.h"
#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/SharedLibraryException.h"
#include "framework_impl.h"

// BundleActivator.h belongs to a bundle's build and asks for the bundle's
// name; the framework needs only the activator's interface from it.
#define US_BUNDLE_NAME ui_core_services
#include "cppmicroservices/BundleActivator.h"
#undef US_BUNDLE_NAME

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace cppmicroservices {

namespace {

const char* const kInvalidContext = "The bundle context is no longer valid";

[[noreturn]] void ThrowInvalidContext() {
  throw IllegalStateException(kInvalidContext);
}

// What GetService says of a reference that refers to no registered service.
[[noreturn]] void ThrowInvalidReference() {
  throw std::invalid_argument(
      "Default constructed ServiceReference is not a valid input to GetService()");
}

// A symbol of the library `handle` itself, not of a library it depends on;
// null when it has none.
void* OwnSymbol(void* handle, std::string const& name) {
  void* symbol = dlsym(handle, name.c_str());
  if (symbol == nullptr) return nullptr;
  link_map* self = nullptr;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &self) != 0) return nullptr;
  Dl_info info{};
  void* owner = nullptr;
  if (dladdr1(symbol, &info, &owner, RTLD_DL_LINKMAP) == 0) return nullptr;
  return static_cast<link_map*>(owner) == self ? symbol : nullptr;
}

// The name of the bundle in the library `handle` (what its
// CPPMICROSERVICES_INITIALIZE_BUNDLE says); empty for a library that is no bundle.
std::string BundleNameOf(void* handle) {
  using NameFunction = char const* (*)();
  void* symbol = OwnSymbol(handle, "_us_bundle_symbolic_name");
  if (symbol == nullptr) return std::string();
  char const* name = reinterpret_cast<NameFunction>(symbol)();
  return name != nullptr ? std::string(name) : std::string();
}

template <class Function>
Function LookUp(void* library, std::string const& name) {
  return library != nullptr ? reinterpret_cast<Function>(OwnSymbol(library, name)) : nullptr;
}

}  // namespace

// ------------------------------------------------------------- contexts

std::shared_ptr<BundlePrivate> BundleContextPrivate::CheckValid() const {
  if (!valid) ThrowInvalidContext();
  auto b = bundle.lock();
  if (!b) ThrowInvalidContext();
  return b;
}

BundleContext::BundleContext() = default;
BundleContext::BundleContext(std::shared_ptr<BundleContextPrivate> ctx) : d(std::move(ctx)) {}

bool BundleContext::operator==(BundleContext const& rhs) const {
  return *this ? (rhs ? d == rhs.d : false) : !rhs;
}

bool BundleContext::operator!=(BundleContext const& rhs) const {
  return !(*this == rhs);
}

bool BundleContext::operator<(BundleContext const& rhs) const {
  return *this ? (rhs ? d < rhs.d : true) : false;
}

BundleContext::operator bool() const {
  return d && d->IsValid();
}

BundleContext& BundleContext::operator=(std::nullptr_t) {
  d = nullptr;
  return *this;
}

Bundle BundleContext::GetBundle() const {
  if (!d) ThrowInvalidContext();
  return BundlePrivate::MakeBundle(d->CheckValid());
}

ServiceRegistrationU BundleContext::RegisterService(InterfaceMapConstPtr const& service,
                                                    ServiceProperties const& properties) {
  if (!d) ThrowInvalidContext();
  auto bundle = d->CheckValid();
  auto core = bundle->coreCtx.lock();
  if (!core) ThrowInvalidContext();
  return core->services.RegisterService(bundle, service, properties);
}

ServiceReferenceU BundleContext::GetServiceReference(std::string const& clazz) {
  if (!d) ThrowInvalidContext();
  auto core = d->CheckValid()->coreCtx.lock();
  if (!core) ThrowInvalidContext();
  return core->services.Get(clazz);
}

namespace {

// What both GetService overloads refuse: an empty reference, and a context
// that is no longer valid.
void CheckServiceAccess(BundleContextPrivate* context, ServiceReferenceBase const& reference) {
  if (!reference) ThrowInvalidReference();
  if (context == nullptr) ThrowInvalidContext();
  context->CheckValid();
}

// The interface map of a registration, null once it has been unregistered.
InterfaceMapConstPtr AvailableService(ServiceRegistrationCoreInfo& info) {
  std::lock_guard lock(info.mutex);
  return info.available ? info.service : nullptr;
}

}  // namespace

std::shared_ptr<void> BundleContext::GetService(ServiceReferenceBase const& reference) {
  CheckServiceAccess(d.get(), reference);
  InterfaceMapConstPtr service = AvailableService(*reference.d->coreInfo);
  if (!service) return nullptr;
  return ExtractInterface(service, reference.d->interfaceId);
}

InterfaceMapConstPtr BundleContext::GetService(ServiceReferenceU const& reference) {
  CheckServiceAccess(d.get(), reference);
  return AvailableService(*reference.d->coreInfo);
}

std::vector<Bundle> BundleContext::InstallBundles(std::string const& location) {
  if (!d) ThrowInvalidContext();
  auto core = d->CheckValid()->coreCtx.lock();
  if (!core) ThrowInvalidContext();
  return core->bundleRegistry.Install(location);
}

// -------------------------------------------------------------- bundles

Bundle::Bundle() = default;
Bundle::Bundle(Bundle const&) = default;
Bundle::Bundle(Bundle&&) noexcept = default;
Bundle& Bundle::operator=(Bundle const&) = default;
Bundle& Bundle::operator=(Bundle&&) noexcept = default;
Bundle::~Bundle() = default;
Bundle::Bundle(std::shared_ptr<BundlePrivate> const& bundle)
    : d(bundle), c(bundle ? bundle->coreCtx.lock() : nullptr) {}

bool Bundle::operator==(Bundle const& rhs) const {
  return *this ? (rhs ? d->coreId == rhs.d->coreId && d->id == rhs.d->id : false) : !rhs;
}

bool Bundle::operator!=(Bundle const& rhs) const {
  return !(*this == rhs);
}

bool Bundle::operator<(Bundle const& rhs) const {
  if (!*this) return false;
  if (!rhs) return true;
  return d->coreId == rhs.d->coreId ? d->id < rhs.d->id : d->coreId < rhs.d->coreId;
}

Bundle::operator bool() const {
  return d != nullptr;
}

Bundle& Bundle::operator=(std::nullptr_t) {
  d = nullptr;
  c = nullptr;
  return *this;
}

namespace {

BundlePrivate& Checked(std::shared_ptr<BundlePrivate> const& d) {
  if (!d) throw std::invalid_argument("invalid bundle");
  return *d;
}

}  // namespace

Bundle::State Bundle::GetState() const {
  return static_cast<State>(Checked(d).state.load());
}

BundleContext Bundle::GetBundleContext() const {
  return BundlePrivate::MakeBundleContext(Checked(d).GetContext());
}

long Bundle::GetBundleId() const {
  return Checked(d).id;
}
std::string Bundle::GetLocation() const {
  return Checked(d).location;
}
std::string Bundle::GetSymbolicName() const {
  return Checked(d).symbolicName;
}
void Bundle::Start() {
  Checked(d).Start();
}
void Bundle::Stop() {
  Checked(d).Stop();
}

BundlePrivate::BundlePrivate(std::shared_ptr<CoreBundleContext> const& core, long bundleId,
                             std::string bundleLocation, std::string name, void* handle)
    : coreCtx(core),
      coreId(core->id),
      id(bundleId),
      location(std::move(bundleLocation)),
      symbolicName(std::move(name)),
      library(handle) {}

BundlePrivate::~BundlePrivate() = default;

std::string BundlePrivate::Describe() const {
  return "Bundle " + symbolicName + " (location=" + location + ")";
}

std::shared_ptr<BundleContextPrivate> BundlePrivate::GetContext() const {
  std::lock_guard lock(contextMutex);
  return bundleContext;
}

std::shared_ptr<BundleContextPrivate> BundlePrivate::NewContext() {
  auto ctx = std::make_shared<BundleContextPrivate>(shared_from_this());
  std::lock_guard lock(contextMutex);
  bundleContext = ctx;
  return ctx;
}

void BundlePrivate::InvalidateContext() {
  std::shared_ptr<BundleContextPrivate> ctx;
  {
    std::lock_guard lock(contextMutex);
    ctx.swap(bundleContext);
  }
  if (!ctx) return;
  ctx->valid = false;
  if (setContext != nullptr) setContext(nullptr);
}

void BundlePrivate::RemoveBundleResources() {
  auto core = coreCtx.lock();
  if (!core) return;
  for (auto& registration : core->services.GetRegisteredByBundle(this)) {
    try {
      registration.Unregister();
    } catch (std::logic_error const&) {
      // unregistered by its owner meanwhile
    }
  }
}

void BundlePrivate::SetStateInstalled() {
  std::lock_guard op(operation);
  InvalidateContext();
  state = Bundle::STATE_INSTALLED;
}

void BundlePrivate::Start() {
  std::lock_guard op(operation);
  auto core = coreCtx.lock();
  if (!core || core->stopped) {
    throw std::runtime_error(Describe() + " belongs to a stopped framework");
  }
  switch (state.load()) {
    case Bundle::STATE_ACTIVE:
    case Bundle::STATE_STARTING:  // started again by its own activator
      return;
    case Bundle::STATE_STOPPING:
      throw std::runtime_error(Describe() + ", start called from BundleActivator::Stop");
    default:
      break;
  }
  state = Bundle::STATE_STARTING;
  if (std::exception_ptr failure = Start0(NewContext())) std::rethrow_exception(failure);
}

std::exception_ptr BundlePrivate::Start0(std::shared_ptr<BundleContextPrivate> const& ctx) {
  std::exception_ptr failure;
  // A bundle has an activator when its library exports the factory.
  auto create =
      LookUp<CreateActivatorHook>(library, US_STR(US_CREATE_ACTIVATOR_PREFIX) + symbolicName);
  if (create != nullptr) {
    try {
      setContext = LookUp<SetContextHook>(library, US_STR(US_SET_CTX_PREFIX) + symbolicName);
      if (setContext != nullptr) setContext(ctx.get());
      auto destroy =
          LookUp<DestroyActivatorHook>(library, US_STR(US_DESTROY_ACTIVATOR_PREFIX) + symbolicName);
      if (destroy == nullptr)
        throw std::runtime_error(Describe() + " activator destructor not found");
      activator = std::unique_ptr<BundleActivator, DestroyActivatorHook>(create(), destroy);
      activator->Start(MakeBundleContext(ctx));
    } catch (std::system_error const& e) {
      failure = std::make_exception_ptr(
          SharedLibraryException(e.code(), e.what(), MakeBundle(shared_from_this())));
    } catch (...) {
      failure = std::make_exception_ptr(
          std::runtime_error("Bundle " + symbolicName + " (location= " + location +
                             ") start failed: " + GetLastExceptionStr()));
    }
  }
  if (!failure && state != Bundle::STATE_STARTING) {
    // The activator stopped its own bundle.
    failure = std::make_exception_ptr(std::runtime_error(
        "Bundle " + symbolicName + " (location= " + location +
        ") start failed: Bundle changed state because of refresh during Start()"));
  }
  if (failure) {
    StartFailed();
  } else {
    state = Bundle::STATE_ACTIVE;
  }
  return failure;
}

void BundlePrivate::StartFailed() {
  state = Bundle::STATE_STOPPING;
  RemoveBundleResources();
  InvalidateContext();
  activator.reset();
  state = Bundle::STATE_RESOLVED;
}

void BundlePrivate::Stop() {
  std::exception_ptr failure;
  {
    std::lock_guard op(operation);
    switch (state.load()) {
      case Bundle::STATE_ACTIVE:
      case Bundle::STATE_STARTING:
        failure = Stop0();
        break;
      default:
        return;
    }
  }
  if (failure) std::rethrow_exception(failure);
}

std::exception_ptr BundlePrivate::Stop0() {
  std::exception_ptr failure;
  const bool wasStarted = state == Bundle::STATE_ACTIVE;
  state = Bundle::STATE_STOPPING;
  if (wasStarted && activator) {
    try {
      activator->Stop(MakeBundleContext(GetContext()));
    } catch (...) {
      failure = std::make_exception_ptr(std::runtime_error(
          Describe() + ", BundleActivator::Stop() failed: " + GetLastExceptionStr()));
    }
    activator.reset();
  }
  RemoveBundleResources();
  InvalidateContext();
  state = Bundle::STATE_RESOLVED;
  return failure;
}

// ------------------------------------------------------------- the loader

std::vector<Bundle> BundleRegistry::Install(std::string const& location) {
  {
    std::lock_guard lock(mutex);
    if (auto it = bundles.find(location); it != bundles.end()) {
      return {BundlePrivate::MakeBundle(it->second)};
    }
  }
  struct stat status {};
  if (::stat(location.c_str(), &status) != 0) {
    throw std::runtime_error(location + " does not exist");
  }
  // Loading runs the library's initialisers, code of its authors, so no lock
  // is held. The library stays loaded for good: service objects and other
  // code of a bundle may outlive it.
  void* library = dlopen(location.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) {
    char const* reason = dlerror();
    throw std::runtime_error("Failed to install bundle library at " + location + ": " +
                             (reason != nullptr ? reason : "unknown"));
  }
  const std::string name = BundleNameOf(library);
  if (name.empty()) {
    throw std::runtime_error("Could not init zip archive for bundle at " + location);
  }

  auto corePtr = core.shared_from_this();
  std::lock_guard lock(mutex);
  if (auto it = bundles.find(location); it != bundles.end()) {
    return {BundlePrivate::MakeBundle(it->second)};  // installed meanwhile
  }
  for (auto const& [otherLocation, other] : bundles) {
    if (other->symbolicName == name) {
      throw std::runtime_error("Failed to install bundle library at " + location + ": Bundle " +
                               name + " (location=" + location +
                               "), a bundle with same symbolic name and version is already "
                               "installed (" +
                               name + ", 0.0.0)");
    }
  }
  auto bundle = std::make_shared<BundlePrivate>(corePtr, nextId++, location, name, library);
  bundles.emplace(location, bundle);
  return {BundlePrivate::MakeBundle(bundle)};
}

std::vector<std::shared_ptr<BundlePrivate>> BundleRegistry::GetBundles() const {
  std::vector<std::shared_ptr<BundlePrivate>> result;
  std::lock_guard lock(mutex);
  result.reserve(bundles.size());
  for (auto const& entry : bundles) result.push_back(entry.second);
  return result;
}

void BundleRegistry::Clear() {
  std::map<std::string, std::shared_ptr<BundlePrivate>> forgotten;
  {
    std::lock_guard lock(mutex);
    forgotten.swap(bundles);
    nextId = 1;
  }
  // `forgotten` goes here, after the lock: a bundle nobody else holds takes
  // its activator, if any, with it.
}

}  // namespace cppmicroservices
