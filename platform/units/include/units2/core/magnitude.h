// units2/core/magnitude.h - exact positive scale factors, including roots and pi
//
// The scale of a unit relative to its base units is usually a rational (an inch
// is 127/5000 m), but not always: a degree is pi/180 rad, and km^(1/2) is
// 1000^(1/2) m^(1/2). A Magnitude holds such a number exactly, as
//
//   rational * b1^f1 * b2^f2 * ... * pi^k
//
// where each base b is a positive rational that is not a perfect power and not
// 1, each exponent f lies strictly between 0 and 1, and k is any rational. In
// that form a Magnitude with no roots and no power of pi is exactly its
// rational part, and one with roots is never a rational number. (Roots of
// different bases are not combined: 2^(1/2)*18^(1/2), which is 6, reads as not
// rational. Conversions then refuse instead of rounding.)
//
//   Magnitude deg = Magnitude(ConversionRational(1, 180)) * Magnitude::pi();
//   (Magnitude(2) * Magnitude::pi() / deg).rational_part();   // 360: a turn in degrees

#ifndef UNITS2_CORE_MAGNITUDE_H
#define UNITS2_CORE_MAGNITUDE_H

#include <map>
#include <string>

#include "units2/core/conversion_value.h"

namespace units2::core {

/// An exact positive real number of the form described above.
///
/// Invariant: rational part > 0; every root base > 0, != 1 and not a perfect
/// power; every root exponent in (0, 1).
/// Ownership: a plain value. Threads: like an int.
class Magnitude {
 public:
  /// Largest size, in bits, of the numerator plus the denominator of the
  /// rational part. A power that would exceed it throws
  /// krel::MessageException units2:core:FactorTooLarge instead of computing
  /// a number of unbounded size.
  static constexpr unsigned max_bits = 65536;

  /// 1.
  Magnitude() = default;
  /// A positive rational; throws NonFiniteConversionValue for zero or less.
  explicit Magnitude(const ConversionRational& positive);
  /// pi.
  [[nodiscard]] static Magnitude pi();

  /// True when the number is rational (no roots, no power of pi).
  [[nodiscard]] bool is_rational() const noexcept { return roots_.empty() && pi_.isZero(); }
  [[nodiscard]] const ConversionRational& rational_part() const noexcept { return rational_; }
  [[nodiscard]] const std::map<ConversionRational, Exponent>& roots() const noexcept {
    return roots_;
  }
  [[nodiscard]] const Exponent& pi_exponent() const noexcept { return pi_; }

  Magnitude& operator*=(const Magnitude& other);
  Magnitude& operator/=(const Magnitude& other);
  friend Magnitude operator*(Magnitude a, const Magnitude& b) { return a *= b; }
  friend Magnitude operator/(Magnitude a, const Magnitude& b) { return a /= b; }

  /// The number to the power `exponent`.
  [[nodiscard]] Magnitude pow(const Exponent& exponent) const;

  /// Exact text: "127/5000", "1/180*pi", "10^(1/2)", "1/30*pi".
  [[nodiscard]] std::string to_string() const;
  /// An approximation, for display only.
  [[nodiscard]] double to_double() const;

  friend bool operator==(const Magnitude& a, const Magnitude& b) = default;

 private:
  [[nodiscard]] bool invariant() const;
  // Multiplies by base^exponent, keeping the form described above.
  void multiply_power(const ConversionRational& base, const Exponent& exponent);

  ConversionRational rational_{1};
  std::map<ConversionRational, Exponent> roots_;
  Exponent pi_;
};

}  // namespace units2::core

#endif  // UNITS2_CORE_MAGNITUDE_H
