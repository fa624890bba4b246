#include "units2/core/conversion_value.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

using units2::core::ConversionRational;
using units2::core::ConversionValue;
using units2::core::parse_exact_number;
using units2::core::to_decimal_string;

TEST(ParseExactNumber, ReadsDecimalsExactly) {
  EXPECT_EQ(parse_exact_number("0.0254"), ConversionRational(127, 5000));
  EXPECT_EQ(parse_exact_number("0.45359237"), ConversionRational(45359237, 100000000));
  EXPECT_EQ(parse_exact_number("1e-6"), ConversionRational(1, 1000000));
  EXPECT_EQ(parse_exact_number("1.602176634e-19"),
            ConversionRational(1602176634, ConversionValue("10000000000000000000000000000")));
  EXPECT_EQ(parse_exact_number("273.15"), ConversionRational(5463, 20));
  EXPECT_EQ(parse_exact_number("-3"), ConversionRational(-3));
  EXPECT_EQ(parse_exact_number("1852/3600"), ConversionRational(463, 900));
  EXPECT_EQ(parse_exact_number(".5"), ConversionRational(1, 2));
}

TEST(ParseExactNumber, RefusesOtherText) {
  for (const char* text :
       {"", "-", "1.2.3", "1e", "e5", "1/0", "pi", "1 ", "0x10", "1e99999", "1/-2"}) {
    EXPECT_FALSE(parse_exact_number(text).has_value()) << text;
  }
}

TEST(ToDecimalString, RoundsToTheGivenSignificantDigits) {
  EXPECT_EQ(to_decimal_string(ConversionRational(5, 9)), "0.5555555556");
  EXPECT_EQ(to_decimal_string(ConversionRational(-160, 9)), "-17.77777778");
  EXPECT_EQ(to_decimal_string(ConversionRational(127, 5000)), "0.0254");
  EXPECT_EQ(to_decimal_string(ConversionRational(100000)), "100000");
  EXPECT_EQ(to_decimal_string(ConversionRational(0)), "0");
  EXPECT_EQ(to_decimal_string(ConversionRational(2, 3), 3), "0.667");
  EXPECT_EQ(to_decimal_string(ConversionRational(999999, 1000000), 3), "1");
  EXPECT_EQ(*parse_exact_number(to_decimal_string(*parse_exact_number("1.602176634e-19"))),
            *parse_exact_number("1.602176634e-19"));
  EXPECT_EQ(
      to_decimal_string(ConversionRational(ConversionValue("1000000000000000000000000000000"))),
      "1e30");
}

TEST(ToDouble, ApproximatesTheValue) {
  EXPECT_DOUBLE_EQ(units2::core::to_double(ConversionRational(1, 3)), 1.0 / 3.0);
}

// A locale whose numbers use a decimal comma must not cut the value at '.'.
TEST(ToDouble, IgnoresTheNumericLocale) {
  const std::string old = std::setlocale(LC_NUMERIC, nullptr);
  if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "no de_DE.UTF-8 locale";
  const double value = units2::core::to_double(ConversionRational(1, 4));
  std::setlocale(LC_NUMERIC, old.c_str());
  EXPECT_EQ(value, 0.25);
}

}  // namespace
