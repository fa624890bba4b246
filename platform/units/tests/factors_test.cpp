#include "units2/core/factors.h"

#include <gtest/gtest.h>

namespace {

using units2::core::Exponent;
using units2::core::Factors;
using units2::core::RawExpr;
using units2::core::to_raw_expr;
using units2::core::UnitId;

Factors f(const char* id, Exponent e = Exponent(1)) {
  return Factors(UnitId(id), e);
}

TEST(Factors, SingletonIsTheUnitOnlyAtPowerOne) {
  ASSERT_TRUE(f("degC").singleton().has_value());
  EXPECT_EQ(*f("degC").singleton(), UnitId("degC"));
  EXPECT_FALSE(f("m", Exponent(2)).singleton().has_value());
  EXPECT_FALSE(f("m", Exponent(1, 2)).singleton().has_value());
  EXPECT_FALSE((f("N") * f("m")).singleton().has_value());
  EXPECT_FALSE(Factors().singleton().has_value());
}

TEST(Factors, ZeroExponentGivesTheEmptyProduct) {
  EXPECT_TRUE(f("m", Exponent(0)).empty());
  EXPECT_TRUE((f("m") / f("m")).empty());
}

TEST(Factors, ProductMergesEqualUnitsWhateverTheOrder) {
  const Factors a = f("N") * f("m");
  const Factors b = f("m") * f("N");
  EXPECT_EQ(a, b);
  EXPECT_EQ((f("m") * f("m")).exponent(UnitId("m")), Exponent(2));
  EXPECT_EQ((f("N") * f("m", Exponent(2)) / f("m")), a);
  EXPECT_EQ(a.exponent(UnitId("s")), Exponent(0));
}

TEST(Factors, PowerMultipliesEveryExponent) {
  const Factors speed = f("m") / f("s");
  const Factors squared = speed.pow(Exponent(2));
  EXPECT_EQ(squared.exponent(UnitId("m")), Exponent(2));
  EXPECT_EQ(squared.exponent(UnitId("s")), Exponent(-2));
  EXPECT_TRUE(speed.pow(Exponent(0)).empty());
}

TEST(Factors, OverflowingProductLeavesTheOperandUnchanged) {
  Factors a = f("m", Exponent(INT64_MAX));
  const Factors before = a;
  EXPECT_THROW(a *= f("m"), units2::core::NonFiniteExponent);
  EXPECT_EQ(a, before);
}

TEST(RawExpr, PrintsTheCanonicalForm) {
  EXPECT_EQ(to_raw_expr(f("s", Exponent(-2)) * f("kg") * f("m", Exponent(2))).text(), "kg*m^2/s^2");
  EXPECT_EQ(to_raw_expr(f("s", Exponent(-1))).text(), "1/s");
  EXPECT_EQ(to_raw_expr(Factors()).text(), "1");
  EXPECT_EQ(to_raw_expr(f("m", Exponent(1, 2))).text(), "m^(1/2)");
  EXPECT_EQ(to_raw_expr(f("m", Exponent(-1, 2))).text(), "1/m^(1/2)");
  EXPECT_EQ(to_raw_expr(f("W") / f("m") / f("K")).text(), "W/(K*m)");
  EXPECT_EQ(to_raw_expr(f("m") * f("N")).text(), "N*m");
}

TEST(RawExpr, ConvertsToUstring) {
  const krel::ustring text = to_raw_expr(f("m") / f("s"));
  EXPECT_EQ(text, u"m/s");
  EXPECT_EQ(RawExpr("a"), RawExpr("a"));
}

}  // namespace
