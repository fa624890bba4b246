// expr_impl.h - the record behind an Expr, the parser and the resolver
// (private to src/)

#ifndef UNITS2_CORE_SRC_EXPR_IMPL_H
#define UNITS2_CORE_SRC_EXPR_IMPL_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "krel/cow.h"
#include "messages.h"
#include "units2/core/context.h"
#include "units2/core/expr.h"
#include "units2/core/magnitude.h"

namespace units2::core::detail {

/// What an expression is in base units: a value x of the expression is the
/// quantity (scale * x + offset) of `dimension`.
struct Reduced {
  Factors dimension;
  Magnitude scale;
  ConversionRational offset;
};

struct ExprRep {
  krel::RefCount<> count;
  std::shared_ptr<const Context> context;
  bool valid = false;
  ExprInfo info;
  std::optional<krel::Message> problem;
  Reduced reduced;
};

struct ExprAccess {
  static const ExprRep& rep(const Expr& expr) noexcept { return expr.rep_.read(); }
};

/// Where parsing stopped: the 0-based index of the code unit that does not fit
/// the grammar (the text's length when the text ends too early).
struct ParseFailure {
  std::size_t position;
};

/// What parsing gives: the factors as written (spellings, not yet ids), and
/// the spellings that were written with a micro sign (\u00b5m is "um").
struct Parsed {
  Factors factors;
  std::vector<UnitId> micro;
};

/// Parses expression text (grammar in expr.h). Throws NonFiniteExponent when
/// an exponent overflows. The UTF-16 form reads the Unicode synonyms of the
/// grammar; the narrow form (the database's definitions) reads ASCII only.
[[nodiscard]] std::variant<Parsed, ParseFailure> parse_factors(std::u16string_view text);
[[nodiscard]] std::variant<Parsed, ParseFailure> parse_factors(std::string_view text);

/// How a resolver finds units: the unit named id, or nullptr.
using UnitLookup = std::function<const Unit*(std::string_view id)>;

/// Resolves factors against units: the reduced form, or the message saying
/// why the factors do not make a valid expression (UnknownUnit,
/// OffsetUnitNotAlone). `text` is the expression's text for that message.
/// Throws NonFiniteExponent or FactorTooLarge when a number grows out of range.
[[nodiscard]] std::variant<Reduced, MsgId> reduce(const Factors& factors, const UnitLookup& lookup,
                                                  const krel::ustring& text);

}  // namespace units2::core::detail

#endif  // UNITS2_CORE_SRC_EXPR_IMPL_H
