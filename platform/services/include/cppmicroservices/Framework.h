// cppmicroservices/Framework.h - a running instance of the service registry
//
// A framework owns one service registry. It is made by FrameworkFactory,
// started, and stopped when the process no longer needs it:
//
//   cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
//   framework.Start();
//   cppmicroservices::BundleContext context = framework.GetBundleContext();
//   ...
//   framework.Stop();  // every service is withdrawn; `context` reads false

#ifndef CPPMICROSERVICES_FRAMEWORK_H
#define CPPMICROSERVICES_FRAMEWORK_H

#include <memory>
#include <utility>

#include "cppmicroservices/BundleContext.h"

namespace cppmicroservices {

class FrameworkFactory;

/// Ownership: a handle; copies control the same framework. Threads: Start,
/// Stop and GetBundleContext may be called on any threads at once.
class Framework {
 public:
  /// A framework of nothing; its context reads false and Start throws.
  Framework() = default;

  /// Starts the framework; a running framework stays as it is. Contexts
  /// obtained from then on are valid. A framework that was stopped may be
  /// started again, but the contexts of its earlier run stay invalid.
  void Start();

  /// Stops the framework: every service is unregistered, and every context
  /// of this run reads false from then on. The service objects the registry
  /// held are released after its lock is, last registered first. Stopping a
  /// framework that does not run does nothing.
  void Stop();

  /// The framework's context: valid while the framework runs.
  [[nodiscard]] BundleContext GetBundleContext() const;

 private:
  friend class FrameworkFactory;

  explicit Framework(std::shared_ptr<detail::Registry> registry) : registry_(std::move(registry)) {}

  std::shared_ptr<detail::Registry> registry_;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_FRAMEWORK_H
