// units2/core/expr.h - unit expressions
//
// An Expr is a unit expression such as "kg*m^2/s^2" resolved against a unit
// Context (the unit database). Text that does not parse, names a unit the
// context does not know, or breaks the offset rule below gives an expression
// whose isValid() is false; constructing an Expr never throws for bad input.
//
// Grammar (blanks and tabs may separate tokens):
//
//   expr     := term { ("*" | "/") term }       products and quotients, from the left
//   term     := primary [ "^" exponent ]
//   primary  := unit-id | "1" | "(" expr ")"
//   exponent := integer | "(" integer [ "/" digits ] ")"
//   integer  := [ "+" | "-" ] digits            at most 18 digits
//   unit-id  := (letter | "_") { letter | digit | "_" }    ASCII only
//
// Operators are read from the left, so "J/kg/K" is J/(kg*K) and "m/s*kg" is
// m*kg/s. A unit is raised to at most one written power: "m^2^3" is refused,
// "(m^2)^3" is m^6. The exponent's denominator may not be 0, and parentheses
// nest at most 200 deep.
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
//   units2::core::Expr(u"kg**m").isValid();                  // false

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
  /// every unit is known and the offset rule holds.
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
  /// OffsetUnitNotAlone, ...); nothing when it is valid.
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
