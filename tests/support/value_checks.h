// value_checks.h - one check for equality, ordering and hash of a value type
//
//   expect_consistent(a, b, 1, [](auto& x, auto& y) { return compare(x, y); });
//
// Given two values and their expected three-valued order (0 equal, 1 less,
// 2 greater), checks that ==, !=, the compare function in both directions and
// the hash all agree with it.

#ifndef UI_CORE_TESTS_VALUE_CHECKS_H
#define UI_CORE_TESTS_VALUE_CHECKS_H

#include <gtest/gtest.h>

namespace test_support {

template <class T, class Compare, class Hash>
void expect_consistent(const T& a, const T& b, int expected, Compare compare, Hash hash) {
  const int mirrored = expected == 0 ? 0 : 3 - expected;
  EXPECT_EQ(compare(a, b), expected);
  EXPECT_EQ(compare(b, a), mirrored);
  EXPECT_EQ(a == b, expected == 0);
  EXPECT_EQ(b == a, expected == 0);
  EXPECT_EQ(a != b, expected != 0);
  EXPECT_EQ(compare(a, a), 0);
  EXPECT_TRUE(a == a);
  if (expected == 0) {
    EXPECT_EQ(hash(a), hash(b));
  }
}

}  // namespace test_support

#endif  // UI_CORE_TESTS_VALUE_CHECKS_H
