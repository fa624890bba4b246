#include "ui/core/source.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "probe.h"
#include "source_test_support.h"

// The only test of this process. It finds only the test set "flaky", whose
// bundle's activator refuses its first start.

// ThreadSanitizer's replacement of pthread_once, on which std::call_once is
// built, never returns when the callable throws, so under it this test would
// hang instead of testing the kernel.
#if defined(__SANITIZE_THREAD__)
constexpr bool under_thread_sanitizer = true;
#elif defined(__has_feature)
constexpr bool under_thread_sanitizer = __has_feature(thread_sanitizer);
#else
constexpr bool under_thread_sanitizer = false;
#endif

namespace {

using namespace source_test;
using bundle_probe::Event;

TEST(CreateSource, FailedInstallationPassesItsExceptionAndIsTriedAgain) {
  if (under_thread_sanitizer) {
    GTEST_SKIP() << "std::call_once with a throwing callable hangs under ThreadSanitizer";
  }
  use_bundle_sets("flaky");
  const krel::Location where(u"retry.model", 2, 3);
  try {
    (void)ui::core::create_source(where);
    FAIL() << "the first installation should have failed";
  } catch (const std::runtime_error& e) {
    // The framework reports the failed start itself, naming the bundle and
    // ending with what the activator threw.
    const std::string what = e.what();
    EXPECT_EQ(what.rfind("Bundle flaky_source_creator (location= ", 0), 0u) << what;
    const std::string tail = ") start failed: the flaky bundle refuses its first start";
    ASSERT_GE(what.size(), tail.size()) << what;
    EXPECT_EQ(what.substr(what.size() - tail.size()), tail) << what;
    EXPECT_NE(what.find("libflaky_source_creator.so"), std::string::npos) << what;
  }
  EXPECT_EQ(bundle_probe::count(Event::start_called, "flaky"), 1);
  EXPECT_EQ(bundle_probe::count(Event::started, "flaky"), 0);

  const auto source = ui::core::create_source(where);
  ASSERT_TRUE(source);
  EXPECT_EQ(printed(*source), "retry.model:2:3");
  EXPECT_EQ(bundle_probe::count(Event::start_called, "flaky"), 2);
  EXPECT_EQ(bundle_probe::count(Event::started, "flaky"), 1);

  // Installed now: later calls do not install again.
  (void)ui::core::create_source(where);
  ui::core::install_and_start_kalder_create_source();
  EXPECT_EQ(bundle_probe::count(Event::start_called, "flaky"), 2);
}

}  // namespace
