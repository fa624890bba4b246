#include "ui/core/unit_conversion.h"

#include <gtest/gtest.h>

#include <locale>
#include <map>
#include <stdexcept>
#include <string>

#include "units2/core/context.h"
#include "units2_test/test_units.h"

namespace {

using ui::core::ps2dravik_nonaffine_unit_conversion;
using ui::core::ustring;
using units2::core::ContextGetter;
using units2::core::Expr;

ustring shown(const ustring& text, bool nonaffine = true) {
  return ps2dravik_nonaffine_unit_conversion(Expr(text), nonaffine);
}

ustring invalid_text() {
  ustring text;
  Expr::invalidMessage().formattedMessage_(text);
  return text;
}

TEST(NonaffineUnitConversion, OffsetUnitsShowTheirDeltaUnit) {
  EXPECT_EQ(shown(u"degC"), u"deltadegC");
  EXPECT_EQ(shown(u"degF"), u"deltadegF");
  EXPECT_EQ(shown(u" (degC) "), u"deltadegC");
}

TEST(NonaffineUnitConversion, AbsoluteScalesWithADeltaTwinShowIt) {
  EXPECT_EQ(shown(u"K"), u"deltaK");
  EXPECT_EQ(shown(u"degR"), u"deltadegR");
}

TEST(NonaffineUnitConversion, FlagFalseKeepsTheExpressionEvenWithADeltaUnit) {
  EXPECT_EQ(shown(u"degC", false), u"degC");
  EXPECT_EQ(shown(u"K", false), u"K");
  EXPECT_EQ(shown(u"kg*m/s^2", false), u"kg*m/s^2");
  // The text is the canonical one, not the one written.
  EXPECT_EQ(shown(u"m^2*kg / s^2", false), u"kg*m^2/s^2");
}

TEST(NonaffineUnitConversion, ProductsAndPowersKeepTheirOwnText) {
  EXPECT_EQ(shown(u"kg*m/s^2"), u"kg*m/s^2");
  EXPECT_EQ(shown(u"K^2"), u"K^2");
  EXPECT_EQ(shown(u"1/K"), u"1/K");
  EXPECT_EQ(shown(u"1"), u"1");
}

TEST(NonaffineUnitConversion, UnitWithoutDeltaUnitKeepsItsText) {
  EXPECT_EQ(shown(u"m"), u"m");
  EXPECT_EQ(shown(u"km"), u"km");
  EXPECT_EQ(shown(u"psi"), u"psi");
  EXPECT_EQ(shown(u"deltadegC"), u"deltadegC");  // no deltadeltadegC
}

TEST(NonaffineUnitConversion, EveryUnitWithADeltaTwinKeepsItsDeltaText) {
  // Every spelling of the built-in database (ids, prefixed forms, long names,
  // aliases), shown without offsets: exactly the four temperature scales give
  // their delta twin, whichever way they are spelled; everything else keeps
  // its own canonical text.
  const auto context = units2::core::Context::builtin();
  std::map<std::string, std::string> changed;
  const auto check = [&changed](const std::string& spelling) {
    const Expr expr(krel::utf8_string_to_ustring(spelling));
    ASSERT_TRUE(expr.isValid()) << spelling;
    const ustring own = units2::core::to_raw_expr(expr.info().factors);
    const ustring display = ps2dravik_nonaffine_unit_conversion(expr, true);
    if (display != own) changed.emplace(spelling, krel::ustring_to_utf8_string(display));
  };
  for (const auto& [id, unit] : context->units()) check(id);
  for (const auto& [name, id] : context->aliases()) check(name);
  for (const std::string typed : {"\u00b0C", "\u2103", "\u00b0F", "\u2109", "\u00b0R"}) {
    check(typed);
  }
  const std::map<std::string, std::string> expected = {
      {"K", "deltaK"},
      {"kelvin", "deltaK"},
      {"degC", "deltadegC"},
      {"celsius", "deltadegC"},
      {"degree_Celsius", "deltadegC"},
      {"\u00b0C", "deltadegC"},
      {"\u2103", "deltadegC"},
      {"degF", "deltadegF"},
      {"fahrenheit", "deltadegF"},
      {"degree_Fahrenheit", "deltadegF"},
      {"\u00b0F", "deltadegF"},
      {"\u2109", "deltadegF"},
      {"degR", "deltadegR"},
      {"rankine", "deltadegR"},
      {"degree_Rankine", "deltadegR"},
      {"\u00b0R", "deltadegR"},
  };
  EXPECT_EQ(changed, expected);
}

TEST(NonaffineUnitConversion, DeltaUnitWithAnotherScaleIsNotUsed) {
  const units2_test::ScopedContext units(units2_test::test_context());
  // deltatstU exists and measures temperature, but is twice tstU's scale.
  EXPECT_EQ(shown(u"tstU"), u"tstU");
}

TEST(NonaffineUnitConversion, DeltaUnitOfAnotherQuantityIsNotUsed) {
  const units2_test::ScopedContext units(units2_test::test_context());
  // deltatstV exists but is a length.
  EXPECT_EQ(shown(u"tstV"), u"tstV");
}

TEST(NonaffineUnitConversion, DeltaUnitWithAnOffsetOfItsOwnIsNotUsed) {
  const units2_test::ScopedContext units(units2_test::test_context());
  // deltatstW has scale 1 like tstW, so only its own offset rules it out.
  EXPECT_EQ(shown(u"tstW"), u"tstW");
}

TEST(NonaffineUnitConversion, TestUnitsAreNotInTheShippedDatabase) {
  for (const ustring text : {u"tstU", u"deltatstU", u"tstV", u"tstW"}) {
    EXPECT_EQ(shown(text), invalid_text()) << krel::ustring_to_utf8_string(text);
  }
}

TEST(NonaffineUnitConversion, InvalidExpressionGivesTheInvalidMessageText) {
  for (const ustring text : {u"m^", u"", u"kg**m", u"(m", u"furlong", u"degC^2", u"mdegC"}) {
    ustring result;
    EXPECT_NO_THROW(result = shown(text)) << krel::ustring_to_utf8_string(text);
    EXPECT_EQ(result, invalid_text());
    EXPECT_NO_THROW(result = shown(text, false));
    EXPECT_EQ(result, invalid_text());
  }
  EXPECT_EQ(invalid_text(), u"The unit expression is not valid.");
}

TEST(NonaffineUnitConversion, InvalidMessageTextFollowsTheGlobalLocale) {
  std::locale german;
  try {
    german = std::locale("de_DE.UTF-8");
  } catch (const std::runtime_error&) {
    GTEST_SKIP() << "no German locale on this system";
  }
  const std::locale previous = std::locale::global(german);
  const ustring text = shown(u"m^");
  std::locale::global(previous);
  EXPECT_EQ(text, u"Der Einheitenausdruck ist ungültig.");
}

TEST(NonaffineUnitConversion, DeltaUnitsAreLookedUpInTheServiceContext) {
  // "hot" has a perfect delta twin in its own database, but the service's
  // context, where the delta unit is looked up, has no deltahot.
  const auto ctx = units2::core::Context::parse(
      "base K temperature\nunit hot 1 K offset=1\nunit deltahot 1 K\n", "test.txt");
  const Expr hot(ContextGetter(ctx), ustring(u"hot"));
  ASSERT_TRUE(hot.isValid());
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(hot, true), u"hot");
  // A unit of another database that the service does know keeps working.
  const Expr kelvin(ContextGetter(ctx), ustring(u"K"));
  EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(kelvin, true), u"deltaK");
}

}  // namespace
