// units2/core/factors.h - products of powers of units, and their canonical text
//
// Factors is what a unit expression means once its syntax is gone: each unit
// that appears, with its total exponent. "N*m", "m*N" and "N*m^2/m" are the
// same Factors. to_raw_expr prints Factors in one canonical form:
//
//   - units with positive exponents first, joined by "*", then "/" and the units
//     with negative exponents (in parentheses when there are several);
//   - inside each group units are ordered by the bytes of their ids, so
//     upper-case ids come before lower-case ones;
//   - an exponent other than 1 follows "^": an integer as is (m^2), a fraction
//     in parentheses (m^(1/2));
//   - "1" stands for an empty numerator, and for the empty product.
//
//   Factors f = Factors(UnitId("s"), Exponent(-2)) * Factors(UnitId("kg"), 1) *
//               Factors(UnitId("m"), 2);
//   std::string(to_raw_expr(f).text());  // "kg*m^2/s^2"

#ifndef UNITS2_CORE_FACTORS_H
#define UNITS2_CORE_FACTORS_H

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "krel/ustring.h"
#include "units2/core/rational.h"
#include "units2/core/unit_id.h"

namespace units2::core {

/// A product of units raised to exponents.
///
/// Invariant: every unit appears once, with a non-zero exponent, and the items
/// are ordered by id. The empty product is the pure number 1.
/// Ownership: a plain value. Threads: like an int.
class Factors {
 public:
  using value_type = std::pair<UnitId, Exponent>;
  using const_iterator = std::vector<value_type>::const_iterator;

  /// The empty product.
  Factors() = default;
  /// `id` to the power `exponent`; empty when the exponent is 0.
  Factors(const UnitId& id, const Exponent& exponent);

  /// The unit when the product is exactly one unit to the power 1.
  [[nodiscard]] std::optional<UnitId> singleton() const;

  [[nodiscard]] bool empty() const noexcept { return items_.empty(); }
  [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }
  [[nodiscard]] const_iterator begin() const noexcept { return items_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return items_.end(); }

  /// The exponent of `id` (0 when it does not appear).
  [[nodiscard]] Exponent exponent(const UnitId& id) const;

  /// Exponents add; a unit whose exponent becomes 0 disappears. Throws
  /// NonFiniteExponent when an exponent leaves its range.
  Factors& operator*=(const Factors& other);
  Factors& operator/=(const Factors& other);
  friend Factors operator*(Factors a, const Factors& b) { return a *= b; }
  friend Factors operator/(Factors a, const Factors& b) { return a /= b; }

  /// Every exponent multiplied by `power`; throws NonFiniteExponent on overflow.
  [[nodiscard]] Factors pow(const Exponent& power) const;

  friend bool operator==(const Factors& a, const Factors& b) = default;

 private:
  [[nodiscard]] bool invariant() const noexcept;
  void multiply(const Factors& other, bool divide);

  std::vector<value_type> items_;
};

/// The canonical text of a product of units.
/// Ownership: a plain value. Threads: like an int.
class RawExpr {
 public:
  explicit RawExpr(std::string text) : text_(std::move(text)) {}

  /// The text (ASCII).
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  operator krel::ustring() const;  // NOLINT: converts like text does

  friend bool operator==(const RawExpr& a, const RawExpr& b) = default;

 private:
  std::string text_;
};

/// The canonical text of `factors`, as described at the top of this file.
[[nodiscard]] RawExpr to_raw_expr(const Factors& factors);

}  // namespace units2::core

#endif  // UNITS2_CORE_FACTORS_H
