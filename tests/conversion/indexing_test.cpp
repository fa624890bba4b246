#include "ui/core/indexing.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <random>
#include <vector>

#include "expect_error.h"

namespace {

using namespace ui::core;
using lang::core::PathElementIndex;
using test_support::Argument;
using test_support::text_arg;
using test_support::throws_error;

ObjectPathSubscript sub(std::vector<unsigned long> values) {
  return ObjectPathSubscript(values);
}

ustring text(const ObjectPathSubscript& s) {
  return static_cast<ustring>(s);
}

// The result of the throwing form as an optional, so the two forms can be
// compared case by case.
std::optional<PathElementIndex> throwing_form(const ObjectPathSubscript& s,
                                              const krel::ArraySize& size) {
  try {
    return sub_to_ind(s, size);
  } catch (const krel::MessageException&) {
    return std::nullopt;
  }
}

TEST(CheckArray, MatchingCountReturnsTheSizeUnchanged) {
  const krel::ArraySize size = detail::check_array(krel::ArraySize{2, 3}, 6);
  ASSERT_EQ(size.size(), 2u);
  EXPECT_EQ(size(0), 2u);
  EXPECT_EQ(size(1), 3u);
  EXPECT_EQ(detail::check_array(krel::ArraySize{0, 3}, 0), (krel::ArraySize{0, 3}));
  EXPECT_EQ(detail::check_array(krel::ArraySize{}, 1), krel::ArraySize{});
}

TEST(CheckArray, OtherCountThrowsInvalidArrayArgumentsWithCountAndSizeText) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)detail::check_array(krel::ArraySize{2, 3}, 5);
      },
      ErrorId::InvalidArrayArguments, {Argument(std::in_place_index<0>, 5u), text_arg(u"2x3")}));
  EXPECT_TRUE(throws_error(
      [] {
        (void)detail::check_array(krel::ArraySize{2, 3}, 7);
      },
      ErrorId::InvalidArrayArguments, {Argument(std::in_place_index<0>, 7u), text_arg(u"2x3")}));
}

TEST(SubToInd, MatrixIndexIsColumnMajor) {
  const PathElementIndex index = sub_to_ind(sub({2, 3}), krel::ArraySize{3, 4});
  EXPECT_EQ(index.index(), 7u);
  ASSERT_EQ(index.size().size(), 2u);
  EXPECT_EQ(index.size(), (krel::ArraySize{3, 4}));
  EXPECT_EQ(sub_to_ind(sub({1, 1}), krel::ArraySize{3, 4}).index(), 0u);
  EXPECT_EQ(sub_to_ind(sub({3, 1}), krel::ArraySize{3, 4}).index(), 2u);
  EXPECT_EQ(sub_to_ind(sub({1, 2}), krel::ArraySize{3, 4}).index(), 3u);
}

TEST(SubToInd, LastElementOfThreeDimensions) {
  EXPECT_EQ(sub_to_ind(sub({2, 3, 4}), krel::ArraySize{2, 3, 4}).index(), 23u);
}

TEST(SubToInd, ColumnVectorAcceptsOneSubscriptOrTwo) {
  EXPECT_EQ(sub_to_ind(sub({4}), krel::ArraySize{5, 1}).index(), 3u);
  EXPECT_EQ(sub_to_ind(sub({4, 1}), krel::ArraySize{5, 1}).index(), 3u);
  EXPECT_EQ(sub_to_ind(sub({5}), krel::ArraySize{5, 1}).index(), 4u);
}

TEST(SubToInd, RowVectorNeedsTwoSubscripts) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({4}), krel::ArraySize{1, 5});
      },
      ErrorId::InsufficientSubscriptDimensions, {text_arg(u"//4"), text_arg(u"1x5")}));
  EXPECT_EQ(sub_to_ind(sub({1, 4}), krel::ArraySize{1, 5}).index(), 3u);
}

TEST(SubToInd, TooFewSubscriptsThrowInsufficientSubscriptDimensions) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({2, 3}), krel::ArraySize{2, 3, 4});
      },
      ErrorId::InsufficientSubscriptDimensions, {text_arg(u"//2, 3"), text_arg(u"2x3x4")}));
  // Only the written values show, not the ones read past them.
  EXPECT_TRUE(throws_error([] { (void)sub_to_ind(sub({}), krel::ArraySize{3}); },
                           ErrorId::InsufficientSubscriptDimensions,
                           {text_arg(u"//"), text_arg(u"3")}));
}

TEST(SubToInd, CountIsTestedBeforeRange) {
  // 9 is out of range for the first dimension, but the count fails first.
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({9}), krel::ArraySize{3, 4});
      },
      ErrorId::InsufficientSubscriptDimensions, {text_arg(u"//9"), text_arg(u"3x4")}));
}

TEST(SubToInd, SubscriptEqualToItsDimensionIsInRangeOneMoreIsNot) {
  EXPECT_EQ(sub_to_ind(sub({3, 4}), krel::ArraySize{3, 4}).index(), 11u);
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({4, 1}), krel::ArraySize{3, 4});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//4, 1"), text_arg(u"3x4")}));
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({3, 5}), krel::ArraySize{3, 4});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//3, 5"), text_arg(u"3x4")}));
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({1, 2, 1}), krel::ArraySize{1, 5, 0});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//1, 2, 1"), text_arg(u"1x5x0")}));
}

TEST(SubToInd, ColumnVectorSecondSubscriptIsStillRangeChecked) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({2, 2}), krel::ArraySize{5, 1});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//2, 2"), text_arg(u"5x1")}));
}

TEST(SubToInd, SubscriptsPastTheDimensionsAreIgnored) {
  EXPECT_EQ(sub_to_ind(sub({1, 2, 5}), krel::ArraySize{2, 3}).index(), 2u);
  EXPECT_EQ(sub_to_ind(sub({1, 2, 1}), krel::ArraySize{2, 3}).index(), 2u);
  EXPECT_EQ(sub_to_ind(sub({2, 1, 1000, 7}), krel::ArraySize{2}).index(), 1u);
}

TEST(SubToInd, OneDimensionGivesTheSubscriptLessOne) {
  for (unsigned long s = 1; s <= 6; ++s) {
    EXPECT_EQ(sub_to_ind(sub({s}), krel::ArraySize{6}).index(), s - 1);
  }
  EXPECT_TRUE(throws_error([] { (void)sub_to_ind(sub({7}), krel::ArraySize{6}); },
                           ErrorId::SubscriptOutOfRange, {text_arg(u"//7"), text_arg(u"6")}));
}

TEST(SubToInd, SizeWithoutDimensionsIsOutOfRange) {
  EXPECT_TRUE(throws_error([] { (void)sub_to_ind(sub({1}), krel::ArraySize{}); },
                           ErrorId::SubscriptOutOfRange, {text_arg(u"//1"), text_arg(u"1x1")}));
  EXPECT_FALSE(sub_to_maybe_ind(sub({1}), krel::ArraySize{}).has_value());
}

TEST(SubToInd, LargestSubscriptsOfAFittingArrayDoNotWrap) {
  constexpr std::size_t max = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(sub_to_ind(sub({max}), krel::ArraySize{max}).index(), max - 1);
  EXPECT_EQ(sub_to_ind(sub({2, max / 2}), krel::ArraySize{2, max / 2}).index(), max - 2);
}

TEST(SubToMaybeInd, AgreesWithSubToIndOnEveryExample) {
  struct Case {
    std::vector<unsigned long> values;
    krel::ArraySize size;
  };
  const std::vector<Case> cases = {
      {{2, 3}, {3, 4}},    {{2, 3, 4}, {2, 3, 4}}, {{4}, {5, 1}}, {{4}, {1, 5}},
      {{1, 2, 5}, {2, 3}}, {{4, 1}, {3, 4}},       {{9}, {3, 4}}, {{1}, {}},
      {{}, {3}},           {{2, 2}, {5, 1}},       {{1}, {0}},    {{3, 1}, {3, 0}},
  };
  for (const Case& c : cases) {
    const auto maybe = sub_to_maybe_ind(sub(c.values), c.size);
    EXPECT_EQ(maybe, throwing_form(sub(c.values), c.size))
        << krel::ustring_to_utf8_string(krel::to_user_string(c.size));
  }
  EXPECT_EQ(sub_to_maybe_ind(sub({2, 3}), krel::ArraySize{3, 4})->index(), 7u);
  EXPECT_FALSE(sub_to_maybe_ind(sub({4}), krel::ArraySize{1, 5}).has_value());
  EXPECT_FALSE(sub_to_maybe_ind(sub({4, 1}), krel::ArraySize{3, 4}).has_value());
}

TEST(IndToSub, ExamplesGiveOneSubscriptPerDimension) {
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(7, {3, 4}))), u"//2, 3");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(23, {2, 3, 4}))), u"//2, 3, 4");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(3, {5, 1}))), u"//4, 1");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(3, {1, 5}))), u"//1, 4");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(4, {6}))), u"//5");
}

TEST(IndToSub, IndexZeroGivesAllOnes) {
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(0, {3, 4}))), u"//1, 1");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(0, {2, 3, 4, 5, 6}))), u"//1, 1, 1, 1, 1");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(0, {1}))), u"//1");
}

TEST(IndToSub, IndexPastTheEndGrowsTheLastSubscriptWithoutError) {
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(12, {3, 4}))), u"//1, 5");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(100, {3, 4}))), u"//2, 34");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(9, {5, 1}))), u"//5, 2");
  // The result is then refused by sub_to_ind.
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(ind_to_sub(PathElementIndex(12, {3, 4})), krel::ArraySize{3, 4});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//1, 5"), text_arg(u"3x4")}));
}

TEST(IndToSub, SizeWithoutDimensionsGivesNoSubscripts) {
  const ObjectPathSubscript s = ind_to_sub(PathElementIndex(0, {}));
  EXPECT_EQ(s.size(), 0u);
  EXPECT_EQ(text(s), u"//");
}

TEST(IndToSub, ZeroLengthDimensionBeforeTheLastNeitherHangsNorDivides) {
  // The strides after the zero-length dimension are 0; the index falls to the
  // dimensions up to it, and the result is out of range for the empty array.
  const ObjectPathSubscript s = ind_to_sub(PathElementIndex(5, {2, 0, 3}));
  EXPECT_EQ(text(s), u"//2, 3, 1");
  EXPECT_FALSE(sub_to_maybe_ind(s, krel::ArraySize{2, 0, 3}).has_value());
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(4, {0, 7}))), u"//5, 1");
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(0, {0, 7}))), u"//1, 1");
  // A stride that wraps past size_t to 0 is skipped the same way.
  constexpr std::size_t half = std::size_t{1} << 32;
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(3, {half, half, 2}))), u"//4, 1, 1");
}

TEST(IndToSub, SubscriptPastSixtyFourBitsIsRefusedBySubscript) {
  // The largest index into a 1-D array needs the subscript 2^64, which wraps
  // to 0 and cannot be a subscript.
  EXPECT_TRUE(throws_error(
      [] { (void)ind_to_sub(PathElementIndex(std::numeric_limits<std::size_t>::max(), {2})); },
      ErrorId::InvalidObjectPathSubscript, {}));
  EXPECT_EQ(text(ind_to_sub(PathElementIndex(std::numeric_limits<std::size_t>::max(), {2, 2}))),
            u"//2, 9223372036854775808");
}

TEST(IndToSub, ManyDimensionsWorkLikeFew) {
  // More dimensions than the conversion keeps on the stack, with a zero-length
  // one among them, and the round trip through sub_to_ind.
  for (std::size_t dims : {15u, 16u, 17u, 40u}) {
    std::vector<std::size_t> lengths(dims, 2);
    const krel::ArraySize size(lengths.data(), lengths.size());
    const std::size_t last = (std::size_t{1} << dims) - 1;  // the last element
    const ObjectPathSubscript s = ind_to_sub(PathElementIndex(last, size));
    ASSERT_EQ(s.size(), dims);
    for (std::size_t k = 0; k < dims; ++k) EXPECT_EQ(s(k), 2u) << "dimension " << k;
    EXPECT_EQ(sub_to_ind(s, size).index(), last);
    lengths[dims / 2] = 0;
    const krel::ArraySize empty(lengths.data(), lengths.size());
    const ObjectPathSubscript z = ind_to_sub(PathElementIndex(5, empty));
    EXPECT_EQ(z(0), 2u);
    EXPECT_EQ(z(1), 1u);
    EXPECT_EQ(z(2), 2u);
    EXPECT_EQ(z(dims - 1), 1u);
  }
}

krel::ArraySize random_size(std::mt19937& rng, std::size_t max_dim) {
  const std::size_t dims = 1 + rng() % 5;
  std::vector<std::size_t> values(dims);
  for (auto& v : values) v = 1 + rng() % max_dim;
  // Column and row vectors deserve their share.
  if (dims == 2 && rng() % 3 == 0) values[rng() % 2] = 1;
  return krel::ArraySize(values.data(), values.size());
}

TEST(IndexingProperty, SubToIndUndoesIndToSubForEveryIndexBelowTheCount) {
  std::mt19937 rng(4711);
  for (int trial = 0; trial < 300; ++trial) {
    const krel::ArraySize size = random_size(rng, 6);
    for (std::size_t i = 0; i < size.numElements(); ++i) {
      const ObjectPathSubscript s = ind_to_sub(PathElementIndex(i, size));
      ASSERT_EQ(s.size(), size.size());
      for (std::size_t k = 0; k < size.size(); ++k) {
        ASSERT_GE(s(k), 1u);
        ASSERT_LE(s(k), size(k));
      }
      const PathElementIndex back = sub_to_ind(s, size);
      ASSERT_EQ(back.index(), i) << krel::ustring_to_utf8_string(krel::to_user_string(size));
      ASSERT_EQ(back.size(), size);
    }
  }
}

TEST(IndexingProperty, MaybeFormIsEmptyExactlyWhereTheThrowingFormThrows) {
  std::mt19937 rng(90210);
  int accepted = 0;
  int refused = 0;
  for (int trial = 0; trial < 5000; ++trial) {
    const krel::ArraySize size = random_size(rng, 4);
    // Counts from none to two past the dimensions; values up to one past
    // the largest dimension, so short, in-range and out-of-range all occur.
    const std::size_t count = rng() % (size.size() + 3);
    std::vector<unsigned long> values(count);
    for (auto& v : values) v = 1 + rng() % 5;
    const ObjectPathSubscript s(values);
    const auto maybe = sub_to_maybe_ind(s, size);
    const auto thrown = throwing_form(s, size);
    ASSERT_EQ(maybe.has_value(), thrown.has_value());
    if (maybe) {
      ASSERT_EQ(*maybe, *thrown);
      ++accepted;
    } else {
      ++refused;
    }
  }
  // Both outcomes must actually have been exercised.
  EXPECT_GT(accepted, 500);
  EXPECT_GT(refused, 500);
}

}  // namespace
