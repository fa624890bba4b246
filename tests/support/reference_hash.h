// reference_hash.h - the element hash's combining step, written out for tests
//
// Boost's 64-bit hash_combine (the mixing step of Boost 1.81), written out
// here rather than called, so that a change in how the library combines hashes
// shows up in the tests that compare against it.
//
//   EXPECT_EQ(hash_value(element), test_support::combine(content, kind));

#ifndef UI_CORE_TESTS_REFERENCE_HASH_H
#define UI_CORE_TESTS_REFERENCE_HASH_H

#include <cstdint>

namespace test_support {

/// The 64-bit mixing step.
inline std::uint64_t mix(std::uint64_t x) {
  x ^= x >> 32;
  x *= 0xe9846af9b1a615dULL;
  x ^= x >> 32;
  x *= 0xe9846af9b1a615dULL;
  x ^= x >> 28;
  return x;
}

/// hash_combine(seed, value) for a value whose own hash is `value`.
inline std::uint64_t combine(std::uint64_t seed, std::uint64_t value) {
  return mix(seed + 0x9e3779b9ULL + value);
}

}  // namespace test_support

#endif  // UI_CORE_TESTS_REFERENCE_HASH_H
