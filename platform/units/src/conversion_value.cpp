#include "units2/core/conversion_value.h"

#include <charconv>
#include <cstdlib>

#include "messages.h"

namespace units2::core {
namespace {

using boost::multiprecision::cpp_int;

// Largest decimal exponent accepted in written numbers: far beyond any
// physical constant, small enough that 10^e stays cheap.
constexpr int max_written_exponent = 1000;

cpp_int power_of_ten(unsigned exponent) {
  return boost::multiprecision::pow(cpp_int(10), exponent);
}

// cpp_int reads a leading "0" as an octal prefix, so decimal digits are
// handed over without leading zeros.
cpp_int from_decimal_digits(std::string_view digits) {
  const auto first = digits.find_first_not_of('0');
  return first == std::string_view::npos ? cpp_int(0) : cpp_int(std::string(digits.substr(first)));
}

std::size_t digit_count(const cpp_int& positive) {
  return positive.str().size();
}

bool all_digits(std::string_view text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

std::optional<ConversionRational> parse_decimal(std::string_view text) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int exponent = 0;
  if (const auto e = text.find_first_of("eE"); e != std::string_view::npos) {
    std::string_view exp_text = text.substr(e + 1);
    text = text.substr(0, e);
    bool exp_negative = false;
    if (!exp_text.empty() && (exp_text.front() == '-' || exp_text.front() == '+')) {
      exp_negative = exp_text.front() == '-';
      exp_text.remove_prefix(1);
    }
    if (!all_digits(exp_text) || exp_text.size() > 4) return std::nullopt;
    exponent = std::atoi(std::string(exp_text).c_str());
    if (exponent > max_written_exponent) return std::nullopt;
    if (exp_negative) exponent = -exponent;
  }
  std::string digits;
  if (const auto dot = text.find('.'); dot != std::string_view::npos) {
    const std::string_view whole = text.substr(0, dot);
    const std::string_view fraction = text.substr(dot + 1);
    if ((!whole.empty() && !all_digits(whole)) || !all_digits(fraction)) return std::nullopt;
    if (fraction.size() > static_cast<std::size_t>(max_written_exponent)) return std::nullopt;
    digits = std::string(whole) + std::string(fraction);
    exponent -= static_cast<int>(fraction.size());
  } else {
    if (!all_digits(text)) return std::nullopt;
    digits = std::string(text);
  }
  cpp_int value = from_decimal_digits(digits);
  if (negative) value = -value;
  if (exponent >= 0)
    return ConversionRational(value * power_of_ten(static_cast<unsigned>(exponent)));
  return ConversionRational(value, power_of_ten(static_cast<unsigned>(-exponent)));
}

}  // namespace

NonFiniteConversionValue::NonFiniteConversionValue()
    : krel::MessageException(
          krel::Message(detail::make_error(detail::MessageId::NonFiniteConversionValue))) {}

std::optional<ConversionRational> parse_exact_number(std::string_view text) {
  if (const auto slash = text.find('/'); slash != std::string_view::npos) {
    std::string_view num = text.substr(0, slash);
    const std::string_view den = text.substr(slash + 1);
    bool negative = false;
    if (!num.empty() && (num.front() == '-' || num.front() == '+')) {
      negative = num.front() == '-';
      num.remove_prefix(1);
    }
    if (!all_digits(num) || !all_digits(den)) return std::nullopt;
    const cpp_int d = from_decimal_digits(den);
    if (d == 0) return std::nullopt;
    cpp_int n = from_decimal_digits(num);
    if (negative) n = -n;
    return ConversionRational(n, d);
  }
  return parse_decimal(text);
}

std::string to_decimal_string(const ConversionRational& value, int digits) {
  if (digits < 1) digits = 1;
  if (value.isZero()) return "0";
  const bool negative = value.isNegative();
  const cpp_int num = negative ? cpp_int(-value.numerator()) : value.numerator();
  const cpp_int& den = value.denominator();

  // e = floor(log10(num/den)): start from the digit counts, then correct by one.
  long e = static_cast<long>(digit_count(num)) - static_cast<long>(digit_count(den));
  auto at_least_ten_pow = [&](long k) {  // num/den >= 10^k
    return k >= 0 ? num >= den * power_of_ten(static_cast<unsigned>(k))
                  : num * power_of_ten(static_cast<unsigned>(-k)) >= den;
  };
  if (!at_least_ten_pow(e)) --e;

  // mantissa = round(num/den * 10^(digits-1-e)), half away from zero.
  const long shift = digits - 1 - e;
  cpp_int scaled_num = num;
  cpp_int scaled_den = den;
  if (shift >= 0) {
    scaled_num *= power_of_ten(static_cast<unsigned>(shift));
  } else {
    scaled_den *= power_of_ten(static_cast<unsigned>(-shift));
  }
  cpp_int mantissa = (2 * scaled_num + scaled_den) / (2 * scaled_den);
  if (mantissa == power_of_ten(static_cast<unsigned>(digits))) {
    mantissa /= 10;
    ++e;
  }

  std::string m = mantissa.str();  // exactly `digits` digits
  std::string out;
  if (e >= -5 && e < digits) {
    if (e >= 0) {
      out = m.substr(0, static_cast<std::size_t>(e) + 1);
      std::string fraction = m.substr(static_cast<std::size_t>(e) + 1);
      while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
      if (!fraction.empty()) out += "." + fraction;
    } else {
      std::string fraction = std::string(static_cast<std::size_t>(-e - 1), '0') + m;
      while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
      out = "0." + fraction;
    }
  } else {
    std::string fraction = m.substr(1);
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    out = m.substr(0, 1) + (fraction.empty() ? "" : "." + fraction) + "e" + std::to_string(e);
  }
  return negative ? "-" + out : out;
}

double to_double(const ConversionRational& value) {
  // from_chars reads the "C" form whatever the process's locale is (strtod
  // would stop at the '.' under a locale with a decimal comma).
  const std::string text = to_decimal_string(value, 17);
  double result = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), result);
  return result;
}

}  // namespace units2::core
