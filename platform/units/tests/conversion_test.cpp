#include "units2/core/conversion.h"

#include <gtest/gtest.h>

#include "expect_message.h"

namespace {

using krel::ustring;
using units2::core::conversion;
using units2::core::Conversion;
using units2::core::ConversionMode;
using units2::core::ConversionRational;
using units2::core::ConversionValue;
using units2::core::Expr;

Conversion affine(const ustring& from, const ustring& to) {
  return conversion(Expr(from), Expr(to), ConversionMode::affine);
}
Conversion linear(const ustring& from, const ustring& to) {
  return conversion(Expr(from), Expr(to), ConversionMode::linear);
}
ConversionRational factor(const ustring& from, const ustring& to) {
  const Conversion c = linear(from, to);
  EXPECT_TRUE(c.offset().isZero());
  return c.linear();
}
ConversionRational r(long long n, long long d = 1) {
  return ConversionRational(n, d);
}

TEST(Conversion, ImperialLengthsAreExact) {
  EXPECT_EQ(factor(u"in", u"m"), r(127, 5000));
  EXPECT_EQ(factor(u"ft", u"m"), r(381, 1250));
  EXPECT_EQ(factor(u"yd", u"m"), r(1143, 1250));
  EXPECT_EQ(factor(u"mi", u"m"), r(201168, 125));
  EXPECT_EQ(factor(u"mi", u"km"), r(201168, 125000));
  EXPECT_EQ(factor(u"m", u"in"), r(5000, 127));
  EXPECT_EQ(factor(u"in^2", u"mm^2"), r(16129, 25));
}

TEST(Conversion, PoundsAreExact) {
  EXPECT_EQ(factor(u"lbm", u"kg"), r(45359237, 100000000));
  // lbf = 0.45359237 kg * 9.80665 m/s^2
  EXPECT_EQ(factor(u"lbf", u"N"), r(45359237, 100000000) * r(980665, 100000));
  // psi = lbf/in^2, exactly
  EXPECT_EQ(factor(u"psi", u"lbf/in^2"), r(1));
  EXPECT_EQ(factor(u"psi", u"Pa"),
            r(45359237, 100000000) * r(980665, 100000) / (r(127, 5000) * r(127, 5000)));
}

TEST(Conversion, PressureAndEnergy) {
  EXPECT_EQ(factor(u"bar", u"Pa"), r(100000));
  EXPECT_EQ(factor(u"mbar", u"hPa"), r(1));
  EXPECT_EQ(factor(u"atm", u"bar"), r(101325, 100000));
  EXPECT_EQ(factor(u"kWh", u"J"), r(3600000));
  EXPECT_EQ(factor(u"N*m", u"J"), r(1));
  EXPECT_EQ(factor(u"eV", u"J"),
            ConversionRational(1602176634, ConversionValue("10000000000000000000000000000")));
  EXPECT_EQ(factor(u"hp", u"W"),
            r(550) * r(381, 1250) * r(45359237, 100000000) * r(980665, 100000));
}

TEST(Conversion, TimeVolumeAndPrefixes) {
  EXPECT_EQ(factor(u"hr", u"s"), r(3600));
  EXPECT_EQ(factor(u"h", u"min"), r(60));
  EXPECT_EQ(factor(u"day", u"h"), r(24));
  EXPECT_EQ(factor(u"L", u"m^3"), r(1, 1000));
  EXPECT_EQ(factor(u"mL", u"cm^3"), r(1));
  EXPECT_EQ(factor(u"km/h", u"m/s"), r(5, 18));
  EXPECT_EQ(factor(u"g", u"kg"), r(1, 1000));
  EXPECT_EQ(factor(u"Mg", u"t"), r(1));
  EXPECT_EQ(factor(u"um", u"m"), r(1, 1000000));
  EXPECT_EQ(factor(u"1/ms", u"kHz"), r(1));
}

TEST(Conversion, TemperaturePointsUseOffsets) {
  const Conversion f_to_k = affine(u"degF", u"K");
  EXPECT_EQ(f_to_k(r(32)), r(27315, 100));
  const Conversion f_to_c = affine(u"degF", u"degC");
  EXPECT_EQ(f_to_c(r(212)), r(100));
  EXPECT_EQ(f_to_c(r(32)), r(0));
  EXPECT_EQ(f_to_c.linear(), r(5, 9));
  EXPECT_EQ(f_to_c.offset(), r(-160, 9));
  EXPECT_EQ(affine(u"degC", u"K")(r(0)), r(27315, 100));
  EXPECT_EQ(affine(u"K", u"degC")(r(0)), r(-27315, 100));
  EXPECT_EQ(affine(u"degR", u"degF")(r(0)), r(-45967, 100));
  EXPECT_EQ(affine(u"degC", u"degF")(r(-40)), r(-40));
}

TEST(Conversion, LinearModeIgnoresOffsets) {
  EXPECT_EQ(factor(u"deltadegF", u"deltaK"), r(5, 9));
  EXPECT_EQ(factor(u"degF", u"degC"), r(5, 9));
  EXPECT_EQ(factor(u"deltadegC", u"degC"), r(1));
  EXPECT_EQ(factor(u"deltadegF", u"degF"), r(1));
  EXPECT_EQ(factor(u"deltatstU", u"tstU"), r(2));
  // The two modes agree wherever no offset is involved.
  EXPECT_EQ(affine(u"deltadegF", u"deltaK"), linear(u"deltadegF", u"deltaK"));
}

TEST(Conversion, AnglesAreExactAmongTurnsAndDegrees) {
  EXPECT_EQ(factor(u"rev", u"deg"), r(360));
  EXPECT_EQ(factor(u"rpm", u"deg/s"), r(6));
  EXPECT_EQ(factor(u"rpm", u"rev/min"), r(1));
  EXPECT_EQ(factor(u"deg", u"arcsec"), r(3600));
  EXPECT_EQ(factor(u"sr", u"rad^2"), r(1));
  EXPECT_EQ(factor(u"deg^2", u"rev^2"), r(1, 129600));
}

TEST(Conversion, RadiansToDegreesIsRefusedNotRounded) {
  // 1 rpm is 2*pi/60 rad/s, which no rational factor represents.
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)linear(u"rpm", u"rad/s"); }, "units2:core", "InexactConversion",
      {ustring(u"rpm"), ustring(u"rad/s"), ustring(u"1/30*pi")}));
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)linear(u"rad", u"deg"); }, "units2:core", "InexactConversion",
      {ustring(u"rad"), ustring(u"deg"), ustring(u"180*pi^-1")}));
}

TEST(Conversion, RationalPowersConvertWhenTheRootIsExact) {
  EXPECT_EQ(factor(u"um^(1/2)", u"m^(1/2)"), r(1, 1000));
  EXPECT_EQ(factor(u"(m^3)^(1/3)", u"m"), r(1));
  // 1000^(1/2) * 10^(1/2) is 100: the roots cancel.
  EXPECT_EQ(factor(u"km^(1/2)*dam^(1/2)", u"m"), r(100));
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)linear(u"km^(1/2)", u"m^(1/2)"); }, "units2:core", "InexactConversion",
      {ustring(u"km^(1/2)"), ustring(u"m^(1/2)"), ustring(u"10*10^(1/2)")}));
}

TEST(Conversion, RefusesExpressionsOfDifferentQuantities) {
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"m", u"s"); }, "units2:core",
                                           "NotCommensurate", {ustring(u"m"), ustring(u"s")}));
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"deltatstV", u"tstV"); },
                                           "units2:core", "NotCommensurate",
                                           {ustring(u"deltatstV"), ustring(u"tstV")}));
}

TEST(Conversion, RefusesInvalidExpressions) {
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"m^", u"m"); }, "units2:core",
                                           "InvalidExpression", {}));
  EXPECT_TRUE(test_support::throws_message([] { (void)affine(u"m", u"furlong"); }, "units2:core",
                                           "InvalidExpression", {}));
}

TEST(Conversion, RefusesUnknownModes) {
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)conversion(Expr(u"m"), Expr(u"m"), static_cast<ConversionMode>(7)); },
      "units2:core", "InvalidConversionMode", {std::int64_t{7}}));
}

}  // namespace
