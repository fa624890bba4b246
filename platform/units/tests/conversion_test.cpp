#include "units2/core/conversion.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "expect_message.h"
#include "units2_test/test_units.h"

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
// An exact decimal ("133.322387415").
ConversionRational dec(const char* text) {
  return units2::core::parse_exact_number(text).value();
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
  const units2_test::ScopedContext units(units2_test::test_context());
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
  const units2_test::ScopedContext units(units2_test::test_context());
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"m", u"s"); }, "units2:core",
                                           "NotCommensurate", {ustring(u"m"), ustring(u"s")}));
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"deltatstV", u"tstV"); },
                                           "units2:core", "NotCommensurate",
                                           {ustring(u"deltatstV"), ustring(u"tstV")}));
}

// Each unit against the definition its data line cites, written out here from
// that definition (not from the data), so that a wrong factor in the data fails.
TEST(Conversion, EachUnitMatchesItsDocumentedDefinition) {
  const ConversionRational pound = dec("0.45359237");  // 1959
  const ConversionRational g0 = dec("9.80665");        // 3rd CGPM
  const ConversionRational inch = dec("0.0254");       // 1959
  const ConversionRational foot = 12 * inch;
  const ConversionRational gal_us = 231 * inch * inch * inch;  // HB 44
  const ConversionRational gal_uk = dec("0.00454609");         // UK 1985, in m^3
  const std::vector<std::pair<std::pair<const char16_t*, const char16_t*>, ConversionRational>>
      cases = {
          {{u"lb", u"kg"}, pound},
          {{u"pound", u"kg"}, pound},
          {{u"ozm", u"kg"}, pound / 16},
          {{u"gr", u"kg"}, pound / 7000},
          {{u"short_ton", u"kg"}, 2000 * pound},
          {{u"long_ton", u"kg"}, 2240 * pound},
          {{u"tonne", u"kg"}, r(1000)},
          {{u"Mt", u"kg"}, r(1000000000)},
          {{u"ct", u"mg"}, r(200)},
          {{u"u", u"kg"}, dec("1.66053906660e-27")},
          {{u"kDa", u"u"}, r(1000)},
          {{u"angstrom", u"nm"}, r(1, 10)},
          {{u"micron", u"m"}, r(1, 1000000)},
          {{u"acre", u"m^2"}, 43560 * foot * foot},
          {{u"cc", u"mL"}, r(1)},
          {{u"gal_US", u"m^3"}, gal_us},
          {{u"qt_US", u"m^3"}, gal_us / 4},
          {{u"pt_US", u"m^3"}, gal_us / 8},
          {{u"floz_US", u"m^3"}, gal_us / 128},
          {{u"gal_UK", u"m^3"}, gal_uk},
          {{u"qt_UK", u"m^3"}, gal_uk / 4},
          {{u"pt_UK", u"m^3"}, gal_uk / 8},
          {{u"floz_UK", u"m^3"}, gal_uk / 160},
          {{u"week", u"s"}, r(604800)},
          {{u"common_year", u"s"}, r(31536000)},
          {{u"julian_year", u"s"}, r(31557600)},
          {{u"Ci", u"Bq"}, r(37000000000)},
          {{u"mCi", u"MBq"}, r(37)},
          {{u"rps", u"rpm"}, r(60)},
          {{u"knot", u"m/s"}, r(1852, 3600)},
          {{u"kt", u"km/h"}, dec("1.852")},
          {{u"g0", u"m/s^2"}, g0},
          {{u"gn", u"m/s^2"}, g0},
          {{u"dyn", u"N"}, dec("1e-5")},
          {{u"lbf", u"lbm*g0"}, r(1)},
          {{u"kgf", u"kg*g0"}, r(1)},
          {{u"kip", u"N"}, 1000 * pound * g0},
          {{u"ozf", u"N"}, pound * g0 / 16},
          {{u"ksi", u"Pa"}, 1000 * pound * g0 / (inch * inch)},
          {{u"at", u"Pa"}, 10000 * g0},
          {{u"torr", u"Pa"}, r(101325, 760)},
          {{u"Torr", u"mmHg"}, r(101325, 760) / dec("133.322387415")},
          {{u"mmHg", u"Pa"}, dec("133.322387415")},
          {{u"inHg", u"Pa"}, dec("13595.1") * inch * g0},
          {{u"mmH2O", u"Pa"}, g0},
          {{u"cmH2O", u"Pa"}, 10 * g0},
          {{u"inH2O", u"Pa"}, 1000 * inch * g0},
          {{u"ftH2O", u"Pa"}, 1000 * foot * g0},
          {{u"St", u"m^2/s"}, dec("1e-4")},
          {{u"cSt", u"mm^2/s"}, r(1)},
          {{u"erg", u"J"}, dec("1e-7")},
          {{u"cal_th", u"J"}, dec("4.184")},
          {{u"cal_IT", u"J"}, dec("4.1868")},
          {{u"kcal_th", u"J"}, r(4184)},
          {{u"kcal_IT", u"J"}, dec("4186.8")},
          {{u"BTU", u"J"}, dec("1055.05585262")},
          {{u"therm_US", u"J"}, r(105480400)},
          {{u"therm_EC", u"J"}, r(105506000)},
          {{u"VA", u"W"}, r(1)},
          {{u"kVA", u"V*A"}, r(1000)},
      };
  for (const auto& [units, expected] : cases) {
    EXPECT_EQ(factor(units.first, units.second), expected)
        << krel::ustring_to_utf8_string(units.first) << " in "
        << krel::ustring_to_utf8_string(units.second);
  }
}

TEST(Conversion, RefusesInvalidExpressions) {
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"m^", u"m"); }, "units2:core",
                                           "InvalidExpression", {}));
  EXPECT_TRUE(test_support::throws_message([] { (void)affine(u"m", u"furlong"); }, "units2:core",
                                           "InvalidExpression", {}));
  EXPECT_TRUE(test_support::throws_message([] { (void)linear(u"gal", u"L"); }, "units2:core",
                                           "InvalidExpression", {}));
}

TEST(Conversion, RefusesUnknownModes) {
  EXPECT_TRUE(test_support::throws_message(
      [] { (void)conversion(Expr(u"m"), Expr(u"m"), static_cast<ConversionMode>(7)); },
      "units2:core", "InvalidConversionMode", {std::int64_t{7}}));
}

}  // namespace
