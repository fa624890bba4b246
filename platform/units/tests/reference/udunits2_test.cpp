// Every spelling of the built-in unit database, read by this library and by
// UDUNITS-2 (Debian's libudunits2-dev, through its C API), must mean the same
// unit in both, or differ in a way listed in `differences` below with its
// reason.
//
// The spellings are the ids of the database (prefixed forms included), its
// long names and aliases (prefixed long names included), its ambiguous
// spellings, and `typed_texts`: unit text written the way people type it.
// For each, UDUNITS-2 converts its reading to the product of base units this
// library gives (ut_parse, ut_get_converter); the converter applied at 0 and
// at 1 gives the offset and the factor. Both must match this library's within
// a relative 1e-12: UDUNITS-2 works in doubles built from decimal definitions,
// which leaves a few units in the last place (1e-16 relative), while every
// deliberate difference it has (rounded constants, other readings) is
// 1e-9 or more.
//
// The table is checked in both directions: a difference it does not list
// fails, and so does an entry that is no longer a difference, or that names no
// spelling, so that the table stays a true account of where the two disagree.

#include <gtest/gtest.h>
#include <udunits2.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "krel/ustring.h"
#include "units2/core/context.h"
#include "units2/core/expr.h"

namespace {

namespace units = units2::core;

// How this library and UDUNITS-2 compare on one spelling.
enum class Outcome {
  same,            // both read it as the same unit, or both refuse it
  unknown_there,   // UDUNITS-2 does not know the spelling
  unknown_here,    // this library does not know it (or it is no unit text), UDUNITS-2 does
  ambiguous_here,  // this library refuses it as ambiguous, UDUNITS-2 reads it
  other_quantity,  // both read it, as units of different quantities
  other_size,      // both read it as units of one quantity, of other sizes or zeros
};

const char* name_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::same:
      return "same";
    case Outcome::unknown_there:
      return "unknown_there";
    case Outcome::unknown_here:
      return "unknown_here";
    case Outcome::ambiguous_here:
      return "ambiguous_here";
    case Outcome::other_quantity:
      return "other_quantity";
    case Outcome::other_size:
      return "other_size";
  }
  return "?";
}

// Which spellings an entry of the table covers.
enum class Match {
  spelling,     // the spellings named
  forms_of,     // the ids named and every prefixed form of them (km, kilometre)
  prefixed_by,  // every prefixed form made with the prefixes named (symbol or long name)
};

// One deliberate difference: `keys` (separated by blanks) name what it
// covers, `outcome` is how the two compare there, `reason` why.
struct Difference {
  std::string_view keys;
  Match match;
  Outcome outcome;
  std::string_view reason;
};

// The deliberate differences. A spelling is looked up by name first, then by
// its prefix, then as a form of a unit (QeV is unknown there for its prefix,
// before eV's rounding matters).
const std::vector<Difference> differences = {
    // Values UDUNITS-2 rounds or takes from older measurements.
    {"eV", Match::forms_of, Outcome::other_size,
     "UDUNITS-2 has e = 1.60217733e-19 C (CODATA 1986); here the exact value of the 2019 SI"},
    {"electronvolt", Match::spelling, Outcome::other_size, "as eV"},
    {"u unified_atomic_mass_unit", Match::spelling, Outcome::other_size,
     "UDUNITS-2 has 1.6605402e-27 kg (CODATA 1986); here the CODATA 2018 value"},
    {"hp horsepower", Match::spelling, Outcome::other_size,
     "UDUNITS-2 rounds to 745.6999 W; here exactly 550 ft*lbf/s"},
    {"slug", Match::spelling, Outcome::other_size,
     "UDUNITS-2 rounds to 14.5939 kg; here exactly 1 lbf*s^2/ft"},
    {"ozf ounce_force", Match::spelling, Outcome::other_size,
     "UDUNITS-2 rounds to 0.2780139 N; here exactly lbf/16"},
    {"avoirdupois_ounce", Match::spelling, Outcome::other_size,
     "UDUNITS-2 rounds to 0.02834952 kg; here exactly lb/16"},
    {"US_liquid_gallon US_liquid_quart US_liquid_pint US_fluid_ounce", Match::spelling,
     Outcome::other_size, "UDUNITS-2 rounds the US gallon to 3.785412 L; here exactly 231 in^3"},
    // Other readings of one spelling.
    {"Torr torr", Match::spelling, Outcome::other_size,
     "UDUNITS-2 makes the torr the mmHg (133.322387415 Pa); here atm/760 (133.3223684 Pa)"},
    {"acre", Match::spelling, Outcome::other_size,
     "UDUNITS-2 has the US survey acre; here 43560 ft^2 of the international foot, the survey "
     "foot having been retired at the end of 2022"},
    {"ct", Match::spelling, Outcome::other_size,
     "UDUNITS-2 reads a centitonne (10 kg); here the metric carat, as the tonne takes no c"},
    {"g0", Match::spelling, Outcome::other_quantity,
     "UDUNITS-2 reads g to the power 0, the number 1; here standard gravity"},
    {"mph", Match::spelling, Outcome::other_quantity,
     "UDUNITS-2 reads a milliphot; here the mile per hour"},
    // Spellings refused here as ambiguous, which UDUNITS-2 reads one way.
    {"cal calorie kcal kilocalorie", Match::spelling, Outcome::ambiguous_here,
     "thermochemical (4.184 J) or International Table (4.1868 J); UDUNITS-2 takes the latter"},
    {"gal gallon", Match::spelling, Outcome::ambiguous_here,
     "US or UK gallon; UDUNITS-2 reads gal as the galileo and gallon as the US gallon"},
    {"pt pint quart floz fluid_ounce oz", Match::spelling, Outcome::ambiguous_here,
     "US or UK measure (oz also the mass ounce); UDUNITS-2 reads the US liquid one"},
    {"ton", Match::spelling, Outcome::ambiguous_here,
     "2000 lb, 2240 lb or 1000 kg; UDUNITS-2 takes 2000 lb"},
    {"therm", Match::spelling, Outcome::ambiguous_here,
     "US or EC therm; UDUNITS-2 takes the US therm"},
    {"yr year", Match::spelling, Outcome::ambiguous_here,
     "365 or 365.25 days, or the tropical year; UDUNITS-2 takes the tropical year"},
    // Texts refused here that UDUNITS-2 reads.
    {"hbar", Match::spelling, Outcome::unknown_here,
     "the bar takes no h here; UDUNITS-2 reads a hectobar, others the reduced Planck constant"},
    {"Tt dat mt", Match::spelling, Outcome::unknown_here,
     "UDUNITS-2 reads prefixed tonnes; here the tonne takes M and G only"},
    {"nt", Match::spelling, Outcome::unknown_here,
     "UDUNITS-2 reads the nit; not in this database, and the tonne takes no n"},
    {"nmi", Match::spelling, Outcome::unknown_here,
     "UDUNITS-2 reads a nanomile; the nautical mile is not in this database"},
    {"Gal", Match::spelling, Outcome::unknown_here, "the galileo is not in this database"},
    {"\u00b0", Match::spelling, Outcome::unknown_here,
     "an angle is written deg here, so that \"\u00b0 C\" is never a degree times a coulomb"},
    // Spellings UDUNITS-2 does not know.
    {"Q R r q quetta ronna ronto quecto", Match::prefixed_by, Outcome::unknown_there,
     "the prefixes of 2022 are newer than UDUNITS-2 2.2.28"},
    {"deca", Match::prefixed_by, Outcome::unknown_there, "UDUNITS-2 spells the prefix deka"},
    {"Ah Wh", Match::forms_of, Outcome::unknown_there,
     "UDUNITS-2 has no ampere hour or watt hour symbol (it reads A.h and W.h)"},
    {"Da", Match::forms_of, Outcome::unknown_there, "UDUNITS-2 has no dalton"},
    {"dalton", Match::spelling, Outcome::unknown_there, "as Da"},
    {"cal_th cal_IT", Match::forms_of, Outcome::unknown_there,
     "UDUNITS-2 names these thermochemical_calorie and IT_calorie only"},
    {"cal_it", Match::spelling, Outcome::unknown_there, "as cal_IT"},
    {"deg rev kn lbm dyn rankine standard_gravity gn g_n", Match::spelling, Outcome::unknown_there,
     "UDUNITS-2 spells these degree, revolution, knot (or kt), lb, dyne, degree_Rankine and "
     "gravity"},
    {"deltaK deltadegC deltadegF deltadegR", Match::spelling, Outcome::unknown_there,
     "the difference units are this library's own"},
    {"ozm gal_US qt_US pt_US floz_US gal_UK qt_UK pt_UK floz_UK imperial_gallon therm_US "
     "therm_EC",
     Match::spelling, Outcome::unknown_there,
     "the spellings this library gives for each reading of an ambiguous one"},
    {"inH2O mmH2O", Match::spelling, Outcome::unknown_there,
     "UDUNITS-2 has the water columns cmH2O and ftH2O only"},
    {"s\u207b\u00b9", Match::spelling, Outcome::unknown_there,
     "UDUNITS-2 reads superscript digits, but not the superscript minus"},
};

// Texts as people type them, beyond the database's own spellings, and
// spellings that UDUNITS-2 reads but this library deliberately does not.
const std::vector<std::string> typed_texts = {"kg m/s\u00b2",
                                              "N\u00b7m",
                                              "N m",
                                              "m**2",
                                              "J/kg K",
                                              "\u00b5m",
                                              "\u03bcm",
                                              "\u03a9",
                                              "\u2126",
                                              "k\u03a9",
                                              "\u00b0C",
                                              "\u00b0F",
                                              "\u00b0R",
                                              "\u2103",
                                              "\u2109",
                                              "m\u00b2",
                                              "m\u00b3",
                                              "s\u207b\u00b9",
                                              "kilometre/hour",
                                              "W/(m\u00b7K)",
                                              "\u00b0",
                                              "hbar",
                                              "Tt",
                                              "dat",
                                              "mt",
                                              "nt",
                                              "nmi",
                                              "Gal"};

// What this library makes of a spelling: nothing when refused, else the
// factor and offset to its product of base units (written as text).
struct Here {
  bool known = false;
  std::string base;
  double factor = 0;
  double offset = 0;
};

Here read_here(const std::shared_ptr<const units::Context>& shared, const std::string& text) {
  const units::Context& context = *shared;
  const units::Expr expr(units::ContextGetter(shared), krel::utf8_string_to_ustring(text));
  Here out;
  if (!expr.isValid()) return out;
  units::Factors base;
  units::Magnitude scale;
  for (const auto& [id, exponent] : expr.info().factors) {
    const units::Unit& unit = *context.find(id.view());
    base *= unit.dimension.pow(exponent);
    scale *= unit.scale.pow(exponent);
  }
  out.known = true;
  out.base = units::to_raw_expr(base).text();
  out.factor = scale.to_double();
  if (expr.info().affine) {
    out.offset = units::to_double(context.find(expr.info().factors.singleton()->view())->offset);
  }
  return out;
}

struct UnitDeleter {
  void operator()(ut_unit* unit) const { ut_free(unit); }
};
using UnitPtr = std::unique_ptr<ut_unit, UnitDeleter>;

struct SystemDeleter {
  void operator()(ut_system* system) const { ut_free_system(system); }
};

bool close(double a, double b, double scale) {
  return std::fabs(a - b) <= 1e-12 * scale;
}

class Udunits2 {
 public:
  Udunits2() {
    // ut_read_xml reports every redefinition it meets on standard error.
    ut_set_error_message_handler(ut_ignore);
    system_.reset(ut_read_xml(nullptr));
  }
  [[nodiscard]] bool loaded() const { return system_ != nullptr; }

  // How UDUNITS-2's reading of `text` compares with this library's.
  Outcome compare(const std::string& text, const Here& here, std::string& detail) const {
    const UnitPtr theirs(ut_parse(system_.get(), text.c_str(), UT_UTF8));
    if (!here.known) return theirs ? Outcome::unknown_here : Outcome::same;
    if (!theirs) return Outcome::unknown_there;
    const UnitPtr base(ut_parse(system_.get(), here.base.c_str(), UT_UTF8));
    if (!base) {
      ADD_FAILURE() << "UDUNITS-2 cannot read the base units '" << here.base << "'";
      return Outcome::other_quantity;
    }
    if (ut_are_convertible(theirs.get(), base.get()) == 0) return Outcome::other_quantity;
    cv_converter* converter = ut_get_converter(theirs.get(), base.get());
    const double offset = cv_convert_double(converter, 0.0);
    const double factor = cv_convert_double(converter, 1.0) - offset;
    cv_free(converter);
    detail = "there " + std::to_string(factor) + " @ " + std::to_string(offset) + ", here " +
             std::to_string(here.factor) + " @ " + std::to_string(here.offset) + " " + here.base;
    const double size = std::max({std::fabs(here.offset), std::fabs(offset), here.factor});
    return close(factor, here.factor, here.factor) && close(offset, here.offset, size)
               ? Outcome::same
               : Outcome::other_size;
  }

 private:
  std::unique_ptr<ut_system, SystemDeleter> system_;
};

// Where a spelling comes from: for a prefixed form, the prefix it was made
// with (its symbol, or its long name for a long form) and the id of the unit
// it prefixes; for a declared spelling, for an id, the id itself.
struct Origin {
  std::string prefix;
  std::string unit;
};

// The origin of a long name or alias: a long form made from a prefix and a
// long name (kilometre), or declared as it is (micron, although it names um).
Origin origin_of_name(const units::Context& context, const std::string& name,
                      const units::Unit& unit) {
  if (unit.prefix.empty()) return {};
  const auto prefix =
      std::find_if(context.prefixes().begin(), context.prefixes().end(),
                   [&unit](const units::Prefix& p) { return p.symbol == unit.prefix; });
  if (prefix->name.empty() || !name.starts_with(prefix->name)) return {};
  const std::string_view unprefixed_id = unit.id.view().substr(unit.prefix.size());
  const units::Unit& unprefixed = *context.find(unprefixed_id);
  const std::string rest = name.substr(prefix->name.size());
  const bool made =
      rest == unprefixed_id ||
      std::find(unprefixed.names.begin(), unprefixed.names.end(), rest) != unprefixed.names.end();
  return made ? Origin{prefix->name, std::string(unprefixed_id)} : Origin{};
}

// Every spelling to compare, with its origin.
std::map<std::string, Origin> spellings(const units::Context& context) {
  std::map<std::string, Origin> out;
  for (const auto& [id, unit] : context.units()) {
    out.emplace(id, Origin{unit.prefix, id.substr(unit.prefix.size())});
  }
  for (const auto& [name, id] : context.aliases()) {
    out.emplace(name, origin_of_name(context, name, *context.find(id.view())));
  }
  for (const auto& [spelling, readings] : context.ambiguous()) out.emplace(spelling, Origin{});
  for (const std::string& text : typed_texts) out.emplace(text, Origin{});
  return out;
}

std::vector<std::string_view> keys_of(const Difference& d) {
  std::vector<std::string_view> out;
  std::string_view rest = d.keys;
  while (!rest.empty()) {
    const std::size_t blank = rest.find(' ');
    out.push_back(rest.substr(0, blank));
    rest = blank == std::string_view::npos ? std::string_view() : rest.substr(blank + 1);
  }
  return out;
}

// The entry of the table that covers a spelling, and the key that matched.
std::pair<const Difference*, std::string_view> listed(const std::string& text,
                                                      const Origin& origin) {
  for (const Match match : {Match::spelling, Match::prefixed_by, Match::forms_of}) {
    const std::string& wanted = match == Match::spelling   ? text
                                : match == Match::forms_of ? origin.unit
                                                           : origin.prefix;
    if (wanted.empty()) continue;
    for (const Difference& d : differences) {
      if (d.match != match) continue;
      for (const std::string_view key : keys_of(d)) {
        if (key == wanted) return {&d, key};
      }
    }
  }
  return {nullptr, {}};
}

TEST(Udunits2, EverySpellingMeansWhatUdunits2ReadsOrTheDifferenceIsListed) {
  const Udunits2 reference;
  ASSERT_TRUE(reference.loaded()) << "ut_read_xml found no unit database";
  const std::shared_ptr<const units::Context> context = units::Context::builtin();
  std::set<std::pair<const Difference*, std::string_view>> used;
  std::map<Outcome, std::size_t> counts;
  for (const auto& [text, origin] : spellings(*context)) {
    std::string detail;
    Outcome outcome = reference.compare(text, read_here(context, text), detail);
    if (outcome == Outcome::unknown_here && context->ambiguity(text) != nullptr) {
      outcome = Outcome::ambiguous_here;
    }
    ++counts[outcome];
    const auto [entry, key] = listed(text, origin);
    if (entry != nullptr) used.emplace(entry, key);
    const Outcome expected = entry != nullptr ? entry->outcome : Outcome::same;
    EXPECT_EQ(std::string(name_of(outcome)), name_of(expected))
        << "'" << text << "' " << detail
        << (entry != nullptr ? " (listed: " + std::string(entry->reason) + ")" : "");
  }
  // Most spellings agree; the comparison is not vacuous.
  EXPECT_GT(counts[Outcome::same], 1000u);
  for (const Difference& d : differences) {
    for (const std::string_view key : keys_of(d)) {
      EXPECT_EQ(used.count({&d, key}), 1u)
          << "the table's '" << key << "' (" << d.reason << ") covers no spelling";
    }
  }
}

}  // namespace
