#include "units2/core/context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "expect_message.h"
#include "msgcat/catalogue.h"
#include "units2/core/conversion.h"
#include "units2_test/test_units.h"

namespace {

using units2::core::Context;
using units2::core::ContextGetter;
using units2::core::ConversionRational;
using units2::core::Expr;
using units2::core::get_service;
using units2::core::UnitId;

const Context& builtin() {
  return *Context::builtin();
}

TEST(Context, ServiceGivesTheBuiltinDatabase) {
  const auto service = get_service();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->context(), Context::builtin());
  EXPECT_EQ(get_service(), service);
}

TEST(Context, BuiltinTextIsWhatBuiltinReads) {
  const auto again = Context::parse(Context::builtin_text(), "again.txt");
  EXPECT_EQ(again->units().size(), builtin().units().size());
  EXPECT_EQ(again->aliases().size(), builtin().aliases().size());
  EXPECT_EQ(again->declared_units(), builtin().declared_units());
}

TEST(Service, SetContextReplacesTheCurrentContextAndReturnsTheOldOne) {
  const auto service = get_service();
  const auto extended = Context::parse(
      std::string(Context::builtin_text()) + "\nunit furlong 660 ft\n", "extended.txt");
  EXPECT_FALSE(Expr(krel::ustring(u"furlong")).isValid());
  const auto previous = service->set_context(extended);
  EXPECT_EQ(previous, Context::builtin());
  EXPECT_EQ(service->context(), extended);
  const Expr furlong(krel::ustring(u"furlong"));
  EXPECT_TRUE(furlong.isValid());
  EXPECT_EQ(service->set_context(previous), extended);
  EXPECT_EQ(service->context(), Context::builtin());
  // An expression keeps the context it was resolved against.
  EXPECT_TRUE(furlong.isValid());
  EXPECT_EQ(furlong.context(), extended);
  EXPECT_FALSE(Expr(krel::ustring(u"furlong")).isValid());
}

TEST(Service, ScopedTestContextAddsTheTestUnitsAndPutsBackTheBuiltinOnes) {
  {
    const units2_test::ScopedContext units(units2_test::test_context());
    EXPECT_TRUE(Expr(krel::ustring(u"tstU")).isValid());
    EXPECT_TRUE(Expr(krel::ustring(u"deltatstW")).isValid());
    EXPECT_TRUE(Expr(krel::ustring(u"m")).isValid());
  }
  EXPECT_EQ(get_service()->context(), Context::builtin());
  EXPECT_FALSE(Expr(krel::ustring(u"tstU")).isValid());
}

TEST(Service, ContextSwitchesRaceCleanlyWithReadersOnOtherThreads) {
  // Readers on several threads build expressions while one thread switches
  // the context back and forth; each reader sees one whole context or the
  // other (TSan checks the rest).
  const auto service = get_service();
  const auto extended = units2_test::test_context();
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < 300; ++i) {
        const Expr e(krel::ustring(u"tstU"));
        const auto ctx = e.context();
        EXPECT_EQ(e.isValid(), ctx != Context::builtin());
      }
    });
  }
  for (int i = 0; i < 300; ++i) {
    (void)service->set_context(i % 2 == 0 ? extended : Context::builtin());
  }
  for (auto& t : threads) t.join();
  (void)service->set_context(Context::builtin());
  EXPECT_EQ(service->context(), Context::builtin());
}

TEST(Context, HoldsTheSevenSiBaseUnitsAndAngle) {
  std::string ids;
  for (const auto& b : builtin().base_units()) ids += b.id.str() + " ";
  EXPECT_EQ(ids, "m kg s A K mol cd rad ");
}

TEST(Context, UnitsAreKeyedByIdText) {
  const auto& units = builtin().units();
  for (const char* id :
       {"m",    "kg",   "g",    "s",      "N",         "Pa",        "J",        "W",   "in",
        "ft",   "yd",   "mi",   "lbm",    "lbf",       "psi",       "rpm",      "bar", "atm",
        "deg",  "rad",  "l",    "L",      "min",       "hr",        "h",        "day", "K",
        "degC", "degF", "degR", "deltaK", "deltadegC", "deltadegF", "deltadegR"}) {
    EXPECT_EQ(units.count(id), 1u) << id;
  }
  EXPECT_EQ(units.count("deltam"), 0u);
  EXPECT_EQ(units.count("furlong"), 0u);
}

TEST(Context, ShipsNoTestUnits) {
  for (const char* id : {"tstU", "deltatstU", "tstV", "deltatstV", "tstW", "deltatstW"}) {
    EXPECT_EQ(builtin().lookup(id), nullptr) << id;
  }
}

TEST(Context, PrefixesApplyByRule) {
  const auto& units = builtin().units();
  for (const char* id :
       {"km",   "mm",  "um",  "dam", "mg",  "Mg",   "ms",   "kN",      "MPa",    "kPa",
        "mbar", "kWh", "mA",  "mK",  "mL",  "ml",   "GHz",  "keV",     "mrad",   "Mt",
        "Gt",   "cSt", "kVA", "mCi", "kDa", "dbar", "ubar", "kcal_th", "kcal_IT"}) {
    EXPECT_EQ(units.count(id), 1u) << id;
  }
  // kg is the base unit: g takes the prefixes, kg does not. The tonne takes M
  // and G only and the bar no h, so none of these is a prefixed form.
  for (const char* id :
       {"mkg", "kkg", "kin", "kft", "mdegC", "kdegF", "mmin", "kpsi", "kdeltaK", "kt",
        "ct",  "pt",  "at",  "ft",  "nt",    "Tt",    "dat",  "mt",   "qt",      "hbar"}) {
    const auto* unit = builtin().find(id);
    EXPECT_TRUE(unit == nullptr || unit->prefix.empty()) << id;
  }
  EXPECT_EQ(builtin().find("km")->definition, "prefix k of m");
  EXPECT_EQ(builtin().find("km")->prefix, "k");
  EXPECT_FALSE(builtin().find("km")->prefixable);
  EXPECT_TRUE(builtin().find("m")->prefix.empty());
  EXPECT_EQ(builtin().find("t")->prefix_symbols, (std::vector<std::string>{"M", "G"}));
  EXPECT_EQ(builtin().find("m")->prefix_symbols.size(), builtin().prefixes().size());
  EXPECT_TRUE(builtin().find("in")->prefix_symbols.empty());
}

TEST(Context, WellKnownSymbolsAreNotPrefixedTonnes) {
  // A prefix and the tonne would also spell these; each is the unit people mean.
  EXPECT_EQ(builtin().lookup("kt")->id, UnitId("kn"));           // knot
  EXPECT_EQ(builtin().find("ft")->definition, "12 in");          // foot
  EXPECT_EQ(builtin().find("ct")->definition, "0.2 g");          // metric carat
  EXPECT_EQ(builtin().find("at")->definition, "10000 kgf/m^2");  // technical atmosphere
  EXPECT_NE(builtin().ambiguity("pt"), nullptr);                 // a pint, US or UK
  EXPECT_NE(builtin().ambiguity("qt"), nullptr);                 // a quart, US or UK
  EXPECT_EQ(builtin().lookup("hbar"), nullptr);                  // no hectobar
  EXPECT_EQ(builtin().lookup("nt"), nullptr);
  EXPECT_EQ(builtin().lookup("Tt"), nullptr);
  EXPECT_EQ(builtin().lookup("dat"), nullptr);
  const auto* kg = builtin().find("kg");
  ASSERT_NE(kg, nullptr);
  EXPECT_TRUE(kg->base);
}

TEST(Context, LongNamesAndAliasesNameTheUnitById) {
  const std::vector<std::pair<const char*, const char*>> cases = {{"metre", "m"},
                                                                  {"meter", "m"},
                                                                  {"kilometre", "km"},
                                                                  {"millimeter", "mm"},
                                                                  {"kilogram", "kg"},
                                                                  {"gram", "g"},
                                                                  {"milligram", "mg"},
                                                                  {"second", "s"},
                                                                  {"microsecond", "us"},
                                                                  {"newton", "N"},
                                                                  {"kilonewton", "kN"},
                                                                  {"joule", "J"},
                                                                  {"pascal", "Pa"},
                                                                  {"hectopascal", "hPa"},
                                                                  {"kelvin", "K"},
                                                                  {"ampere", "A"},
                                                                  {"mole", "mol"},
                                                                  {"candela", "cd"},
                                                                  {"radian", "rad"},
                                                                  {"hertz", "Hz"},
                                                                  {"megahertz", "MHz"},
                                                                  {"watt", "W"},
                                                                  {"volt", "V"},
                                                                  {"ohm", "Ohm"},
                                                                  {"kiloohm", "kOhm"},
                                                                  {"litre", "L"},
                                                                  {"milliliter", "mL"},
                                                                  {"tonne", "t"},
                                                                  {"megatonne", "Mt"},
                                                                  {"millibar", "mbar"},
                                                                  {"micron", "um"},
                                                                  {"kt", "kn"},
                                                                  {"knot", "kn"},
                                                                  {"lb", "lbm"},
                                                                  {"pound", "lbm"},
                                                                  {"BTU", "Btu"},
                                                                  {"torr", "Torr"},
                                                                  {"gn", "g0"},
                                                                  {"gravity", "g0"},
                                                                  {"celsius", "degC"},
                                                                  {"degree_Celsius", "degC"},
                                                                  {"fahrenheit", "degF"},
                                                                  {"rankine", "degR"},
                                                                  {"centistokes", "cSt"},
                                                                  {"kilodalton", "kDa"},
                                                                  {"metric_ton", "t"},
                                                                  {"cal_it", "cal_IT"},
                                                                  {"US_liquid_gallon", "gal_US"}};
  for (const auto& [spelling, id] : cases) {
    const auto* unit = builtin().lookup(spelling);
    ASSERT_NE(unit, nullptr) << spelling;
    EXPECT_EQ(unit->id, UnitId(id)) << spelling;
    EXPECT_EQ(builtin().aliases().at(spelling), UnitId(id)) << spelling;
    EXPECT_EQ(builtin().find(spelling), nullptr) << spelling << " is not an id";
    const auto& names = unit->names;
    EXPECT_NE(std::find(names.begin(), names.end(), spelling), names.end()) << spelling;
  }
  // Symbols and long names do not mix, and long names have no plurals.
  for (const char* spelling : {"kmetre", "kilom", "kilometers", "meters", "kilokt", "kilolb"}) {
    EXPECT_EQ(builtin().lookup(spelling), nullptr) << spelling;
  }
  EXPECT_EQ(builtin().find("m")->names, (std::vector<std::string>{"metre", "meter"}));
  EXPECT_EQ(builtin().find("kg")->names, (std::vector<std::string>{"kilogram"}));
}

TEST(Context, AmbiguousSpellingsListWhatToWriteInstead) {
  const std::vector<std::pair<const char*, std::vector<const char*>>> cases = {
      {"gal", {"gal_US", "gal_UK"}},
      {"gallon", {"gal_US", "gal_UK"}},
      {"pt", {"pt_US", "pt_UK"}},
      {"qt", {"qt_US", "qt_UK"}},
      {"floz", {"floz_US", "floz_UK"}},
      {"fl_oz", {"floz_US", "floz_UK"}},
      {"oz", {"ozm", "floz_US", "floz_UK"}},
      {"cal", {"cal_th", "cal_IT"}},
      {"calorie", {"cal_th", "cal_IT"}},
      {"kcal", {"kcal_th", "kcal_IT"}},
      {"ton", {"short_ton", "long_ton", "t"}},
      {"therm", {"therm_US", "therm_EC"}},
      {"yr", {"common_year", "julian_year"}},
      {"year", {"common_year", "julian_year"}}};
  for (const auto& [spelling, readings] : cases) {
    EXPECT_EQ(builtin().lookup(spelling), nullptr) << spelling;
    const auto* listed = builtin().ambiguity(spelling);
    ASSERT_NE(listed, nullptr) << spelling;
    std::vector<UnitId> expected;
    for (const char* id : readings) expected.emplace_back(id);
    EXPECT_EQ(*listed, expected) << spelling;
  }
  EXPECT_EQ(builtin().ambiguity("m"), nullptr);
  EXPECT_EQ(builtin().ambiguous().size(), 19u);
}

TEST(Context, DeclaredUnitsKeepTheDataOrder) {
  const auto& ids = builtin().declared_units();
  ASSERT_GE(ids.size(), 8u);
  EXPECT_EQ(ids[0], UnitId("m"));
  EXPECT_EQ(ids[1], UnitId("kg"));
  EXPECT_EQ(ids.back(), UnitId("deltadegF"));
  for (const UnitId& id : ids) EXPECT_TRUE(builtin().find(id.view())->prefix.empty()) << id.str();
  EXPECT_EQ(std::find(ids.begin(), ids.end(), UnitId("km")), ids.end());
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

TEST(Context, ReadsLongNamesAliasesAndAmbiguousSpellings) {
  const auto ctx = Context::parse(
      "prefix k 1000 kilo\n"
      "prefix m 1/1000\n"
      "base m length prefixes names=metre\n"
      "unit ft 0.3048 m names=foot\n"
      "unit yd 3 ft\n"
      "alias feet ft\n"
      "alias klick km\n"
      "unit yd2 3 ft\n"
      "ambiguous foo,bar yd yd2\n",
      "test.txt");
  EXPECT_EQ(ctx->lookup("kilometre")->id, UnitId("km"));
  EXPECT_EQ(ctx->lookup("klick")->id, UnitId("km"));
  EXPECT_EQ(ctx->lookup("feet")->id, UnitId("ft"));
  EXPECT_EQ(ctx->lookup("millimetre"), nullptr);  // the prefix m has no long name here
  EXPECT_EQ(ctx->find("ft")->names, (std::vector<std::string>{"foot", "feet"}));
  ASSERT_NE(ctx->ambiguity("bar"), nullptr);
  EXPECT_EQ(*ctx->ambiguity("foo"), (std::vector<UnitId>{UnitId("yd"), UnitId("yd2")}));
  EXPECT_EQ(ctx->aliases().size(), 5u);  // metre, foot, feet, klick, kilometre
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
  // A prefixed form never takes over a declared spelling: the unit must list
  // its prefixes without the colliding one, and the error names its line.
  expect_database_error("prefix k 1000\nbase kg mass\nunit t 1000 kg prefixes\nunit kt 1 kg", 3);
  expect_database_error("prefix k 1000\nbase m x prefixes\nalias km m", 2);
  expect_database_error("prefix k 1000\nbase m x prefixes\nunit s 1 m\nambiguous km m s", 2);
  expect_database_error("prefix k 1000 kilo\nbase m x prefixes names=metre\nalias kilometre m", 2);
  // ... unless it is the very same unit, as kg is k + g.
  EXPECT_NO_THROW(
      (void)Context::parse("prefix k 1000\nbase kg mass\nunit g 1/1000 kg prefixes", "ok.txt"));
  expect_database_error("prefix k 1000\nbase m x prefixes=k,k", 2);
  expect_database_error("prefix k 1000\nbase m x prefixes=h", 2);
  expect_database_error("prefix k 1000\nbase m x prefixes=", 2);
  expect_database_error("prefix k 1000 kilo\nprefix M 1e6 kilo", 2);
  expect_database_error("prefix k 1000 k1lo", 1);
  expect_database_error("base m x names=metre\nbase s y names=metre", 2);
  expect_database_error("base m x names=metre\nalias m s", 2);
  expect_database_error("base m x\nalias metre mm", 2);
  expect_database_error("base m x\nalias metre", 2);
  expect_database_error("base m x\nalias 2m m", 2);
  expect_database_error("base m x\nbase s y\nambiguous foo m", 3);
  expect_database_error("base m x\nbase s y\nambiguous foo m zz", 3);
  expect_database_error("base m x\nbase s y\nambiguous m m s", 3);
  expect_database_error("base m x\nbase s y\nambiguous foo,,bar m s", 3);
  expect_database_error("base m x names=metre names=meter", 1);
}

TEST(Context, EveryMessageOfTheLibraryHasEnglishAndGermanText) {
  for (const char* key :
       {"InvalidUnitId", "InvalidExpression", "SyntaxError", "UnknownUnit", "AmbiguousUnit",
        "OffsetUnitNotAlone", "NotCommensurate", "InexactConversion", "InvalidConversionMode",
        "FactorTooLarge", "NonFiniteExponent", "NonFiniteConversionValue", "InvalidDatabase"}) {
    EXPECT_TRUE(msgcat::find_pattern("units2:core", key, "en")) << key;
    EXPECT_TRUE(msgcat::find_pattern("units2:core", key, "de")) << key;
  }
}

}  // namespace
