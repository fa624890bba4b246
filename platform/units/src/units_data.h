// units_data.h - the unit database built into the library (private to src/)

#ifndef UNITS2_CORE_SRC_UNITS_DATA_H
#define UNITS2_CORE_SRC_UNITS_DATA_H

#include <string_view>

namespace units2::core::detail {

/// The text of data/units.txt, embedded at build time.
[[nodiscard]] std::string_view builtin_unit_data() noexcept;

/// The name the built-in data goes by in messages.
inline constexpr std::string_view builtin_unit_data_name = "units.txt";

}  // namespace units2::core::detail

#endif  // UNITS2_CORE_SRC_UNITS_DATA_H
