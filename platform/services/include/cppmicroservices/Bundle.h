// cppmicroservices/Bundle.h - an installed bundle, and the framework seen as one
//
// A bundle is a shared library installed with BundleContext::InstallBundles.
// Starting it creates the bundle's own BundleContext and, when the library
// exports an activator (see BundleActivator.h), calls the activator's Start
// with that context; stopping it calls the activator's Stop, withdraws every
// service the bundle registered and invalidates its context.
//
//   std::vector<cppmicroservices::Bundle> bundles = context.InstallBundles("/opt/b/libclock.so");
//   cppmicroservices::Bundle clock = bundles.front();
//   clock.Start();   // clock.GetState() == Bundle::STATE_ACTIVE
//   clock.Stop();    // clock.GetState() == Bundle::STATE_RESOLVED
//
// Every member but the comparisons throws std::invalid_argument("invalid
// bundle") on a default-constructed Bundle. A bundle's library is never
// unloaded, so service objects and other code of a bundle may outlive it.

#ifndef CPPMICROSERVICES_BUNDLE_H
#define CPPMICROSERVICES_BUNDLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "cppmicroservices/GlobalConfig.h"

namespace cppmicroservices {

class BundleContext;
class BundlePrivate;
class CoreBundleContext;

/// Ownership: a handle; copies refer to the same bundle. Threads: Start, Stop
/// and the queries may be called on any threads at once (Start and Stop of
/// one bundle take turns); one object is like an int.
class Bundle {
 public:
  /// Where a bundle is in its life.
  enum State : uint32_t {
    STATE_UNINSTALLED = 0x00000001,
    STATE_INSTALLED = 0x00000002,  // installed, or its framework has stopped
    STATE_RESOLVED = 0x00000004,   // stopped, or its start failed
    STATE_STARTING = 0x00000008,   // its activator's Start runs
    STATE_STOPPING = 0x00000010,   // its activator's Stop runs
    STATE_ACTIVE = 0x00000020
  };

  Bundle(Bundle const&);
  Bundle(Bundle&&) noexcept;
  Bundle& operator=(Bundle const&);
  Bundle& operator=(Bundle&&) noexcept;

  /// A bundle of nothing; it reads false.
  Bundle();
  virtual ~Bundle();

  /// Equal when both are the same bundle of the same framework, or both
  /// are bundles of nothing.
  bool operator==(Bundle const& rhs) const;
  bool operator!=(Bundle const& rhs) const;

  /// Orders by framework, then by bundle id; a bundle of nothing is greatest.
  bool operator<(Bundle const& rhs) const;

  explicit operator bool() const;
  Bundle& operator=(std::nullptr_t);

  State GetState() const;

  /// The bundle's own context while it is starting, active or stopping; a
  /// context that reads false otherwise.
  BundleContext GetBundleContext() const;

  /// 0 for the framework; 1, 2, ... in installation order for the bundles
  /// of one run of a framework.
  long GetBundleId() const;

  /// The file the bundle was installed from.
  std::string GetLocation() const;

  /// The bundle's name, US_BUNDLE_NAME of its build.
  std::string GetSymbolicName() const;

  /// Starts the bundle; an active bundle stays as it is. Calls the
  /// activator's Start with the bundle's own context. When Start throws, the
  /// services the bundle registered are withdrawn, its context is
  /// invalidated, the bundle is left RESOLVED (a later Start tries again),
  /// and Start throws std::runtime_error("Bundle NAME (location= FILE) start
  /// failed: " + the original exception's what(), or "unknown"); a
  /// std::system_error becomes a SharedLibraryException instead. Throws
  /// std::runtime_error("Bundle NAME (location=FILE) belongs to a stopped
  /// framework") once its framework has stopped.
  void Start();

  /// Stops the bundle; one that is not active stays as it is. Calls the
  /// activator's Stop with the bundle's own context, withdraws every service
  /// the bundle registered (first registered first) and invalidates the
  /// context. When the activator's Stop throws, all that is done all the
  /// same, and then Stop throws std::runtime_error("Bundle NAME
  /// (location=FILE), BundleActivator::Stop() failed: " + what()).
  void Stop();

 protected:
  Bundle(std::shared_ptr<BundlePrivate> const& d);

  std::shared_ptr<BundlePrivate> d;
  std::shared_ptr<CoreBundleContext> c;  // keeps the framework alive

  friend class BundlePrivate;
  friend class BundleContext;
  friend class BundleRegistry;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_BUNDLE_H
