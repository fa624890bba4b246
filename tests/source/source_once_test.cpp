#include "ui/core/source.h"

#include <gtest/gtest.h>

#include "expect_error.h"
#include "probe.h"
#include "source_test_support.h"

// This process finds only the test set "counting": one bundle that counts its
// starts and registers a creator for locations, and for no other key.

namespace {

using namespace source_test;
using bundle_probe::Event;
using ui::core::create_source;
using ui::core::ErrorId;

class CountingSetOnly : public ::testing::Environment {
 public:
  void SetUp() override { use_bundle_sets("counting"); }
};
[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new CountingSetOnly);

TEST(CreateSource, TwoCallsInstallAndStartTheBundleSetOnce) {
  const auto first = create_source(krel::Location(u"a.model", 1, 2));
  const auto second = create_source(krel::Location(u"b.model", 3, 4));
  ui::core::install_and_start_kalder_create_source();
  ASSERT_TRUE(first);
  ASSERT_TRUE(second);
  EXPECT_EQ(printed(*first), "a.model:1:2");
  EXPECT_EQ(printed(*second), "b.model:3:4");
  EXPECT_EQ(bundle_probe::count(Event::start_called, "counting"), 1);
  EXPECT_EQ(bundle_probe::count(Event::started, "counting"), 1);
}

TEST(CreateSource, BlockWithoutAServiceIsRefusedWithItsKindName) {
  EXPECT_TRUE(test_support::throws_error([] { (void)create_source(krel::DravikId(u"m/Gain")); },
                                         ErrorId::CannotCreateSource,
                                         {test_support::text_arg(u"krel::DravikId")}));
  EXPECT_EQ(bundle_probe::count(Event::start_called, "counting"), 1);
}

TEST(CreateSource, OpenDialogWithoutAServiceIsRefusedWithItsKindName) {
  EXPECT_TRUE(test_support::throws_error(
      [] { (void)create_source(krel::DravikId(u"m/Gain"), true); }, ErrorId::CannotCreateSource,
      {test_support::text_arg(u"OpenDialog")}));
  EXPECT_EQ(bundle_probe::count(Event::start_called, "counting"), 1);
}

}  // namespace
