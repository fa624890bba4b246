// test_bundle_api.h - what the conformance tests share with their test bundles
//
// A test steers the activator of a test bundle through a Script service that
// it registers with the framework before it starts the bundle: the activator
// looks the Script up in its Start, records what happens to it there, and
// does what the Script asks (return, or throw). A started test bundle
// registers two Marker services, "<bundle>/1" and "<bundle>/2", which record
// their release.
//
//   class Recorder : public services_test::Script { ... };
//   auto script = context.RegisterService<services_test::Script>(std::make_shared<Recorder>());
//   bundle.Start();  // the Recorder now holds "start services_test_alpha"

#ifndef UI_CORE_SERVICES_TESTS_TEST_BUNDLE_API_H
#define UI_CORE_SERVICES_TESTS_TEST_BUNDLE_API_H

#include <string>

#include "cppmicroservices/BundleContext.h"

namespace services_test {

struct Script {
  virtual ~Script() = default;

  /// How the activator's Start (Stop) of `bundle` ends: "" returns;
  /// "runtime_error:TEXT" throws std::runtime_error(TEXT); "int" throws 42;
  /// "system_error" throws std::system_error(EACCES, "denied").
  virtual std::string start_action(const std::string& bundle) = 0;
  virtual std::string stop_action(const std::string& bundle) = 0;

  /// One event: "start B", "stop B", "destroy B" (the activator is
  /// destroyed) and "release B/1" (a Marker is destroyed).
  virtual void record(const std::string& event) = 0;

  /// The context the activator's Start of `bundle` got.
  virtual void keep_context(const std::string& bundle, cppmicroservices::BundleContext context) = 0;
};

struct Marker {
  virtual ~Marker() = default;
  virtual std::string name() const = 0;
};

}  // namespace services_test

#endif  // UI_CORE_SERVICES_TESTS_TEST_BUNDLE_API_H
