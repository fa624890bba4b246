// units2/core/expr.h - unit expressions
//
// An Expr is a unit expression such as "kg*m^2/s^2" resolved against a unit
// Context (the unit database). Text that does not parse, names a unit the
// context does not know, or breaks the offset rule below gives an expression
// whose isValid() is false; constructing an Expr never throws for bad input.
//
// Grammar (blanks may separate tokens; a blank is a space, a tab, or in UTF-16
// text U+00A0, U+2009 or U+202F):
//
//   expr     := term { product term }           products and quotients, from the left
//   product  := "*" | "/" | "\u00b7" | "\u22c5" | blanks before a primary
//   term     := primary [ power ]
//   power    := ("^" | "**") exponent | superscript
//   primary  := unit | "1" | "(" expr ")"
//   exponent := integer | "(" integer [ "/" digits ] ")"
//   integer  := [ "+" | "-" ] digits            at most 18 digits
//   superscript := [ "\u207b" ] superscript-digit { superscript-digit }    m\u00b2, s\u207b\u00b9
//   unit     := (letter | "_") { letter | digit | "_" }    ASCII
//
// In UTF-16 text a unit may also be written with these characters, which are
// read as the ASCII spelling shown (the canonical text stays ASCII):
//   - a micro sign, U+00B5 or U+03BC, in front of a unit symbol: "u" (\u00b5m is
//     um). A letter or an ohm sign must follow, and the result must be the
//     micro form of a unit, never a long name that happens to start with "u";
//   - an ohm sign, U+03A9 or U+2126, at the end of a unit: "Ohm" (k\u03a9 is kOhm);
//   - U+00B0 followed by C, F or R, and U+2103, U+2109: degC, degF, degR. A
//     degree sign alone is refused: an angle is written deg, and "\u00b0 C" is
//     never a degree times a coulomb.
// Nothing that is part of a word may follow an ohm or degree spelling
// ("\u03a9m" is refused, not read as "Ohmm"). The ASCII grammar, which the
// database's definitions use, has none of these.
//
// A unit is written by its id (m, kg, degC), a long name (metre, kilometre,
// celsius) or an alias (kt, lb); the expression holds the id, so "meter" and
// "m" give the same factors and the same text. A spelling the database marks
// ambiguous (gal, cal, ton, ...) gives an invalid expression whose problem is
// units2:core:AmbiguousUnit, listing what to write instead.
//
// Operators are read from the left, whatever their spelling, so "J/kg/K" is
// J/(kg*K), "m/s*kg" is m*kg/s and "J/kg K" is J*K/kg. A unit is raised to at
// most one written power: "m^2^3" and "m\u00b2^3" are refused, "(m^2)^3" is
// m^6. The exponent's denominator may not be 0, and parentheses nest at most
// 200 deep.
//
// A syntax error (units2:core:SyntaxError) names the position of the first
// code unit that does not fit, counted from 1 in the text's code units (UTF-16
// for the text of an Expr). Every character the grammar accepts is one code
// unit, so the position is also the number of the offending character; a
// character outside the Basic Multilingual Plane is never accepted, and an
// error at one points at its first code unit.
//
// Offset rule: a unit with a non-zero offset (degC, degF) measures points on a
// scale, so it may only make up the whole expression on its own, to the power
// 1; degC^2, 1/degC and degC*m are invalid, and so is mdegC, since such units
// take no prefixes. Differences are written with the delta units (deltadegC).
// A valid expression that is one such unit is "affine" (info().affine).
//
//   units2::core::Expr e(u"N*m");
//   e.isValid();                                             // true
//   krel::ustring(units2::core::to_raw_expr(e.info().factors));  // u"N*m"
//   krel::ustring(units2::core::to_raw_expr(
//       units2::core::Expr(u"kg m/s\u00b2").info().factors));   // u"kg*m/s^2"
//   units2::core::Expr(u"kg**m").isValid();                  // false: ** is a power
//   units2::core::Expr(u"gal").problem()->id().key;          // "AmbiguousUnit"

#ifndef UNITS2_CORE_EXPR_H
#define UNITS2_CORE_EXPR_H

#include <memory>
#include <optional>

#include "krel/cow.h"
#include "krel/message.h"
#include "krel/ustring.h"
#include "units2/core/factors.h"

namespace units2::core {

class Context;

namespace detail {
struct ExprRep;
struct ExprAccess;
}  // namespace detail

/// How an expression finds its unit context. A default-constructed getter
/// reads the units service's current context (get_service()->context()) each
/// time it is called; one built from a context always gives that context.
/// Ownership: a plain value holding at most a shared pointer to a context.
/// Threads: like an int; calling it is safe on any thread.
class ContextGetter {
 public:
  ContextGetter() = default;
  explicit ContextGetter(std::shared_ptr<const Context> context) : fixed_(std::move(context)) {}

  [[nodiscard]] std::shared_ptr<const Context> operator()() const;

 private:
  std::shared_ptr<const Context> fixed_;
};

/// What an expression consists of.
struct ExprInfo {
  /// The units and their exponents; empty for an invalid expression.
  Factors factors;
  /// True when the expression is a single unit with a non-zero offset (degC).
  bool affine = false;
};

/// A unit expression resolved against a context.
///
/// Ownership: a handle; copies share one immutable record and are safe to keep.
/// The record keeps its context alive. Threads: copies may be used and
/// destroyed on any threads at once.
class Expr {
 public:
  /// The expression `text`, resolved against the units service's current context.
  explicit Expr(const krel::ustring& text);
  /// The expression `text`, resolved against the getter's context.
  Expr(const ContextGetter& context, const krel::ustring& text);
  /// The product `factors`, resolved against the getter's context: valid when
  /// every unit is known and the offset rule holds. Long names and aliases
  /// among the factors are read as their units' ids.
  Expr(const ContextGetter& context, const Factors& factors);

  Expr(const Expr&) noexcept;
  Expr(Expr&&) noexcept;
  Expr& operator=(const Expr&) noexcept;
  Expr& operator=(Expr&&) noexcept;
  ~Expr();

  [[nodiscard]] bool isValid() const noexcept;

  /// The factors and the affine flag; for an invalid expression, empty factors
  /// and false.
  [[nodiscard]] const ExprInfo& info() const noexcept;

  /// Why the expression is invalid (units2:core:SyntaxError, UnknownUnit,
  /// AmbiguousUnit, OffsetUnitNotAlone, ...); nothing when it is valid.
  [[nodiscard]] const std::optional<krel::Message>& problem() const noexcept;

  /// The context the expression was resolved against.
  [[nodiscard]] const std::shared_ptr<const Context>& context() const noexcept;

  /// The message that stands for any invalid expression (units2:core:InvalidExpression).
  [[nodiscard]] static krel::Message invalidMessage();

 private:
  friend struct detail::ExprAccess;
  explicit Expr(krel::Cow<detail::ExprRep> rep) noexcept;

  krel::Cow<detail::ExprRep> rep_;
};

/// True when both expressions are valid and measure the same quantity, that
/// is, reduce to the same product of base units; false when either is invalid.
[[nodiscard]] bool commensurate(const Expr& a, const Expr& b) noexcept;

}  // namespace units2::core

#endif  // UNITS2_CORE_EXPR_H
