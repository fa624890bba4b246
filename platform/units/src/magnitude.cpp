#include "units2/core/magnitude.h"

#include <cassert>
#include <cmath>
#include <numbers>
#include <utility>

#include "messages.h"

namespace units2::core {
namespace {

using boost::multiprecision::cpp_int;

// Bases larger than this are not searched for perfect powers. Such a base
// then keeps a root that might be rational, so a conversion through it is
// refused rather than computed; database factors are far smaller.
constexpr unsigned max_perfect_power_bits = 512;

unsigned bits(const cpp_int& positive) {
  return positive == 0 ? 0u : static_cast<unsigned>(boost::multiprecision::msb(positive)) + 1u;
}

unsigned bits(const ConversionRational& r) {
  return bits(cpp_int(abs(r.numerator()))) + bits(r.denominator());
}

// floor(n^(1/k)) for n >= 0, k >= 1, by Newton's iteration from above.
cpp_int integer_root(const cpp_int& n, unsigned k) {
  if (n < 2 || k == 1) return n;
  cpp_int x = cpp_int(1) << ((bits(n) + k - 1) / k);  // x^k >= n
  while (true) {
    const cpp_int y = ((k - 1) * x + n / boost::multiprecision::pow(x, k - 1)) / k;
    if (y >= x) return x;
    x = y;
  }
}

bool exact_root(const cpp_int& n, unsigned k, cpp_int& root) {
  root = integer_root(n, k);
  return boost::multiprecision::pow(root, k) == n;
}

// (c, k) with base = c^k and k as large as possible, for base > 0.
std::pair<ConversionRational, unsigned> perfect_power(const ConversionRational& base) {
  const cpp_int& num = base.numerator();
  const cpp_int& den = base.denominator();
  const unsigned size = std::max(bits(num), bits(den));
  if (size <= max_perfect_power_bits) {
    for (unsigned k = size; k >= 2; --k) {
      cpp_int n_root;
      cpp_int d_root;
      if (exact_root(num, k, n_root) && exact_root(den, k, d_root)) {
        return {ConversionRational(n_root, d_root), k};
      }
    }
  }
  return {base, 1};
}

void check_size(const ConversionRational& r) {
  if (bits(r) > Magnitude::max_bits) detail::throw_error(detail::MessageId::FactorTooLarge);
}

// base^n, exactly. Throws FactorTooLarge, before computing, when the result
// is certain to exceed Magnitude::max_bits: x^n has at least n*(bits(x)-1)+1
// bits, and for base != 1 numerator and denominator together lose at least
// one bit per factor, so the work done is bounded by a few times max_bits.
ConversionRational integer_power(const ConversionRational& base, ExponentValue n) {
  if (n == 0 || base.isOne()) return ConversionRational(1);
  const unsigned long long magnitude =
      n < 0 ? 0ull - static_cast<unsigned long long>(n) : static_cast<unsigned long long>(n);
  const unsigned long long growth = bits(base) - 2ull;  // >= 1 for base != 1
  if (magnitude > Magnitude::max_bits / growth)
    detail::throw_error(detail::MessageId::FactorTooLarge);
  const auto e = static_cast<unsigned>(magnitude);
  ConversionRational out(cpp_int(boost::multiprecision::pow(base.numerator(), e)),
                         cpp_int(boost::multiprecision::pow(base.denominator(), e)));
  check_size(out);
  return n < 0 ? out.reciprocal() : out;
}

// The member Magnitude::to_string hides the rationals' to_string, which is
// found only by argument-dependent lookup; this name is not hidden.
std::string text(const ConversionRational& r) {
  return to_string(r);
}

// "(text)". Appended piece by piece: g++ 12 warns (-Wrestrict, a false
// positive) about the inlined copy in `"(" + text`.
std::string parenthesised(const std::string& text) {
  std::string out;
  out.reserve(text.size() + 2);
  out += '(';
  out += text;
  out += ')';
  return out;
}

std::string base_text(const ConversionRational& base) {
  return base.isInteger() ? to_string(base) : parenthesised(to_string(base));
}

std::string exponent_text(const Exponent& e) {
  return e.isInteger() ? to_string(e) : parenthesised(to_string(e));
}

}  // namespace

Magnitude::Magnitude(const ConversionRational& positive) : rational_(positive) {
  if (positive.isZero() || positive.isNegative()) throw NonFiniteConversionValue{};
  check_size(rational_);
}

Magnitude Magnitude::pi() {
  Magnitude out;
  out.pi_ = Exponent(1);
  return out;
}

void Magnitude::multiply_power(const ConversionRational& base, const Exponent& exponent) {
  if (base.isOne() || exponent.isZero()) return;
  const auto [root, k] = perfect_power(base);
  Exponent total = exponent * Exponent(static_cast<ExponentValue>(k));
  if (const auto it = roots_.find(root); it != roots_.end()) total += it->second;
  const ExponentValue whole = total.floor();
  const Exponent fraction = total - Exponent(whole);
  ConversionRational rational = rational_ * integer_power(root, whole);
  check_size(rational);
  rational_ = std::move(rational);
  if (fraction.isZero()) {
    roots_.erase(root);
  } else {
    roots_[root] = fraction;
  }
  assert(invariant());
}

Magnitude& Magnitude::operator*=(const Magnitude& other) {
  Magnitude out = *this;  // built aside: a throw leaves *this unchanged
  out.rational_ *= other.rational_;
  check_size(out.rational_);
  for (const auto& [base, exponent] : other.roots_) out.multiply_power(base, exponent);
  out.pi_ += other.pi_;
  return *this = std::move(out);
}

Magnitude& Magnitude::operator/=(const Magnitude& other) {
  Magnitude out = *this;
  out.rational_ /= other.rational_;
  check_size(out.rational_);
  for (const auto& [base, exponent] : other.roots_) out.multiply_power(base, -exponent);
  out.pi_ -= other.pi_;
  return *this = std::move(out);
}

Magnitude Magnitude::pow(const Exponent& exponent) const {
  if (exponent.isOne()) return *this;
  Magnitude out;
  out.pi_ = pi_ * exponent;
  if (exponent.isInteger()) {
    out.rational_ = integer_power(rational_, exponent.numerator());
  } else {
    out.multiply_power(rational_, exponent);
  }
  for (const auto& [base, f] : roots_) out.multiply_power(base, f * exponent);
  assert(out.invariant());
  return out;
}

std::string Magnitude::to_string() const {
  std::string out;
  auto append = [&out](const std::string& part) {
    if (!out.empty()) out += '*';
    out += part;
  };
  if (!rational_.isOne() || is_rational()) out = text(rational_);
  for (const auto& [base, exponent] : roots_)
    append(base_text(base) + "^" + exponent_text(exponent));
  if (!pi_.isZero()) append(pi_.isOne() ? std::string("pi") : "pi^" + exponent_text(pi_));
  return out;
}

double Magnitude::to_double() const {
  double value = units2::core::to_double(rational_);
  for (const auto& [base, exponent] : roots_) {
    value *=
        std::pow(units2::core::to_double(base), static_cast<double>(exponent.numerator()) /
                                                    static_cast<double>(exponent.denominator()));
  }
  if (!pi_.isZero()) {
    value *= std::pow(std::numbers::pi, static_cast<double>(pi_.numerator()) /
                                            static_cast<double>(pi_.denominator()));
  }
  return value;
}

bool Magnitude::invariant() const {
  if (rational_.isZero() || rational_.isNegative()) return false;
  for (const auto& [base, exponent] : roots_) {
    if (base.isOne() || base.isZero() || base.isNegative()) return false;
    if (exponent.isZero() || exponent.isNegative() || exponent >= Exponent(1)) return false;
  }
  return true;
}

}  // namespace units2::core
