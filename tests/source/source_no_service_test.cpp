#include "ui/core/source.h"

#include <gtest/gtest.h>

#include "expect_error.h"
#include "source_test_support.h"

// This process finds no bundle set at all, so no creator is registered.

namespace {

using namespace source_test;
using test_support::text_arg;
using ui::core::create_source;
using ui::core::ErrorId;

class NoBundles : public ::testing::Environment {
 public:
  void SetUp() override { use_bundle_sets(""); }
};
[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new NoBundles);

TEST(CreateSource, LocationWithoutAServiceIsRefusedWithKindKrelLocation) {
  EXPECT_TRUE(test_support::throws_error([] { (void)create_source(krel::Location(u"a", 1, 1)); },
                                         ErrorId::CannotCreateSource,
                                         {text_arg(u"krel::Location")}));
}

TEST(CreateSource, BlockWithoutAServiceIsRefusedWithKindKrelDravikId) {
  EXPECT_TRUE(test_support::throws_error([] { (void)create_source(krel::DravikId(u"m/G")); },
                                         ErrorId::CannotCreateSource,
                                         {text_arg(u"krel::DravikId")}));
}

TEST(CreateSource, OpenDialogWithoutAServiceIsRefusedWithKindOpenDialog) {
  for (bool flag : {true, false}) {
    EXPECT_TRUE(
        test_support::throws_error([flag] { (void)create_source(krel::DravikId(u"m/G"), flag); },
                                   ErrorId::CannotCreateSource, {text_arg(u"OpenDialog")}));
  }
}

TEST(CreateSource, RefusalTextNamesTheKindOfKey) {
  try {
    (void)create_source(krel::Location(u"a", 1, 1));
    FAIL() << "no exception";
  } catch (const krel::MessageException& e) {
    EXPECT_STREQ(e.what(),
                 "kalder:common:ui:core:kernel:source:CannotCreateSource: No service can create a "
                 "source of the kind krel::Location.");
  }
}

}  // namespace
