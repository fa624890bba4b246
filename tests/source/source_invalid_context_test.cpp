#include "ui/core/source.h"

#include <gtest/gtest.h>

#include "expect_error.h"
#include "krel/bundles.h"
#include "source_test_support.h"

// The only test of this process: it stops the process's framework, which a
// process cannot undo. The installed bundle set is found next to the library.

namespace {

using namespace source_test;
using test_support::text_arg;
using ui::core::create_source;
using ui::core::ErrorId;

TEST(CreateSource, InvalidContextRefusesEveryKindOfKey) {
  // With a running framework, the installed bundle makes sources...
  ASSERT_TRUE(create_source(krel::Location(u"a.model", 1, 1)));
  ASSERT_TRUE(create_source(krel::DravikId(u"m/G")));
  ASSERT_TRUE(create_source(krel::DravikId(u"m/G"), true));

  // ...and once it has stopped, nothing can.
  krel::stop_global_framework();
  ASSERT_FALSE(krel::get_global_bundle_context());
  EXPECT_TRUE(test_support::throws_error([] { (void)create_source(krel::Location(u"a", 1, 1)); },
                                         ErrorId::CannotCreateSource,
                                         {text_arg(u"krel::Location")}));
  EXPECT_TRUE(test_support::throws_error([] { (void)create_source(krel::DravikId(u"m/G")); },
                                         ErrorId::CannotCreateSource,
                                         {text_arg(u"krel::DravikId")}));
  EXPECT_TRUE(test_support::throws_error([] { (void)create_source(krel::DravikId(u"m/G"), false); },
                                         ErrorId::CannotCreateSource, {text_arg(u"OpenDialog")}));
}

}  // namespace
