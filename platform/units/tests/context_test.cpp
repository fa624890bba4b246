#include "units2/core/context.h"

#include <gtest/gtest.h>

#include <string>

#include "expect_message.h"
#include "msgcat/catalogue.h"
#include "units2/core/conversion.h"

namespace {

using units2::core::Context;
using units2::core::ContextGetter;
using units2::core::ConversionRational;
using units2::core::Expr;
using units2::core::get_service;

const Context& builtin() {
  return *Context::builtin();
}

TEST(Context, ServiceGivesTheBuiltinDatabase) {
  const auto service = get_service();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->context(), Context::builtin());
  EXPECT_EQ(get_service(), service);
}

TEST(Context, HoldsTheSevenSiBaseUnitsAndAngle) {
  std::string ids;
  for (const auto& b : builtin().base_units()) ids += b.id.str() + " ";
  EXPECT_EQ(ids, "m kg s A K mol cd rad ");
}

TEST(Context, UnitsAreKeyedByIdText) {
  const auto& units = builtin().units();
  for (const char* id :
       {"m",         "kg",        "g",    "s",        "N",    "Pa",   "J",      "W",
        "in",        "ft",        "yd",   "mi",       "lbm",  "lbf",  "psi",    "rpm",
        "bar",       "atm",       "deg",  "rad",      "l",    "L",    "min",    "hr",
        "h",         "day",       "K",    "degC",     "degF", "degR", "deltaK", "deltadegC",
        "deltadegF", "deltadegR", "tstU", "deltatstU"}) {
    EXPECT_EQ(units.count(id), 1u) << id;
  }
  EXPECT_EQ(units.count("deltam"), 0u);
  EXPECT_EQ(units.count("furlong"), 0u);
}

TEST(Context, PrefixesApplyByRule) {
  const auto& units = builtin().units();
  for (const char* id : {"km",   "mm",  "um", "dam", "mg", "Mg", "ms",  "kN",  "MPa",  "kPa",
                         "mbar", "kWh", "mA", "mK",  "mL", "ml", "GHz", "keV", "mrad", "kt"}) {
    EXPECT_EQ(units.count(id), 1u) << id;
  }
  // kg is the base unit: g takes the prefixes, kg does not.
  for (const char* id : {"mkg", "kkg", "kin", "kft", "mdegC", "kdegF", "mmin", "kpsi", "kdeltaK"}) {
    EXPECT_EQ(units.count(id), 0u) << id;
  }
  EXPECT_EQ(builtin().find("km")->definition, "prefix k of m");
  EXPECT_FALSE(builtin().find("km")->prefixable);
}

TEST(Context, DeclaredSpellingWinsOverAPrefixedForm) {
  // f (femto) + t (tonne) would also spell ft.
  const auto* ft = builtin().find("ft");
  ASSERT_NE(ft, nullptr);
  EXPECT_EQ(ft->definition, "12 in");
  const auto* kg = builtin().find("kg");
  ASSERT_NE(kg, nullptr);
  EXPECT_TRUE(kg->base);
}

TEST(Context, OffsetsAreExactInBaseUnits) {
  EXPECT_EQ(builtin().find("degC")->offset, ConversionRational(27315, 100));
  EXPECT_EQ(builtin().find("degF")->offset, ConversionRational(45967, 180));
  EXPECT_TRUE(builtin().find("K")->offset.isZero());
  EXPECT_TRUE(builtin().find("degC")->affine());
  EXPECT_FALSE(builtin().find("deltadegC")->affine());
}

TEST(Context, ParsesAnotherDatabase) {
  const auto ctx = Context::parse(
      "prefix k 1000\n"
      "base m length prefixes  # a comment\n"
      "\n"
      "unit  ft  0.3048 m\n"
      "unit  hot 1 m offset=5\n",
      "test.txt");
  EXPECT_EQ(ctx->units().size(), 4u);  // m, km, ft, hot
  const Expr e(ContextGetter(ctx), krel::ustring(u"km"));
  ASSERT_TRUE(e.isValid());
  EXPECT_EQ(e.context(), ctx);
  // Not in this database, though in the built-in one.
  EXPECT_FALSE(Expr(ContextGetter(ctx), krel::ustring(u"s")).isValid());
  const auto c = conversion(Expr(ContextGetter(ctx), krel::ustring(u"hot")), e,
                            units2::core::ConversionMode::affine);
  EXPECT_EQ(c.linear(), ConversionRational(1, 1000));
  EXPECT_EQ(c.offset(), ConversionRational(5, 1000));
}

void expect_database_error(const std::string& data, std::uint64_t line) {
  try {
    (void)Context::parse(data, "bad.txt");
    ADD_FAILURE() << "accepted: " << data;
  } catch (const krel::MessageException& e) {
    EXPECT_EQ(e.message().id().catalogue, "units2:core");
    EXPECT_EQ(e.message().id().key, "InvalidDatabase") << data;
    ASSERT_EQ(e.message().id().arguments.size(), 3u);
    EXPECT_EQ(e.message().id().arguments[0], test_support::Argument(krel::ustring(u"bad.txt")));
    EXPECT_EQ(e.message().id().arguments[1], test_support::Argument(line)) << data;
  }
}

TEST(Context, RefusesBrokenDatabasesNamingTheLine) {
  expect_database_error("frobnicate x", 1);
  expect_database_error("base m length\nbase m length", 2);
  expect_database_error("base m length\nunit 2x 1 m", 2);
  expect_database_error("base m length\nunit ft 0.3048 yd", 2);            // unknown reference
  expect_database_error("base m length\nunit yd 3 ft\nunit ft 12 in", 2);  // declared later
  expect_database_error("base m length\nunit ft abc m", 2);
  expect_database_error("base m length\nunit ft 0 m", 2);
  expect_database_error("base m length\nunit ft -1 m", 2);
  expect_database_error("base m length\nunit ft 1 m^", 2);
  expect_database_error("base m length\nunit hot 1 m offset=5 prefixes", 2);
  expect_database_error("base m length\nunit hot 1 m offset=x", 2);
  expect_database_error("base m length\nunit hot 1 m sideways", 2);
  expect_database_error("base rad angle\nunit deg pi/180 rad offset=1", 2);
  expect_database_error("base m length\nunit hot 1 m offset=1\nunit hot2 1 hot*m", 3);
  expect_database_error("prefix k 1000\nprefix k 10", 2);
  expect_database_error("prefix k pi", 1);
  expect_database_error("prefix 1 10", 1);
  // Two prefixed forms spelled alike make the database ambiguous.
  expect_database_error("prefix a 10\nprefix ab 100\nbase bc x prefixes\nbase c y prefixes", 4);
}

TEST(Context, EveryMessageOfTheLibraryHasEnglishAndGermanText) {
  for (const char* key :
       {"InvalidUnitId", "InvalidExpression", "SyntaxError", "UnknownUnit", "OffsetUnitNotAlone",
        "NotCommensurate", "InexactConversion", "InvalidConversionMode", "FactorTooLarge",
        "NonFiniteExponent", "NonFiniteConversionValue", "InvalidDatabase"}) {
    EXPECT_TRUE(msgcat::find_pattern("units2:core", key, "en")) << key;
    EXPECT_TRUE(msgcat::find_pattern("units2:core", key, "de")) << key;
  }
}

}  // namespace
