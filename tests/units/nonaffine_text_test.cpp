// Claims about the non-affine unit text that the other unit tests leave open:
// the argument form, and that every fallback gives the expression's own
// canonical text rather than the text it was written with.

#include <gtest/gtest.h>

#include <type_traits>

#include "ui/core/unit_conversion.h"
#include "units2_test/test_units.h"

namespace {

using ui::core::ps2dravik_nonaffine_unit_conversion;
using ui::core::ustring;
using units2::core::Expr;

static_assert(
    std::is_same_v<decltype(&ps2dravik_nonaffine_unit_conversion), ustring (*)(const Expr&, bool)>);

TEST(NonaffineUnitConversionConformance, EveryFallbackGivesTheCanonicalOwnText) {
  const units2_test::ScopedContext units(units2_test::test_context());
  // Flag not set.
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u" ( degC ) "), false), u"degC");
  // Not a single unit.
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u"s^-2 * m"), true), u"m/s^2");
  // No delta unit.
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u"(m)"), true), u"m");
  // Delta unit with an offset of its own, of another quantity, of another scale.
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u"(tstW)"), true), u"tstW");
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u"(tstV)"), true), u"tstV");
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u"(tstU)"), true), u"tstU");
}

}  // namespace
