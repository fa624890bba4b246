// units2/core/conversion.h - exact conversions between unit expressions
//
// conversion(from, to, mode) gives the Conversion that turns a value in `from`
// into the same quantity in `to`:  y = linear * x + offset.
//
// ConversionMode::affine (0) treats both sides as points on their scales and
// applies the offsets: 0 degC converts to 273.15 K. ConversionMode::linear (1)
// treats them as differences and ignores the offsets: a step of 1 degC is a
// step of 1 K. Only a single unit with an offset (see expr.h) has one; every
// other expression has offset 0.
//
//   using namespace units2::core;
//   Conversion c = conversion(Expr(u"degF"), Expr(u"degC"), ConversionMode::affine);
//   c.linear();   // 5/9
//   c.offset();   // -160/9
//
// Failures throw krel::MessageException: units2:core:InvalidExpression for an
// invalid side, units2:core:NotCommensurate when the two measure different
// quantities, and units2:core:InexactConversion when the factor is not a
// rational number (rad to deg involves pi; km^(1/2) to m^(1/2) a square root).

#ifndef UNITS2_CORE_CONVERSION_H
#define UNITS2_CORE_CONVERSION_H

#include "units2/core/conversion_value.h"
#include "units2/core/expr.h"

namespace units2::core {

enum class ConversionMode : int {
  affine = 0,  ///< offsets applied
  linear = 1,  ///< offsets ignored
};

/// y = linear * x + offset, exactly.
/// Ownership: a plain value. Threads: like an int.
class Conversion {
 public:
  Conversion(const ConversionRational& linear, const ConversionRational& offset)
      : linear_(linear), offset_(offset) {}

  [[nodiscard]] const ConversionRational& linear() const noexcept { return linear_; }
  [[nodiscard]] const ConversionRational& offset() const noexcept { return offset_; }

  /// The value `x` converted.
  [[nodiscard]] ConversionRational operator()(const ConversionRational& x) const {
    return linear_ * x + offset_;
  }

  friend bool operator==(const Conversion& a, const Conversion& b) = default;

 private:
  ConversionRational linear_;
  ConversionRational offset_;
};

/// The conversion from `from` to `to`; see the top of this file for the modes
/// and the exceptions.
[[nodiscard]] Conversion conversion(const Expr& from, const Expr& to, ConversionMode mode);

}  // namespace units2::core

#endif  // UNITS2_CORE_CONVERSION_H
