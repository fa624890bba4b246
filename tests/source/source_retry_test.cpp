#include "ui/core/source.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "probe.h"
#include "source_test_support.h"

// The only test of this process. It finds only the test set "flaky", whose
// bundle refuses its first start.

namespace {

using namespace source_test;
using bundle_probe::Event;

TEST(CreateSource, FailedInstallationPassesItsExceptionAndIsTriedAgain) {
  use_bundle_sets("flaky");
  const krel::Location where(u"retry.ssc", 2, 3);
  try {
    (void)ui::core::create_source(where);
    FAIL() << "the first installation should have failed";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "the flaky bundle refuses its first start");
  }
  EXPECT_EQ(bundle_probe::count(Event::start_called, "flaky"), 1);
  EXPECT_EQ(bundle_probe::count(Event::started, "flaky"), 0);

  const auto source = ui::core::create_source(where);
  ASSERT_TRUE(source);
  EXPECT_EQ(printed(*source), "retry.ssc:2:3");
  EXPECT_EQ(bundle_probe::count(Event::start_called, "flaky"), 2);
  EXPECT_EQ(bundle_probe::count(Event::started, "flaky"), 1);

  // Installed now: later calls do not install again.
  (void)ui::core::create_source(where);
  ui::core::install_and_start_kalder_create_source();
  EXPECT_EQ(bundle_probe::count(Event::start_called, "flaky"), 2);
}

}  // namespace
