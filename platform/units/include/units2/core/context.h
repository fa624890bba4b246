// units2/core/context.h - the unit database and the units service
//
// A Context is a unit database read from text: its decimal prefixes, its base
// units (one per independent quantity) and every unit, prefixed forms
// included, with its exact scale and offset relative to the base units. The
// format of the text is described at the top of the library's data file
// (data/units.txt), which is built into the library and loaded by
// Context::builtin().
//
// A unit has one id, which is how expressions print it (m, kg, degC, Ohm).
// Other spellings name the same unit: long names (metre, meter, kilometre)
// and aliases (kt for kn, lb for lbm). They are accepted wherever an id is and
// read as that id, so "meter" prints as "m". A few spellings have more than
// one reading in common use (gal: US or imperial gallon; cal: thermochemical
// or International Table calorie); the database names no unit for them, and
// an expression that uses one is refused with a message that lists what to
// write instead, rather than read as one of them.
//
// Rules the reader enforces, so that no spelling is read as a unit other than
// the one its data declares:
//   - every spelling (id, prefixed form, long name, alias, ambiguous spelling)
//     names one thing; two declarations of one spelling are refused;
//   - a declared spelling that a prefix and a unit would also make is refused,
//     unless it is that very unit (kg is k + g); a unit that would collide
//     takes a list of prefixes instead of all of them (the tonne takes M and
//     G only, so ct, kt and at stay free for the carat, the knot and the
//     technical atmosphere, and pt for the pints);
//   - long prefixes (kilo, milli) combine with the long names of a prefixed
//     unit (kilometre), symbols with ids (km); they never mix (kmetre, kilom).
//
// The process has one units service, reached through get_service(); its
// context() is the context expressions use unless they are given another.
// set_context() replaces it, for instance with a database that extends the
// built-in one (Context::builtin_text() plus more lines).
//
//   std::shared_ptr<const units2::core::Context> ctx = units2::core::get_service()->context();
//   ctx->units().count("km");           // 1: a prefixed form of the metre
//   ctx->units().at("degC").affine();   // true
//   ctx->lookup("kilometre")->id.str();  // "km"
//   ctx->ambiguity("gal")->size();       // 2: gal_US, gal_UK

#ifndef UNITS2_CORE_CONTEXT_H
#define UNITS2_CORE_CONTEXT_H

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <boost/unordered_map.hpp>

#include "units2/core/factors.h"
#include "units2/core/magnitude.h"

namespace units2::core {

/// One unit of a context.
///
/// A value x in this unit is the quantity (scale * x + offset) in the product
/// of base units `dimension`.
/// Ownership: a plain value. Threads: like an int.
struct Unit {
  UnitId id;
  /// The product of base units this unit measures; the unit itself for a base unit.
  Factors dimension;
  /// The size of one unit in base units.
  Magnitude scale;
  /// Where the unit's zero lies, in base units (273.15 for degC); 0 for most units.
  ConversionRational offset;
  /// True for the base units of the context.
  bool base = false;
  /// True when decimal prefixes apply to the unit (all of them, or the ones
  /// in prefix_symbols).
  bool prefixable = false;
  /// How the data defines the unit ("1/1000 kg", "prefix k of m").
  std::string definition;
  /// The symbols of the prefixes the unit takes, in the order the data
  /// declares prefixes; empty when it takes none.
  std::vector<std::string> prefix_symbols;
  /// For a form the prefix rule made (km): the symbol of its prefix ("k");
  /// empty for a unit the data declares.
  std::string prefix;
  /// The other spellings that name this unit: its long names and aliases in
  /// the order the data declares them, then long names with a long prefix
  /// (kilometre for km, kilogram for kg).
  std::vector<std::string> names;

  /// True when the unit has a non-zero offset.
  [[nodiscard]] bool affine() const noexcept { return !offset.isZero(); }
};

/// A decimal prefix of a context.
struct Prefix {
  std::string symbol;
  ConversionRational factor;
  /// The long prefix that goes with long names ("kilo"); may be empty.
  std::string name;
};

/// A base unit and the name of the quantity it measures.
struct BaseUnit {
  UnitId id;
  std::string quantity;
};

/// A unit database.
///
/// Ownership: held through std::shared_ptr<const Context>; immutable once read.
/// Threads: any number of threads may read it at once.
class Context {
 public:
  using UnitMap = boost::unordered_map<std::string, Unit>;
  /// Long names and aliases, keyed by their text, with the id of the unit
  /// each names.
  using AliasMap = boost::unordered_map<std::string, UnitId>;
  /// Spellings with more than one reading in common use, keyed by their text,
  /// with the ids of the units to write instead (at least two).
  using AmbiguityMap = boost::unordered_map<std::string, std::vector<UnitId>>;

  /// Reads a database from `data`. Throws krel::MessageException
  /// units2:core:InvalidDatabase naming `source` and the line on any error, so
  /// a context is never half read.
  [[nodiscard]] static std::shared_ptr<const Context> parse(std::string_view data,
                                                            std::string_view source);

  /// The database built into the library, read once per process.
  [[nodiscard]] static std::shared_ptr<const Context> builtin();

  /// The text builtin() reads. A database that extends the built-in one is
  /// that text followed by more lines:
  ///   Context::parse(std::string(Context::builtin_text()) + "unit ...\n", "mine")
  [[nodiscard]] static std::string_view builtin_text() noexcept;

  /// Every unit, prefixed forms included, keyed by its id text.
  [[nodiscard]] const UnitMap& units() const noexcept { return units_; }
  /// The unit whose id is `id`, or nullptr (long names and aliases are not ids).
  [[nodiscard]] const Unit* find(std::string_view id) const;
  /// The unit that `spelling` names: by its id, a long name or an alias;
  /// nullptr for an unknown or ambiguous spelling. The unit's id is the
  /// canonical spelling.
  [[nodiscard]] const Unit* lookup(std::string_view spelling) const;
  /// For a spelling with more than one reading in common use, the ids of the
  /// units to write instead; otherwise nullptr.
  [[nodiscard]] const std::vector<UnitId>* ambiguity(std::string_view spelling) const;

  /// Every long name and alias (prefixed long names included).
  [[nodiscard]] const AliasMap& aliases() const noexcept { return aliases_; }
  /// Every ambiguous spelling.
  [[nodiscard]] const AmbiguityMap& ambiguous() const noexcept { return ambiguous_; }
  /// The ids of the units the data declares (no prefixed forms), in the order
  /// it declares them.
  [[nodiscard]] const std::vector<UnitId>& declared_units() const noexcept { return declared_; }

  /// The base units in the order the data declares them.
  [[nodiscard]] const std::vector<BaseUnit>& base_units() const noexcept { return bases_; }
  /// The prefixes in the order the data declares them.
  [[nodiscard]] const std::vector<Prefix>& prefixes() const noexcept { return prefixes_; }

 private:
  struct Builder;
  Context() = default;

  UnitMap units_;
  AliasMap aliases_;
  AmbiguityMap ambiguous_;
  std::vector<UnitId> declared_;
  std::vector<BaseUnit> bases_;
  std::vector<Prefix> prefixes_;
};

/// The units service: the holder of the current context.
/// Ownership: shared through get_service(). Threads: every member may be
/// called on any thread at once; a context() taken before a set_context()
/// stays valid and unchanged.
class Service {
 public:
  /// `context` must not be null.
  explicit Service(std::shared_ptr<const Context> context);

  /// The current context; it stays alive for as long as the caller holds it.
  [[nodiscard]] std::shared_ptr<const Context> context() const;

  /// Makes `context` (not null) the current context and returns the one it
  /// replaces. Expressions built afterwards with a default ContextGetter
  /// resolve against it; those built before keep the context they were
  /// resolved against.
  std::shared_ptr<const Context> set_context(std::shared_ptr<const Context> context);

 private:
  // The lock is held only to copy or swap the pointer, so a plain mutex costs
  // little even when many threads build expressions at once.
  mutable std::mutex mutex_;
  std::shared_ptr<const Context> context_;
};

/// The process's units service, whose context is Context::builtin(). Created
/// on first use.
[[nodiscard]] std::shared_ptr<Service> get_service();

}  // namespace units2::core

#endif  // UNITS2_CORE_CONTEXT_H
