// probe.h - what happened to the test bundles, for the tests to read
//
// Test bundles report their activators' calls here; tests read the counts.
// The library is loaded once per process, so bundles and tests see the same
// counts.
//
//   bundle_probe::record(bundle_probe::Event::started, "counting");
//   EXPECT_EQ(bundle_probe::count(bundle_probe::Event::started, "counting"), 1);

#ifndef UI_CORE_BUNDLES_TESTING_PROBE_H
#define UI_CORE_BUNDLES_TESTING_PROBE_H

#include <string>
#include <string_view>

namespace bundle_probe {

enum class Event { start_called, started, stopped };

/// Threads: may be called on any threads at once.
void record(Event event, std::string_view bundle);
[[nodiscard]] int count(Event event, std::string_view bundle);

/// A service the probe bundle registers, so a test can see that it started.
class Marker {
 public:
  virtual ~Marker() = default;
  [[nodiscard]] virtual std::string bundle() const = 0;
};

}  // namespace bundle_probe

#endif  // UI_CORE_BUNDLES_TESTING_PROBE_H
