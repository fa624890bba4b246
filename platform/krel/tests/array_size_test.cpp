#include "krel/array_size.h"

#include <gtest/gtest.h>

#include <limits>

#include "value_checks.h"

namespace {

using krel::ArraySize;

TEST(ArraySize, ConstructorsStoreDimensionsInOrder) {
  const std::size_t values[] = {2, 3, 4, 5, 6};
  ArraySize a(values, 5);
  ASSERT_EQ(a.size(), 5u);
  for (std::size_t k = 0; k < 5; ++k) EXPECT_EQ(a(k), values[k]);
  ArraySize b(7, 8);
  EXPECT_EQ(b.size(), 2u);
  EXPECT_EQ(b(0), 7u);
  EXPECT_EQ(b(1), 8u);
  EXPECT_EQ(ArraySize().size(), 0u);
  EXPECT_EQ((ArraySize{1}).size(), 1u);
}

TEST(ArraySize, PositionsPastTheStoredOnesReadAsOne) {
  ArraySize a{5};
  EXPECT_EQ(a(0), 5u);
  EXPECT_EQ(a(1), 1u);
  EXPECT_EQ(a(100), 1u);
  EXPECT_EQ(ArraySize()(0), 1u);
}

TEST(ArraySize, NumElementsIsTheProduct) {
  EXPECT_EQ((ArraySize{2, 3, 4}).numElements(), 24u);
  EXPECT_EQ(ArraySize().numElements(), 1u);
  EXPECT_EQ((ArraySize{3, 0, 2}).numElements(), 0u);
}

TEST(ArraySize, NumElementsSaturatesInsteadOfWrappingToZero) {
  const std::size_t big = std::size_t(1) << 32;
  EXPECT_EQ((ArraySize{big, big}).numElements(), std::numeric_limits<std::size_t>::max());
  EXPECT_EQ((ArraySize{big, big, 0}).numElements(), 0u);
}

TEST(ArraySize, TrailingOnesCompareEqual) {
  EXPECT_TRUE((ArraySize{1}) == (ArraySize{1, 1}));
  EXPECT_TRUE((ArraySize{5}) == (ArraySize{5, 1}));
  EXPECT_TRUE(ArraySize() == (ArraySize{1}));
  EXPECT_FALSE((ArraySize{5}) == (ArraySize{1, 5}));
  EXPECT_FALSE((ArraySize{2, 3}) == (ArraySize{3, 2}));
}

TEST(ArraySize, CompareHashAndEqualityAgree) {
  auto cmp = [](const ArraySize& a, const ArraySize& b) { return krel::compare(a, b); };
  auto hash = [](const ArraySize& a) { return krel::hash_value(a); };
  test_support::expect_consistent(ArraySize{5}, ArraySize{5, 1, 1}, 0, cmp, hash);
  test_support::expect_consistent(ArraySize(), ArraySize{1, 1}, 0, cmp, hash);
  test_support::expect_consistent(ArraySize{2, 3}, ArraySize{2, 4}, 1, cmp, hash);
  test_support::expect_consistent(ArraySize{3}, ArraySize{2, 9}, 2, cmp, hash);
  test_support::expect_consistent(ArraySize{2}, ArraySize{2, 2}, 1, cmp, hash);
  test_support::expect_consistent(ArraySize{2, 0}, ArraySize{2}, 1, cmp, hash);
}

TEST(ArraySize, UserStringJoinsWithX) {
  EXPECT_EQ(krel::to_user_string(ArraySize{2, 3}), u"2x3");
  EXPECT_EQ(krel::to_user_string(ArraySize{2, 3, 4}), u"2x3x4");
  EXPECT_EQ(krel::to_user_string(ArraySize{7}), u"7");
  EXPECT_EQ(krel::to_user_string(ArraySize()), u"1x1");
}

TEST(ArraySize, CopiesAreIndependent) {
  ArraySize a{1, 2, 3, 4, 5, 6};
  ArraySize b = a;
  a = ArraySize{9};
  EXPECT_EQ(b.size(), 6u);
  EXPECT_EQ(b(5), 6u);
}

}  // namespace
