// units2/core/conversion_value.h - the exact numbers of unit conversions
//
// Conversion factors and offsets are rationals over an unbounded integer
// (boost::multiprecision::cpp_int), so no factor of the database, and no power
// or product of them, is ever rounded. This header pulls in the multiprecision
// library; include it only where the numbers themselves are needed.
//
//   units2::core::ConversionRational inch(127, 5000);   // 0.0254 exactly
//   units2::core::to_decimal_string(inch, 3);           // "0.0254"

#ifndef UNITS2_CORE_CONVERSION_VALUE_H
#define UNITS2_CORE_CONVERSION_VALUE_H

#include <optional>
#include <string>
#include <string_view>

#include <boost/multiprecision/cpp_int.hpp>

#include "units2/core/rational.h"

namespace units2::core {

/// The integer type of conversion values: unbounded.
using ConversionValue = boost::multiprecision::cpp_int;

/// Thrown when a conversion value would divide by zero.
class NonFiniteConversionValue : public krel::MessageException {
 public:
  NonFiniteConversionValue();
};

/// An exact conversion factor or offset.
using ConversionRational = FiniteRational<ConversionValue, NonFiniteConversionValue>;

/// A decimal approximation with `digits` significant digits ("0.555555556",
/// "1.602176634e-19"), for display only.
[[nodiscard]] std::string to_decimal_string(const ConversionRational& value, int digits = 10);

/// The approximation as a double, for display and plotting only.
[[nodiscard]] double to_double(const ConversionRational& value);

/// The exact value of a decimal number written as digits with an optional
/// fraction and exponent ("0.0254", "1e-6", "1.602176634e-19", "-3"); also
/// "n/d" with integer parts. Nothing for any other text.
[[nodiscard]] std::optional<ConversionRational> parse_exact_number(std::string_view text);

}  // namespace units2::core

#endif  // UNITS2_CORE_CONVERSION_VALUE_H
