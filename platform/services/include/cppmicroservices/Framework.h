// cppmicroservices/Framework.h - a framework, the bundle that runs the others
//
// A framework holds the service registry and the installed bundles. It is
// itself a Bundle (id 0, named "system_bundle", at location "System
// Bundle"): FrameworkFactory makes one, Start starts it, and its context
// (GetBundleContext) installs bundles and registers and finds services.
//
//   cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
//   framework.Start();
//   cppmicroservices::BundleContext context = framework.GetBundleContext();
//   ...
//   framework.Stop();
//   framework.WaitForStop(std::chrono::milliseconds::zero());
//
// Stop() stops every active bundle, in reverse order of their locations (as
// strings), then invalidates the framework's context and forgets every
// installed bundle and every registration; `context` reads false from then
// on. Services registered through the framework's own context are not
// unregistered: their registrations still work (Unregister succeeds and
// releases the object), but no lookup finds them any more. Only a framework
// that was started, not just initialised, stops its bundles. WaitForStop
// returns once the framework has stopped. This registry stops the framework
// before Stop returns; an installed CppMicroServices stops it on another
// thread, so code meant for both waits before relying on the stop.
// A stopped framework may be started again, with a new context and no
// bundles; contexts of the earlier run stay invalid.

#ifndef CPPMICROSERVICES_FRAMEWORK_H
#define CPPMICROSERVICES_FRAMEWORK_H

#include <chrono>
#include <memory>

#include "cppmicroservices/Bundle.h"

namespace cppmicroservices {

class FrameworkEvent;
class FrameworkPrivate;

/// Ownership: a handle; copies control the same framework. Threads: Start,
/// Stop, Init, WaitForStop and GetBundleContext may be called on any threads
/// at once.
class Framework : public Bundle {
 public:
  /// The framework `b` is (the bundle with id 0 of a framework); throws
  /// std::logic_error("Not a framework bundle") for another bundle, and
  /// std::invalid_argument("invalid bundle") for a bundle of nothing.
  explicit Framework(Bundle b);

  Framework(Framework const& fw);
  Framework(Framework&& fw) noexcept;
  Framework& operator=(Framework const& fw);
  Framework& operator=(Framework&& fw) noexcept;

  /// Prepares the framework without starting it: its context becomes valid
  /// and bundles may be installed and started (state STATE_STARTING). An
  /// initialised or active framework stays as it is.
  void Init();

  /// Waits until the framework has stopped, at most `timeout` (zero: without
  /// limit), and tells why: FRAMEWORK_STOPPED; FRAMEWORK_WAIT_TIMEDOUT when
  /// the time ran out; FRAMEWORK_ERROR for a framework that never ran.
  /// Returns at once when the framework does not run.
  FrameworkEvent WaitForStop(std::chrono::milliseconds const& timeout);

 private:
  friend class FrameworkFactory;

  Framework(std::shared_ptr<FrameworkPrivate> const& d);
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_FRAMEWORK_H
