#include "units2/core/expr.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "expect_message.h"
#include "units2/core/context.h"
#include "units2_test/test_units.h"

namespace {

using krel::ustring;
using units2::core::ContextGetter;
using units2::core::Exponent;
using units2::core::Expr;
using units2::core::Factors;
using units2::core::to_raw_expr;
using units2::core::UnitId;

std::string canonical(const ustring& text) {
  const Expr e(text);
  EXPECT_TRUE(e.isValid()) << krel::ustring_to_utf8_string(text);
  return to_raw_expr(e.info().factors).text();
}

TEST(Expr, ParsesAndPrintsCanonicalText) {
  EXPECT_EQ(canonical(u"kg*m^2/s^2"), "kg*m^2/s^2");
  EXPECT_EQ(canonical(u"m^2*kg/s^2"), "kg*m^2/s^2");
  EXPECT_EQ(canonical(u"1/s"), "1/s");
  EXPECT_EQ(canonical(u"s^-1"), "1/s");
  EXPECT_EQ(canonical(u"m^(1/2)"), "m^(1/2)");
  EXPECT_EQ(canonical(u"m^(2/4)"), "m^(1/2)");
  EXPECT_EQ(canonical(u"m^(-1/2)"), "1/m^(1/2)");
  EXPECT_EQ(canonical(u"1"), "1");
  EXPECT_EQ(canonical(u"m/m"), "1");
  EXPECT_EQ(canonical(u"(m/s)^2"), "m^2/s^2");
  EXPECT_EQ(canonical(u"J/kg/K"), "J/(K*kg)");
  EXPECT_EQ(canonical(u"m/s*kg"), "kg*m/s");
  EXPECT_EQ(canonical(u" kg * m / s ^ 2 "), "kg*m/s^2");
  EXPECT_EQ(canonical(u"(((m)))"), "m");
  EXPECT_EQ(canonical(u"1*m/1"), "m");
  EXPECT_EQ(canonical(u"m^0"), "1");
  EXPECT_EQ(canonical(u"m^+2"), "m^2");
  EXPECT_EQ(canonical(u"W/(m*deltaK)"), "W/(deltaK*m)");
}

TEST(Expr, CanonicalTextParsesBackToTheSameFactors) {
  for (const ustring text : {u"kg*m^2/s^2", u"1/s", u"m^(1/2)", u"W/(K*m)", u"N*m", u"1",
                             u"A^3*s/(kg*mol^(2/3))", u"degC", u"km/h", u"lbf/in^2"}) {
    const Expr first(text);
    ASSERT_TRUE(first.isValid()) << krel::ustring_to_utf8_string(text);
    const ustring printed = to_raw_expr(first.info().factors);
    const Expr second(printed);
    ASSERT_TRUE(second.isValid());
    EXPECT_EQ(second.info().factors, first.info().factors);
    EXPECT_EQ(ustring(to_raw_expr(second.info().factors)), printed);
  }
}

void expect_syntax_error(const ustring& text, std::uint64_t position) {
  const Expr e(text);
  EXPECT_FALSE(e.isValid()) << krel::ustring_to_utf8_string(text);
  EXPECT_TRUE(e.info().factors.empty());
  EXPECT_FALSE(e.info().affine);
  ASSERT_TRUE(e.problem().has_value());
  EXPECT_EQ(e.problem()->id().key, "SyntaxError") << krel::ustring_to_utf8_string(text);
  EXPECT_EQ(e.problem()->id().arguments, (std::vector<test_support::Argument>{text, position}))
      << krel::ustring_to_utf8_string(text);
}

TEST(Expr, BadTextIsInvalidAndSaysWhere) {
  expect_syntax_error(u"", 1);
  expect_syntax_error(u"   ", 4);
  expect_syntax_error(u"m^", 3);
  expect_syntax_error(u"kg^*m", 4);
  expect_syntax_error(u"(m", 3);
  expect_syntax_error(u"m)", 2);
  expect_syntax_error(u"kg m2 3", 7);
  expect_syntax_error(u"m^2^3", 4);
  expect_syntax_error(u"m^(1/0)", 6);
  expect_syntax_error(u"m^(1/-2)", 6);
  expect_syntax_error(u"2*m", 1);
  expect_syntax_error(u"12", 2);
  expect_syntax_error(u"1m", 2);
  expect_syntax_error(u"m^1234567890123456789", 21);
  expect_syntax_error(u"m*", 3);
  expect_syntax_error(u"/s", 1);
  expect_syntax_error(u"m^x", 3);
}

TEST(Expr, ReadsTextAsPeopleTypeIt) {
  const std::vector<std::pair<ustring, std::string>> cases = {
      // "**" is "^".
      {u"m**2", "m^2"},
      {u"s**-1", "1/s"},
      {u"m ** (1/2)", "m^(1/2)"},
      {u"(m/s)**2", "m^2/s^2"},
      // A blank, a middle dot or a dot operator between two factors is "*",
      // with the precedence of "*" and "/": from the left.
      {u"kg m/s^2", "kg*m/s^2"},
      {u"N m", "N*m"},
      {u"N\u00b7m", "N*m"},
      {u"N \u00b7 m", "N*m"},
      {u"N\u22c5m", "N*m"},
      {u"kg\tm", "kg*m"},
      {u"N\u00a0m", "N*m"},
      {u"N\u202fm", "N*m"},
      {u"N\u2009m", "N*m"},
      {u"J/kg K", "J*K/kg"},
      {u"W/(m K)", "W/(K*m)"},
      {u"m (s)", "m*s"},
      {u"1 m", "m"},
      {u"m 1", "m"},
      {u"  kg   m  ", "kg*m"},
      // Superscript digits and minus are a power.
      {u"m\u00b2", "m^2"},
      {u"m\u00b3", "m^3"},
      {u"s\u207b\u00b9", "1/s"},
      {u"m\u00b9\u2070", "m^10"},
      {u"m\u2074\u2075\u2076\u2077\u2078\u2079\u2070", "m^4567890"},
      {u"kg\u00b7m\u00b2\u00b7s\u207b\u00b2", "kg*m^2/s^2"},
      {u"kg m/s\u00b2", "kg*m/s^2"},
      {u"(m/s)\u00b2", "m^2/s^2"},
      {u"m \u00b2", "m^2"},
      // The micro sign and the Greek mu are the micro prefix.
      {u"\u00b5m", "um"},
      {u"\u03bcm", "um"},
      {u"\u00b5s\u207b\u00b9", "1/us"},
      // Both omegas are the ohm, with or without a prefix.
      {u"\u03a9", "Ohm"},
      {u"\u2126", "Ohm"},
      {u"k\u03a9", "kOhm"},
      {u"M\u2126", "MOhm"},
      {u"\u00b5\u03a9", "uOhm"},
      {u"\u03a9\u00b7m", "Ohm*m"},
      // Degree signs for the temperature scales.
      {u"\u00b0C", "degC"},
      {u"\u00b0F", "degF"},
      {u"\u00b0R", "degR"},
      {u"\u2103", "degC"},
      {u"\u2109", "degF"},
      {u"W/(m\u00b7K)", "W/(K*m)"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(canonical(text), expected) << krel::ustring_to_utf8_string(text);
  }
  EXPECT_TRUE(Expr(u"\u00b0C").info().affine);
  EXPECT_TRUE(Expr(u"\u2109").info().affine);
}

TEST(Expr, RefusesWhatTheSynonymsCannotReadAndSaysWhere) {
  // Positions count UTF-16 code units from 1. Every character the grammar
  // accepts is one code unit, so the position is also the number of the
  // offending character.
  expect_syntax_error(u"kg**m", 5);
  expect_syntax_error(u"m***2", 4);
  expect_syntax_error(u"m**", 4);
  expect_syntax_error(u"m\u00b2^3", 3);
  expect_syntax_error(u"m^2\u00b2", 4);
  expect_syntax_error(u"m\u00b2\u00b3 \u00b2", 5);
  expect_syntax_error(u"m\u207b", 3);
  expect_syntax_error(u"m\u207b-1", 3);
  expect_syntax_error(u"\u00b2", 1);
  expect_syntax_error(u"m" + ustring(19, u'\u00b2'), 20);
  expect_syntax_error(u"\u00b5", 2);
  expect_syntax_error(u"\u00b51", 2);
  expect_syntax_error(u"\u00b5 m", 2);
  expect_syntax_error(u"1\u00b5m", 2);
  expect_syntax_error(u"\u03a9m", 2);
  expect_syntax_error(u"k\u03a9m", 3);
  expect_syntax_error(u"\u03a9\u03a9", 2);
  expect_syntax_error(u"\u00b0", 2);
  expect_syntax_error(u"\u00b0K", 2);
  expect_syntax_error(u"\u00b0 C", 2);  // not a degree times a coulomb
  expect_syntax_error(u"\u00b0Cm", 3);
  expect_syntax_error(u"\u2103x", 2);
  expect_syntax_error(u"\u00b7m", 1);
  expect_syntax_error(u"m \u00b7", 4);
  expect_syntax_error(u"m\u00b7\u00b7s", 3);
  expect_syntax_error(u"m  2", 4);
  expect_syntax_error(u"m\u00d7s", 2);
  // A character outside the BMP stops the parser at its first code unit.
  expect_syntax_error(u"m/\U0001F600", 3);
  expect_syntax_error(u"\U0001F600m", 1);
}

TEST(Expr, MicroSignOnlyPrefixesAUnitSymbol) {
  // The micro sign is the prefix u in front of a unit symbol, never the start
  // of another spelling that happens to begin with a u.
  for (const ustring text : {u"\u00b5nified_atomic_mass_unit", u"\u00b5meter", u"\u00b5in"}) {
    const Expr e(text);
    EXPECT_FALSE(e.isValid()) << krel::ustring_to_utf8_string(text);
    ASSERT_TRUE(e.problem().has_value());
    EXPECT_EQ(e.problem()->id().key, "UnknownUnit");
    EXPECT_EQ(e.problem()->id().arguments, (std::vector<test_support::Argument>{text, text}));
  }
  // u alone is the unified atomic mass unit; u before a symbol is micro.
  EXPECT_EQ(canonical(u"u"), "u");
  EXPECT_EQ(canonical(u"um"), "um");
  EXPECT_EQ(canonical(u"\u00b5m*um"), "um^2");
}

TEST(Expr, LongNamesAndAliasesPrintAsTheUnitId) {
  EXPECT_EQ(canonical(u"meter"), "m");
  EXPECT_EQ(canonical(u"metre"), "m");
  EXPECT_EQ(canonical(u"kilometre/hour"), "km/h");
  EXPECT_EQ(canonical(u"newton meter"), "N*m");
  EXPECT_EQ(canonical(u"meter*m"), "m^2");
  EXPECT_EQ(canonical(u"meter/m"), "1");
  EXPECT_EQ(canonical(u"kt"), "kn");
  EXPECT_EQ(canonical(u"lb"), "lbm");
  EXPECT_EQ(canonical(u"micron"), "um");
  EXPECT_EQ(canonical(u"kilogram"), "kg");
  EXPECT_EQ(canonical(u"celsius"), "degC");
  EXPECT_TRUE(Expr(u"celsius").info().affine);
  EXPECT_EQ(Expr(u"celsius").info().factors.singleton(), UnitId("degC"));
  // The offset rule holds whatever the spelling.
  EXPECT_EQ(Expr(u"celsius*m").problem()->id().key, "OffsetUnitNotAlone");
  // Built from factors, a long name is read the same way.
  const Expr from_factors(ContextGetter(), Factors(UnitId("meter"), Exponent(2)));
  ASSERT_TRUE(from_factors.isValid());
  EXPECT_EQ(to_raw_expr(from_factors.info().factors).text(), "m^2");
}

TEST(Expr, AmbiguousSpellingIsInvalidAndListsWhatToWrite) {
  const Expr e(u"m^3/gal");
  EXPECT_FALSE(e.isValid());
  EXPECT_TRUE(e.info().factors.empty());
  ASSERT_TRUE(e.problem().has_value());
  EXPECT_EQ(e.problem()->id().catalogue, "units2:core");
  EXPECT_EQ(e.problem()->id().key, "AmbiguousUnit");
  EXPECT_EQ(e.problem()->id().arguments, (std::vector<test_support::Argument>{
                                             ustring(u"m^3/gal"), ustring(u"gal"),
                                             ustring(u"gal_US = 231 in^3, gal_UK = 4.54609 L")}));
  // Readings that are prefixed forms show the number they stand for.
  EXPECT_EQ(Expr(u"kcal").problem()->id().arguments.at(2),
            test_support::Argument(ustring(u"kcal_th = 1000 cal_th, kcal_IT = 1000 cal_IT")));
  EXPECT_EQ(Expr(u"cal").problem()->id().arguments.at(2),
            test_support::Argument(ustring(u"cal_th = 4.184 J, cal_IT = 4.1868 J")));
  for (const ustring text : {u"oz", u"ounce", u"floz", u"fl_oz", u"pt", u"pint", u"qt", u"ton",
                             u"therm", u"yr", u"year", u"calorie", u"kilocalorie", u"gallon"}) {
    const Expr a(text);
    EXPECT_FALSE(a.isValid()) << krel::ustring_to_utf8_string(text);
    EXPECT_EQ(a.problem()->id().key, "AmbiguousUnit") << krel::ustring_to_utf8_string(text);
  }
  const Expr from_factors(ContextGetter(), Factors(UnitId("gal"), Exponent(1)));
  EXPECT_EQ(from_factors.problem()->id().key, "AmbiguousUnit");
  // Each reading is valid on its own.
  for (const ustring text : {u"gal_US", u"gal_UK", u"ozm", u"floz_US", u"cal_th", u"kcal_IT",
                             u"short_ton", u"long_ton", u"julian_year", u"therm_EC"}) {
    EXPECT_TRUE(Expr(text).isValid()) << krel::ustring_to_utf8_string(text);
  }
}

TEST(Expr, DeepNestingIsInvalidNotACrash) {
  const ustring deep = ustring(100000, u'(') + u"m" + ustring(100000, u')');
  const Expr e(deep);
  EXPECT_FALSE(e.isValid());
  const ustring fine = ustring(150, u'(') + u"m" + ustring(150, u')');
  EXPECT_TRUE(Expr(fine).isValid());
}

TEST(Expr, ExponentOverflowIsInvalidNotAnException) {
  const Expr e(u"(m^999999999999999999)^999999999999999999");
  EXPECT_FALSE(e.isValid());
  ASSERT_TRUE(e.problem().has_value());
  EXPECT_EQ(e.problem()->id().key, "NonFiniteExponent");
}

TEST(Expr, HugeFactorIsInvalidNotAHang) {
  const Expr e(u"km^999999999999");
  EXPECT_FALSE(e.isValid());
  ASSERT_TRUE(e.problem().has_value());
  EXPECT_EQ(e.problem()->id().key, "FactorTooLarge");
  // A unit of scale 1 can be raised to any power.
  EXPECT_TRUE(Expr(u"m^999999999999").isValid());
}

TEST(Expr, UnknownUnitIsInvalid) {
  const Expr e(u"m/furlong");
  EXPECT_FALSE(e.isValid());
  ASSERT_TRUE(e.problem().has_value());
  EXPECT_EQ(e.problem()->id().key, "UnknownUnit");
  EXPECT_EQ(e.problem()->id().arguments,
            (std::vector<test_support::Argument>{ustring(u"m/furlong"), ustring(u"furlong")}));
}

TEST(Expr, OffsetUnitsStandOnlyAlone) {
  EXPECT_TRUE(Expr(u"degC").isValid());
  EXPECT_TRUE(Expr(u"(degC)^1").isValid());
  for (const ustring text :
       {u"degC^2", u"degC*m", u"1/degC", u"W/(m*degC)", u"degF/s", u"degC^(1/2)"}) {
    const Expr e(text);
    EXPECT_FALSE(e.isValid()) << krel::ustring_to_utf8_string(text);
    ASSERT_TRUE(e.problem().has_value());
    EXPECT_EQ(e.problem()->id().key, "OffsetUnitNotAlone");
  }
  // Offset units take no prefixes: mdegC is not a unit at all.
  const Expr milli(u"mdegC");
  EXPECT_FALSE(milli.isValid());
  EXPECT_EQ(milli.problem()->id().key, "UnknownUnit");
  // Absolute scales without offset combine freely.
  EXPECT_TRUE(Expr(u"W/(m*K)").isValid());
  EXPECT_TRUE(Expr(u"mK").isValid());
  EXPECT_TRUE(Expr(u"K^2").isValid());
}

TEST(Expr, AffineOnlyForASingleUnitWithAnOffset) {
  const units2_test::ScopedContext units(units2_test::test_context());
  EXPECT_TRUE(Expr(u"degC").info().affine);
  EXPECT_TRUE(Expr(u"degF").info().affine);
  EXPECT_TRUE(Expr(u"tstU").info().affine);
  EXPECT_FALSE(Expr(u"K").info().affine);
  EXPECT_FALSE(Expr(u"degR").info().affine);
  EXPECT_FALSE(Expr(u"deltadegC").info().affine);
  EXPECT_FALSE(Expr(u"m").info().affine);
  EXPECT_FALSE(Expr(u"1").info().affine);
}

TEST(Expr, SingletonOfAParsedExpression) {
  EXPECT_EQ(Expr(u"degC").info().factors.singleton(), UnitId("degC"));
  EXPECT_EQ(Expr(u"km").info().factors.singleton(), UnitId("km"));
  EXPECT_FALSE(Expr(u"kg*m/s^2").info().factors.singleton().has_value());
  EXPECT_FALSE(Expr(u"m^2").info().factors.singleton().has_value());
}

TEST(Expr, BuiltFromFactors) {
  const Expr e(ContextGetter(), Factors(UnitId("deltadegC"), Exponent(1, 1)));
  EXPECT_TRUE(e.isValid());
  EXPECT_EQ(e.info().factors.singleton(), UnitId("deltadegC"));
  EXPECT_TRUE(Expr(ContextGetter(), Factors(UnitId("degC"), Exponent(1))).info().affine);
  const Expr unknown(ContextGetter(), Factors(UnitId("deltam"), Exponent(1)));
  EXPECT_FALSE(unknown.isValid());
  EXPECT_EQ(unknown.problem()->id().arguments,
            (std::vector<test_support::Argument>{ustring(u"deltam"), ustring(u"deltam")}));
  EXPECT_FALSE(Expr(ContextGetter(), Factors(UnitId("degC"), Exponent(2))).isValid());
}

TEST(Expr, InvalidMessageIsTheCatalogueText) {
  const krel::Message m = Expr::invalidMessage();
  EXPECT_EQ(m.id().catalogue, "units2:core");
  EXPECT_EQ(m.id().key, "InvalidExpression");
  ustring text;
  m.formattedMessage_(text);
  EXPECT_FALSE(text.empty());
  EXPECT_NE(text, u"units2:core:InvalidExpression");
}

TEST(Expr, ValidExpressionHasNoProblem) {
  EXPECT_FALSE(Expr(u"m").problem().has_value());
}

TEST(Expr, CopiesShareTheRecordAcrossThreads) {
  const Expr original(u"kg*m/s^2");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&original] {
      for (int i = 0; i < 1000; ++i) {
        const Expr copy = original;
        EXPECT_TRUE(copy.isValid());
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_TRUE(original.isValid());
}

TEST(Commensurate, ComparesWhatExpressionsMeasure) {
  const units2_test::ScopedContext units(units2_test::test_context());
  EXPECT_TRUE(commensurate(Expr(u"N*m"), Expr(u"J")));
  EXPECT_TRUE(commensurate(Expr(u"psi"), Expr(u"Pa")));
  EXPECT_TRUE(commensurate(Expr(u"degC"), Expr(u"K")));
  EXPECT_TRUE(commensurate(Expr(u"degF"), Expr(u"deltadegC")));
  EXPECT_TRUE(commensurate(Expr(u"Hz"), Expr(u"1/s")));
  EXPECT_TRUE(commensurate(Expr(u"rpm"), Expr(u"deg/s")));
  EXPECT_TRUE(commensurate(Expr(u"rpm"), Expr(u"rad/s")));
  EXPECT_TRUE(commensurate(Expr(u"percent"), Expr(u"1")));
  EXPECT_FALSE(commensurate(Expr(u"rpm"), Expr(u"Hz")));
  EXPECT_FALSE(commensurate(Expr(u"m"), Expr(u"s")));
  EXPECT_FALSE(commensurate(Expr(u"N"), Expr(u"lbm")));
  EXPECT_FALSE(commensurate(Expr(u"m"), Expr(u"m^")));
  EXPECT_FALSE(commensurate(Expr(u"bad"), Expr(u"bad")));
  EXPECT_FALSE(commensurate(Expr(u"tstV"), Expr(u"deltatstV")));
}

}  // namespace
