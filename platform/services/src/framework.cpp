// framework.cpp - frameworks: making, starting, stopping and waiting for them

#include "cppmicroservices/Framework.h"

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "framework_impl.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

namespace cppmicroservices {
namespace {

std::atomic<long> nextFrameworkId{0};

FrameworkPrivate& Pimpl(std::shared_ptr<BundlePrivate> const& d) {
  if (!d) throw std::invalid_argument("invalid bundle");
  return static_cast<FrameworkPrivate&>(*d);
}

}  // namespace

CoreBundleContext::CoreBundleContext() : id(nextFrameworkId++) {}

Framework FrameworkFactory::NewFramework() {
  auto core = std::make_shared<CoreBundleContext>();
  core->systemBundle = std::make_shared<FrameworkPrivate>(core);
  return Framework(core->systemBundle);
}

// --------------------------------------------------------------- handles

Framework::Framework(Bundle b) : Bundle(std::move(b)) {
  if (GetBundleId() != 0) throw std::logic_error("Not a framework bundle");
}

Framework::Framework(std::shared_ptr<FrameworkPrivate> const& framework) : Bundle(framework) {}
Framework::Framework(Framework const& fw) = default;
Framework::Framework(Framework&& fw) noexcept = default;
Framework& Framework::operator=(Framework const& fw) = default;
Framework& Framework::operator=(Framework&& fw) noexcept = default;

void Framework::Init() {
  Pimpl(d).Init();
}

FrameworkEvent Framework::WaitForStop(std::chrono::milliseconds const& timeout) {
  return Pimpl(d).WaitForStop(timeout);
}

// ------------------------------------------------------------- the state

FrameworkPrivate::FrameworkPrivate(std::shared_ptr<CoreBundleContext> const& core)
    : BundlePrivate(core, 0, Constants::SYSTEM_BUNDLE_LOCATION,
                    Constants::SYSTEM_BUNDLE_SYMBOLICNAME, nullptr) {}

void FrameworkPrivate::Init() {
  std::lock_guard op(operation);
  switch (state.load()) {
    case Bundle::STATE_INSTALLED:
    case Bundle::STATE_RESOLVED:
      DoInit();
      return;
    case Bundle::STATE_STARTING:
    case Bundle::STATE_ACTIVE:
      return;
    default:
      throw std::logic_error("INTERNAL ERROR, Illegal state, " + std::to_string(state.load()));
  }
}

void FrameworkPrivate::DoInit() {
  state = Bundle::STATE_STARTING;
  NewContext();
}

void FrameworkPrivate::Start() {
  std::lock_guard op(operation);
  if (auto core = coreCtx.lock()) core->stopped = false;
  switch (state.load()) {
    case Bundle::STATE_INSTALLED:
    case Bundle::STATE_RESOLVED:
      DoInit();
      break;
    case Bundle::STATE_STARTING:
      break;
    case Bundle::STATE_ACTIVE:
      return;
    default:
      throw std::runtime_error("INTERNAL ERROR, Illegal state, " + std::to_string(state.load()));
  }
  state = Bundle::STATE_ACTIVE;
}

void FrameworkPrivate::Stop() {
  std::lock_guard op(operation);
  switch (state.load()) {
    case Bundle::STATE_INSTALLED:
    case Bundle::STATE_RESOLVED:
      SetStopEvent(FrameworkEvent::FRAMEWORK_STOPPED, nullptr);
      return;
    case Bundle::STATE_ACTIVE:
      Shutdown0(true);
      return;
    case Bundle::STATE_STARTING:
      Shutdown0(false);
      return;
    default:  // stopping already: called from an activator's Stop
      return;
  }
}

void FrameworkPrivate::Shutdown0(bool wasActive) {
  try {
    state = Bundle::STATE_STOPPING;
    auto core = coreCtx.lock();
    if (!core) throw std::logic_error("This framework instance is not active.");
    core->stopped = true;
    if (wasActive) StopAllBundles(*core);
    InvalidateContext();
    core->bundleRegistry.Clear();
    core->services.Clear();
    SetStopEvent(FrameworkEvent::FRAMEWORK_STOPPED, nullptr);
  } catch (...) {
    SetStopEvent(FrameworkEvent::FRAMEWORK_ERROR, std::current_exception());
  }
}

void FrameworkPrivate::StopAllBundles(CoreBundleContext& core) {
  // In reverse order of location; a bundle's failure to stop does not keep
  // the others from stopping.
  auto bundles = core.bundleRegistry.GetBundles();
  for (auto it = bundles.rbegin(); it != bundles.rend(); ++it) {
    const auto bundleState = (*it)->state.load();
    if (bundleState != Bundle::STATE_ACTIVE && bundleState != Bundle::STATE_STARTING) continue;
    try {
      (*it)->Stop();
    } catch (...) {
      // reported by nobody: a framework stop does not fail for a bundle
    }
  }
  for (auto const& bundle : core.bundleRegistry.GetBundles()) bundle->SetStateInstalled();
}

void FrameworkPrivate::SetStopEvent(FrameworkEvent::Type type, std::exception_ptr exception) {
  {
    std::lock_guard lock(stopMutex);
    if (state != Bundle::STATE_INSTALLED) state = Bundle::STATE_RESOLVED;
    stopEvent = StopEvent{true, type, std::move(exception)};
  }
  stopChanged.notify_all();
}

FrameworkEvent FrameworkPrivate::WaitForStop(std::chrono::milliseconds const& timeout) {
  std::unique_lock lock(stopMutex);
  if ((state & (Bundle::STATE_INSTALLED | Bundle::STATE_RESOLVED)) == 0) {
    stopEvent = StopEvent{false, FrameworkEvent::FRAMEWORK_ERROR, nullptr};
    auto stopped = [this] { return stopEvent.valid; };
    if (timeout == std::chrono::milliseconds::zero()) {
      stopChanged.wait(lock, stopped);
    } else {
      stopChanged.wait_for(lock, timeout, stopped);
    }
    if (!stopEvent.valid) {
      return FrameworkEvent(FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT, MakeBundle(shared_from_this()),
                            std::string(), nullptr);
    }
  } else if (!stopEvent.valid) {
    stopEvent = StopEvent{true, FrameworkEvent::FRAMEWORK_STOPPED, nullptr};
  }
  return FrameworkEvent(stopEvent.type, MakeBundle(shared_from_this()), std::string(),
                        stopEvent.exception);
}

// ---------------------------------------------------------------- events

class FrameworkEventData {
 public:
  FrameworkEventData(FrameworkEvent::Type eventType, Bundle origin, std::string text,
                     std::exception_ptr error)
      : type(eventType), bundle(std::move(origin)), message(std::move(text)), exception(error) {}

  const FrameworkEvent::Type type;
  const Bundle bundle;
  const std::string message;
  const std::exception_ptr exception;
};

FrameworkEvent::FrameworkEvent() = default;

FrameworkEvent::FrameworkEvent(Type type, Bundle const& bundle, std::string const& message,
                               const std::exception_ptr exception)
    : d(std::make_shared<FrameworkEventData>(type, bundle, message, exception)) {}

FrameworkEvent::operator bool() const {
  return d != nullptr;
}
Bundle FrameworkEvent::GetBundle() const {
  return d ? d->bundle : Bundle();
}
std::string FrameworkEvent::GetMessage() const {
  return d ? d->message : std::string();
}
std::exception_ptr FrameworkEvent::GetThrowable() const {
  return d ? d->exception : nullptr;
}
FrameworkEvent::Type FrameworkEvent::GetType() const {
  return d ? d->type : FRAMEWORK_ERROR;
}

}  // namespace cppmicroservices
