#include "units2/core/magnitude.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "expect_message.h"

namespace {

using units2::core::ConversionRational;
using units2::core::Exponent;
using units2::core::Magnitude;

TEST(Magnitude, TurnInDegreesIsExactlyThreeHundredSixty) {
  const Magnitude deg = Magnitude(ConversionRational(1, 180)) * Magnitude::pi();
  const Magnitude rev = Magnitude(ConversionRational(2)) * Magnitude::pi();
  const Magnitude ratio = rev / deg;
  ASSERT_TRUE(ratio.is_rational());
  EXPECT_EQ(ratio.rational_part(), ConversionRational(360));
  EXPECT_FALSE(deg.is_rational());
  EXPECT_EQ(deg.to_string(), "1/180*pi");
}

TEST(Magnitude, RationalRootsAreTakenExactly) {
  const Magnitude a = Magnitude(ConversionRational(1, 1000000)).pow(Exponent(1, 2));
  ASSERT_TRUE(a.is_rational());
  EXPECT_EQ(a.rational_part(), ConversionRational(1, 1000));
  const Magnitude b = Magnitude(ConversionRational(1000)).pow(Exponent(2, 3));
  ASSERT_TRUE(b.is_rational());
  EXPECT_EQ(b.rational_part(), ConversionRational(100));
}

TEST(Magnitude, IrrationalRootsStayRootsAndCancelExactly) {
  const Magnitude root = Magnitude(ConversionRational(1000)).pow(Exponent(1, 2));
  EXPECT_FALSE(root.is_rational());
  EXPECT_EQ(root.to_string(), "10*10^(1/2)");
  EXPECT_NEAR(root.to_double(), std::sqrt(1000.0), 1e-9);
  const Magnitude square = root * root;
  ASSERT_TRUE(square.is_rational());
  EXPECT_EQ(square.rational_part(), ConversionRational(1000));
  // 100^(1/4) is reduced to 10^(1/2), so it cancels against that root.
  const Magnitude quarter = Magnitude(ConversionRational(100)).pow(Exponent(1, 4));
  EXPECT_TRUE((quarter / Magnitude(ConversionRational(10)).pow(Exponent(1, 2))).is_rational());
}

TEST(Magnitude, PowersOfPiAreTracked) {
  const Magnitude sr_in_deg2 =
      (Magnitude(ConversionRational(1, 180)) * Magnitude::pi()).pow(Exponent(2));
  EXPECT_EQ(sr_in_deg2.pi_exponent(), Exponent(2));
  EXPECT_EQ(sr_in_deg2.rational_part(), ConversionRational(1, 32400));
  EXPECT_NEAR(Magnitude::pi().to_double(), std::numbers::pi, 1e-15);
}

TEST(Magnitude, HugePowersAreRefusedBeforeTheyAreComputed) {
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)Magnitude(ConversionRational(1000)).pow(Exponent(1000000)); }, "units2:core",
      "FactorTooLarge", {}));
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)Magnitude(ConversionRational(1, 2)).pow(Exponent(INT64_MAX)); }, "units2:core",
      "FactorTooLarge", {}));
  // One is one to any power.
  EXPECT_TRUE(Magnitude().pow(Exponent(INT64_MAX)).rational_part().isOne());
}

TEST(Magnitude, RefusesNonPositiveRationals) {
  EXPECT_THROW((void)Magnitude(ConversionRational(0)), units2::core::NonFiniteConversionValue);
  EXPECT_THROW((void)Magnitude(ConversionRational(-2)), units2::core::NonFiniteConversionValue);
}

}  // namespace
