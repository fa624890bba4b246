// units2/core/rational.h - exact rational numbers that never overflow silently
//
// FiniteRational<Int, NonFinite> is a boost::rational<Int> that is always a
// finite number in lowest terms with a positive denominator. Any operation
// whose exact result it cannot hold - a zero denominator, a division by zero,
// or (for a built-in Int) a numerator or denominator that leaves the range of
// Int - throws NonFinite, an exception type derived from
// krel::MessageException. Nothing is ever rounded or wrapped around.
//
// Exponent is the instance used for the powers of units in an expression:
//
//   units2::core::Exponent half(1, 2);
//   (half + half).isOne();                        // true
//   units2::core::Exponent(1, 0);                 // throws NonFiniteExponent
//   units2::core::Exponent(INT64_MAX) + 1;        // throws NonFiniteExponent

#ifndef UNITS2_CORE_RATIONAL_H
#define UNITS2_CORE_RATIONAL_H

#include <concepts>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>

#include <boost/integer/common_factor_rt.hpp>
#include <boost/rational.hpp>

#include "krel/message.h"

namespace units2::core {

namespace detail {

// For a built-in integer type the helpers below throw on overflow; for an
// unbounded integer type (such as boost::multiprecision::cpp_int) they are the
// plain operations.
template <class NonFinite, class Int>
Int checked_add(const Int& a, const Int& b) {
  if constexpr (std::is_integral_v<Int>) {
    Int out{};
    if (__builtin_add_overflow(a, b, &out)) throw NonFinite{};
    return out;
  } else {
    return a + b;
  }
}

template <class NonFinite, class Int>
Int checked_sub(const Int& a, const Int& b) {
  if constexpr (std::is_integral_v<Int>) {
    Int out{};
    if (__builtin_sub_overflow(a, b, &out)) throw NonFinite{};
    return out;
  } else {
    return a - b;
  }
}

template <class NonFinite, class Int>
Int checked_mul(const Int& a, const Int& b) {
  if constexpr (std::is_integral_v<Int>) {
    Int out{};
    if (__builtin_mul_overflow(a, b, &out)) throw NonFinite{};
    return out;
  } else {
    return a * b;
  }
}

template <class Int>
std::string integer_text(const Int& value) {
  if constexpr (std::is_integral_v<Int>) {
    return std::to_string(value);
  } else {
    return value.str();
  }
}

}  // namespace detail

/// An exact, finite rational number over the integer type Int.
///
/// Invariant: the value is in lowest terms, the denominator is positive, and
/// for a built-in Int neither part is std::numeric_limits<Int>::min(), so that
/// negation and normalisation never overflow.
/// Ownership: a plain value. Threads: like an int.
template <class Int, class NonFinite>
class FiniteRational {
 public:
  using int_type = Int;
  using rational_type = boost::rational<Int>;

  /// Zero.
  FiniteRational() = default;

  /// The integer `value`.
  template <std::integral I>
  FiniteRational(I value) : FiniteRational(Int(value), Int(1)) {}      // NOLINT: implicit by design
  FiniteRational(const Int& value) : FiniteRational(value, Int(1)) {}  // NOLINT

  /// numerator / denominator, reduced; throws NonFinite when the denominator is 0.
  FiniteRational(const Int& numerator, const Int& denominator) {
    if (denominator == Int(0) || is_lowest(numerator) || is_lowest(denominator)) throw NonFinite{};
    value_ = rational_type(numerator, denominator);
  }

  explicit FiniteRational(const rational_type& value)
      : FiniteRational(value.numerator(), value.denominator()) {}

  [[nodiscard]] const Int& numerator() const noexcept { return value_.numerator(); }
  [[nodiscard]] const Int& denominator() const noexcept { return value_.denominator(); }
  [[nodiscard]] const rational_type& value() const noexcept { return value_; }

  [[nodiscard]] bool isOne() const noexcept {
    return numerator() == Int(1) && denominator() == Int(1);
  }
  [[nodiscard]] bool isZero() const noexcept { return numerator() == Int(0); }
  [[nodiscard]] bool isInteger() const noexcept { return denominator() == Int(1); }
  [[nodiscard]] bool isNegative() const noexcept { return numerator() < Int(0); }

  /// The largest integer not greater than the value.
  [[nodiscard]] Int floor() const {
    Int q = numerator() / denominator();  // rounds toward zero
    if (numerator() < Int(0) && q * denominator() != numerator()) q = q - Int(1);
    return q;
  }

  FiniteRational operator-() const {
    return FiniteRational(Int(-numerator()), denominator(), reduced_tag{});
  }

  friend FiniteRational operator+(const FiniteRational& a, const FiniteRational& b) {
    // a/b + c/d over the least common denominator keeps the intermediates small.
    const Int g = boost::integer::gcd(a.denominator(), b.denominator());
    const Int n = detail::checked_add<NonFinite>(
        detail::checked_mul<NonFinite>(a.numerator(), Int(b.denominator() / g)),
        detail::checked_mul<NonFinite>(b.numerator(), Int(a.denominator() / g)));
    const Int d = detail::checked_mul<NonFinite>(a.denominator(), Int(b.denominator() / g));
    return FiniteRational(n, d);
  }
  friend FiniteRational operator-(const FiniteRational& a, const FiniteRational& b) {
    return a + (-b);
  }
  friend FiniteRational operator*(const FiniteRational& a, const FiniteRational& b) {
    // Cross-cancelling first keeps a product that fits from overflowing on the way.
    const Int g1 = boost::integer::gcd(a.numerator(), b.denominator());
    const Int g2 = boost::integer::gcd(b.numerator(), a.denominator());
    const Int n = detail::checked_mul<NonFinite>(Int(a.numerator() / g1), Int(b.numerator() / g2));
    const Int d =
        detail::checked_mul<NonFinite>(Int(a.denominator() / g2), Int(b.denominator() / g1));
    return FiniteRational(n, d);
  }
  /// Throws NonFinite when b is zero.
  friend FiniteRational operator/(const FiniteRational& a, const FiniteRational& b) {
    if (b.isZero()) throw NonFinite{};
    return a * b.reciprocal();
  }
  FiniteRational& operator+=(const FiniteRational& b) { return *this = *this + b; }
  FiniteRational& operator-=(const FiniteRational& b) { return *this = *this - b; }
  FiniteRational& operator*=(const FiniteRational& b) { return *this = *this * b; }
  FiniteRational& operator/=(const FiniteRational& b) { return *this = *this / b; }

  /// 1 / value; throws NonFinite for zero.
  [[nodiscard]] FiniteRational reciprocal() const {
    if (isZero()) throw NonFinite{};
    return numerator() < Int(0)
               ? FiniteRational(Int(-denominator()), Int(-numerator()), reduced_tag{})
               : FiniteRational(denominator(), numerator(), reduced_tag{});
  }

  friend bool operator==(const FiniteRational& a, const FiniteRational& b) noexcept {
    return a.numerator() == b.numerator() && a.denominator() == b.denominator();
  }
  friend bool operator<(const FiniteRational& a, const FiniteRational& b) {
    return a.value_ < b.value_;
  }
  friend bool operator>(const FiniteRational& a, const FiniteRational& b) { return b < a; }
  friend bool operator<=(const FiniteRational& a, const FiniteRational& b) { return !(b < a); }
  friend bool operator>=(const FiniteRational& a, const FiniteRational& b) { return !(a < b); }

  /// "n" for an integer, "n/d" otherwise.
  friend std::string to_string(const FiniteRational& r) {
    std::string out = detail::integer_text(r.numerator());
    if (!r.isInteger()) {
      out += '/';
      out += detail::integer_text(r.denominator());
    }
    return out;
  }
  friend std::ostream& operator<<(std::ostream& os, const FiniteRational& r) {
    return os << to_string(r);
  }

 private:
  struct reduced_tag {};
  // Parts already in lowest terms with a positive denominator.
  FiniteRational(const Int& n, const Int& d, reduced_tag) : value_(n, d) {}

  static bool is_lowest(const Int& v) noexcept {
    if constexpr (std::is_integral_v<Int>) {
      return v == std::numeric_limits<Int>::min();
    } else {
      return false;
    }
  }

  rational_type value_;
};

/// Thrown when an exponent would not be a finite rational that fits in 64 bits.
class NonFiniteExponent : public krel::MessageException {
 public:
  NonFiniteExponent();
};

/// The integer type of exponents.
using ExponentValue = std::int64_t;

/// The power of a unit in an expression: m^2, s^-1, m^(1/2).
using Exponent = FiniteRational<ExponentValue, NonFiniteExponent>;

}  // namespace units2::core

#endif  // UNITS2_CORE_RATIONAL_H
