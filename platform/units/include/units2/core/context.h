// units2/core/context.h - the unit database and the units service
//
// A Context is a unit database read from text: its decimal prefixes, its base
// units (one per independent quantity) and every unit, prefixed forms
// included, with its exact scale and offset relative to the base units. The
// format of the text is described at the top of the library's data file
// (data/units.txt), which is built into the library and loaded by
// Context::builtin().
//
// The process has one units service, reached through get_service(); its
// context() is the context expressions use unless they are given another.
//
//   std::shared_ptr<const units2::core::Context> ctx = units2::core::get_service()->context();
//   ctx->units().count("km");          // 1: a prefixed form of the metre
//   ctx->units().at("degC").affine();  // true

#ifndef UNITS2_CORE_CONTEXT_H
#define UNITS2_CORE_CONTEXT_H

#include <memory>
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
  /// True when the decimal prefixes apply to the unit.
  bool prefixable = false;
  /// How the data defines the unit ("1/1000 kg", "prefix k of m").
  std::string definition;

  /// True when the unit has a non-zero offset.
  [[nodiscard]] bool affine() const noexcept { return !offset.isZero(); }
};

/// A decimal prefix of a context.
struct Prefix {
  std::string symbol;
  ConversionRational factor;
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

  /// Reads a database from `data`. Throws krel::MessageException
  /// units2:core:InvalidDatabase naming `source` and the line on any error, so
  /// a context is never half read.
  [[nodiscard]] static std::shared_ptr<const Context> parse(std::string_view data,
                                                            std::string_view source);

  /// The database built into the library, read once per process.
  [[nodiscard]] static std::shared_ptr<const Context> builtin();

  /// Every unit, prefixed forms included, keyed by its id text.
  [[nodiscard]] const UnitMap& units() const noexcept { return units_; }
  /// The unit named `id`, or nullptr.
  [[nodiscard]] const Unit* find(std::string_view id) const;

  /// The base units in the order the data declares them.
  [[nodiscard]] const std::vector<BaseUnit>& base_units() const noexcept { return bases_; }
  /// The prefixes in the order the data declares them.
  [[nodiscard]] const std::vector<Prefix>& prefixes() const noexcept { return prefixes_; }

 private:
  struct Builder;
  Context() = default;

  UnitMap units_;
  std::vector<BaseUnit> bases_;
  std::vector<Prefix> prefixes_;
};

/// The units service: the holder of the current context.
/// Ownership: shared through get_service(). Threads: safe on any thread.
class Service {
 public:
  explicit Service(std::shared_ptr<const Context> context) : context_(std::move(context)) {}

  /// The current context; it stays alive for as long as the caller holds it.
  [[nodiscard]] std::shared_ptr<const Context> context() const { return context_; }

 private:
  std::shared_ptr<const Context> context_;
};

/// The process's units service, whose context is Context::builtin(). Created
/// on first use.
[[nodiscard]] std::shared_ptr<Service> get_service();

}  // namespace units2::core

#endif  // UNITS2_CORE_CONTEXT_H
