#include "units2/core/expr.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "expect_message.h"
#include "units2/core/context.h"

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
  expect_syntax_error(u"kg**m", 4);
  expect_syntax_error(u"(m", 3);
  expect_syntax_error(u"m)", 2);
  expect_syntax_error(u"kg m", 4);
  expect_syntax_error(u"m^2^3", 4);
  expect_syntax_error(u"m^(1/0)", 6);
  expect_syntax_error(u"m^(1/-2)", 6);
  expect_syntax_error(u"2*m", 1);
  expect_syntax_error(u"12", 2);
  expect_syntax_error(u"1m", 2);
  expect_syntax_error(u"m^1234567890123456789", 21);
  expect_syntax_error(u"m\u00b2", 2);
  expect_syntax_error(u"\u00b5m", 1);
  expect_syntax_error(u"m*", 3);
  expect_syntax_error(u"/s", 1);
  expect_syntax_error(u"m^x", 3);
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
