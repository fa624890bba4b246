// The hashes of the kernel's value types (private to the library's sources).
//
// Every hash is built from two pieces: a hash of a run of code units, and
// boost::hash_combine to fold the hashes of a sequence's parts into one, so
// that a sequence hashes as Boost hashes a range of its parts.

#ifndef UI_CORE_SRC_COMMON_HASH_IMPL_H
#define UI_CORE_SRC_COMMON_HASH_IMPL_H

#include <cstddef>
#include <functional>
#include <string_view>

#include <boost/container_hash/hash.hpp>

namespace ui::core::detail {

/// boost::hash_combine: on a 64-bit size_t, mix(seed + 0x9e3779b9 + value)
/// with Boost's 64-bit mix. Object path element hashes are defined by it.
[[nodiscard]] inline std::size_t combine(std::size_t seed, std::size_t value) noexcept {
  boost::hash_combine(seed, value);
  return seed;
}

/// The combined hashes of a sequence's parts, first to last, from a seed of 0:
/// the value boost::hash_range gives for the same parts.
template <class It, class Hash>
[[nodiscard]] std::size_t combine_all(It first, It last, Hash hash) {
  std::size_t seed = 0;
  for (; first != last; ++first) seed = combine(seed, hash(*first));
  return seed;
}

/// A hash of the n code units at p, all bytes taken at once (the standard
/// library's string hash).
[[nodiscard]] inline std::size_t hash_units(const char16_t* p, std::size_t n) noexcept {
  return std::hash<std::u16string_view>{}(std::u16string_view(p, n));
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_COMMON_HASH_IMPL_H
