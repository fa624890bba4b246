#include "units2/core/factors.h"

#include <algorithm>
#include <cassert>

namespace units2::core {
namespace {

// "m", "m^2", "m^(1/2)" for a positive exponent.
void append_power(std::string& out, const UnitId& id, const Exponent& exponent) {
  out.append(id.view());
  if (exponent.isOne()) return;
  out += '^';
  if (exponent.isInteger()) {
    out += to_string(exponent);
  } else {
    out += '(' + to_string(exponent) + ')';
  }
}

}  // namespace

Factors::Factors(const UnitId& id, const Exponent& exponent) {
  if (!exponent.isZero()) items_.emplace_back(id, exponent);
}

std::optional<UnitId> Factors::singleton() const {
  if (items_.size() == 1 && items_.front().second.isOne()) return items_.front().first;
  return std::nullopt;
}

Exponent Factors::exponent(const UnitId& id) const {
  const auto it =
      std::lower_bound(items_.begin(), items_.end(), id,
                       [](const value_type& item, const UnitId& key) { return item.first < key; });
  return it != items_.end() && it->first == id ? it->second : Exponent();
}

void Factors::multiply(const Factors& other, bool divide) {
  // Both sides are sorted: merge them, adding exponents of equal ids. The
  // result is built aside, so an exponent overflow leaves *this unchanged.
  std::vector<value_type> merged;
  merged.reserve(items_.size() + other.items_.size());
  auto a = items_.begin();
  auto b = other.items_.begin();
  while (a != items_.end() || b != other.items_.end()) {
    if (b == other.items_.end() || (a != items_.end() && a->first < b->first)) {
      merged.push_back(*a++);
    } else if (a == items_.end() || b->first < a->first) {
      merged.emplace_back(b->first, divide ? -b->second : b->second);
      ++b;
    } else {
      const Exponent sum = divide ? a->second - b->second : a->second + b->second;
      if (!sum.isZero()) merged.emplace_back(a->first, sum);
      ++a;
      ++b;
    }
  }
  items_ = std::move(merged);
  assert(invariant());
}

Factors& Factors::operator*=(const Factors& other) {
  multiply(other, false);
  return *this;
}

Factors& Factors::operator/=(const Factors& other) {
  multiply(other, true);
  return *this;
}

Factors Factors::pow(const Exponent& power) const {
  Factors out;
  if (power.isZero()) return out;
  out.items_.reserve(items_.size());
  for (const auto& [id, exponent] : items_) out.items_.emplace_back(id, exponent * power);
  return out;
}

bool Factors::invariant() const noexcept {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].second.isZero()) return false;
    if (i > 0 && !(items_[i - 1].first < items_[i].first)) return false;
  }
  return true;
}

RawExpr::operator krel::ustring() const {
  return krel::ustring(text_.begin(), text_.end());
}

RawExpr to_raw_expr(const Factors& factors) {
  std::string numerator;
  std::string denominator;
  std::size_t below = 0;
  for (const auto& [id, exponent] : factors) {
    if (exponent.isNegative()) {
      if (below++ > 0) denominator += '*';
      append_power(denominator, id, -exponent);
    } else {
      if (!numerator.empty()) numerator += '*';
      append_power(numerator, id, exponent);
    }
  }
  if (numerator.empty()) numerator.push_back('1');
  if (below == 0) return RawExpr(std::move(numerator));
  // Built by appending: g++ 12 warns (-Wrestrict, a false positive) about
  // the inlined copies of `"literal" + string` and of assigning a literal.
  numerator += '/';
  if (below > 1) numerator += '(';
  numerator += denominator;
  if (below > 1) numerator += ')';
  return RawExpr(std::move(numerator));
}

}  // namespace units2::core
