#include "units2/core/rational.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "expect_message.h"
#include "units2/core/conversion_value.h"

namespace {

using units2::core::ConversionRational;
using units2::core::Exponent;
using units2::core::ExponentValue;

constexpr ExponentValue big = std::numeric_limits<ExponentValue>::max();

template <class Fn>
::testing::AssertionResult throws_non_finite_exponent(Fn fn) {
  return test_support::throws_message(fn, "units2:core", "NonFiniteExponent", {});
}

TEST(Exponent, IsStoredInLowestTerms) {
  const Exponent e(2, -4);
  EXPECT_EQ(e.numerator(), -1);
  EXPECT_EQ(e.denominator(), 2);
  EXPECT_EQ(e, Exponent(-1, 2));
}

TEST(Exponent, IsOneOnlyForExactlyOne) {
  EXPECT_TRUE(Exponent(1, 1).isOne());
  EXPECT_TRUE(Exponent(3, 3).isOne());
  EXPECT_FALSE(Exponent(-1, 1).isOne());
  EXPECT_FALSE(Exponent(1, 2).isOne());
  EXPECT_FALSE(Exponent().isOne());
  EXPECT_TRUE((Exponent(1, 2) + Exponent(1, 2)).isOne());
}

TEST(Exponent, ArithmeticIsExact) {
  EXPECT_EQ(Exponent(1, 3) + Exponent(1, 6), Exponent(1, 2));
  EXPECT_EQ(Exponent(1, 3) - Exponent(1, 2), Exponent(-1, 6));
  EXPECT_EQ(Exponent(2, 3) * Exponent(3, 4), Exponent(1, 2));
  EXPECT_EQ(Exponent(2, 3) / Exponent(4, 3), Exponent(1, 2));
  EXPECT_EQ(-Exponent(1, 2), Exponent(-1, 2));
  EXPECT_EQ(Exponent(-7, 2).floor(), -4);
  EXPECT_EQ(Exponent(7, 2).floor(), 3);
  EXPECT_EQ(Exponent(-4).floor(), -4);
}

TEST(Exponent, ZeroDenominatorThrowsNonFinite) {
  EXPECT_TRUE(throws_non_finite_exponent([] { (void)Exponent(1, 0); }));
  EXPECT_TRUE(throws_non_finite_exponent([] { (void)(Exponent(1) / Exponent(0)); }));
  EXPECT_TRUE(throws_non_finite_exponent([] { (void)Exponent(0).reciprocal(); }));
}

TEST(Exponent, OverflowThrowsInsteadOfWrapping) {
  EXPECT_TRUE(throws_non_finite_exponent([] { (void)(Exponent(big) + Exponent(1)); }));
  EXPECT_TRUE(throws_non_finite_exponent([] { (void)(Exponent(big) * Exponent(2)); }));
  EXPECT_TRUE(throws_non_finite_exponent([] { (void)(Exponent(1, big) + Exponent(1, big - 1)); }));
  EXPECT_TRUE(throws_non_finite_exponent(
      [] { (void)Exponent(std::numeric_limits<ExponentValue>::min(), 1); }));
  // Cross-cancelling keeps products that fit from overflowing on the way.
  EXPECT_EQ(Exponent(big, 2) * Exponent(2, big), Exponent(1));
}

TEST(Exponent, PrintsAsIntegerOrFraction) {
  EXPECT_EQ(to_string(Exponent(3)), "3");
  EXPECT_EQ(to_string(Exponent(-1, 2)), "-1/2");
}

TEST(ConversionRational, HoldsNumbersBeyondSixtyFourBits) {
  const ConversionRational huge(units2::core::ConversionValue("123456789012345678901234567890"), 7);
  EXPECT_EQ(to_string(huge * ConversionRational(7)), "123456789012345678901234567890");
  EXPECT_FALSE(huge.isOne());
  EXPECT_TRUE((huge / huge).isOne());
}

TEST(ConversionRational, DivisionByZeroThrowsNonFinite) {
  EXPECT_TRUE(
      test_support::throws_message([] { (void)(ConversionRational(1) / ConversionRational(0)); },
                                   "units2:core", "NonFiniteConversionValue", {}));
}

}  // namespace
