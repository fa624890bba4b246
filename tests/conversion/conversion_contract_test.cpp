// Claims about the indexing and language path conversions that the other
// tests of this folder leave open: the exact argument forms of the interface,
// wrapping arithmetic, the reach of the column-vector rule, and the order in
// which a conversion meets the problems of a path.

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <type_traits>
#include <vector>

#include "expect_error.h"
#include "krel/array_size.h"
#include "ui/core/indexing.h"
#include "ui/core/lang_path.h"

namespace {

using namespace ui::core;
using lang::core::ContainerPath;
using lang::core::ContainerPathElement;
using lang::core::PathElementIndex;
using lang::core::PathElementName;
using lang::core::ValuePath;
using lang::core::ValueTail;
using test_support::text_arg;
using test_support::throws_error;

// The argument forms are part of the interface: sizes and subscripts by value,
// an index by const reference. Each cast names exactly one function or fails
// to compile.
static_assert(std::is_same_v<decltype(&detail::check_array),
                             krel::ArraySize (*)(krel::ArraySize, std::size_t)>);
static_assert(std::is_same_v<decltype(&sub_to_ind),
                             PathElementIndex (*)(ObjectPathSubscript, krel::ArraySize)>);
static_assert(
    std::is_same_v<decltype(&sub_to_maybe_ind),
                   std::optional<PathElementIndex> (*)(ObjectPathSubscript, krel::ArraySize)>);
static_assert(
    std::is_same_v<decltype(&ind_to_sub), ObjectPathSubscript (*)(const PathElementIndex&)>);
static_assert(std::is_same_v<decltype(&to_container_path), ContainerPath (*)(const NodePath&)>);
static_assert(std::is_same_v<decltype(&to_value_path), ValuePath (*)(const NodePath1&)>);
static_assert(
    std::is_same_v<decltype(static_cast<NodePath (*)(const ContainerPath&)>(&to_node_path)),
                   NodePath (*)(const ContainerPath&)>);
static_assert(std::is_same_v<decltype(static_cast<NodePath (*)(const ValuePath&)>(&to_node_path)),
                             NodePath (*)(const ValuePath&)>);
static_assert(
    std::is_same_v<decltype(static_cast<NodePath1 (*)(const ContainerPath&)>(&to_node_path1)),
                   NodePath1 (*)(const ContainerPath&)>);
static_assert(std::is_same_v<decltype(static_cast<NodePath1 (*)(const ValuePath&)>(&to_node_path1)),
                             NodePath1 (*)(const ValuePath&)>);

ObjectPathSubscript sub(std::vector<unsigned long> values) {
  return ObjectPathSubscript(values);
}

ContainerPathElement step(const char16_t* name, const krel::ArraySize& size = {1, 1}) {
  return ContainerPathElement(PathElementName(name), PathElementIndex(0, size));
}

ContainerPath container(std::initializer_list<ContainerPathElement> steps) {
  ContainerPath path;
  for (const auto& s : steps) path.push_back(s);
  return path;
}

// ---- Indexing -------------------------------------------------------------

TEST(IndexingConformance, ZeroRowsWrittenAsTwoLiteralsIsAnEmptyMatrix) {
  // ArraySize(0, 3) used to be ambiguous with the pointer-and-count constructor.
  EXPECT_EQ(detail::check_array(krel::ArraySize(0, 3), 0), (krel::ArraySize{0, 3}));
  EXPECT_TRUE(throws_error([] { (void)detail::check_array(krel::ArraySize(0, 3), 3); },
                           ErrorId::InvalidArrayArguments,
                           {test_support::Argument(std::in_place_index<0>, 3u), text_arg(u"0x3")}));
}

TEST(IndexingConformance, LinearPositionWrapsLikeUnsignedSixtyFourBits) {
  // 2^32 x 2^32 x 2 elements do not fit in 64 bits: the stride of the third
  // dimension is 2^64, which wraps to 0, so its subscript adds nothing.
  constexpr std::size_t big = std::size_t{1} << 32;
  const krel::ArraySize size{big, big, 2};
  EXPECT_EQ(sub_to_ind(sub({1, 1, 2}), size).index(), 0u);
  EXPECT_EQ(sub_to_ind(sub({2, 1, 2}), size).index(), 1u);
  EXPECT_EQ(sub_to_ind(sub({1, 2, 2}), size).index(), big);
  EXPECT_EQ(sub_to_maybe_ind(sub({2, 1, 2}), size), sub_to_ind(sub({2, 1, 2}), size));
}

TEST(IndexingConformance, ResultCarriesTheSizeAsGiven) {
  const PathElementIndex index = sub_to_ind(sub({2, 3, 1}), krel::ArraySize{3, 4, 1});
  EXPECT_EQ(index.index(), 7u);
  EXPECT_EQ(index.size().size(), 3u);
  EXPECT_EQ(sub_to_ind(sub({4}), krel::ArraySize{5}).size().size(), 1u);
}

TEST(IndexingConformance, ColumnVectorRuleCoversOneByOne) {
  // Two dimensions, the second of length 1: one subscript is enough.
  EXPECT_EQ(sub_to_ind(sub({1}), krel::ArraySize{1, 1}).index(), 0u);
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({2}), krel::ArraySize{1, 1});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//2"), text_arg(u"1x1")}));
}

TEST(IndexingConformance, ColumnVectorRuleIsOnlyForTwoDimensions) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({4}), krel::ArraySize{5, 1, 1});
      },
      ErrorId::InsufficientSubscriptDimensions, {text_arg(u"//4"), text_arg(u"5x1x1")}));
  EXPECT_FALSE(sub_to_maybe_ind(sub({4}), krel::ArraySize{5, 1, 1}).has_value());
  EXPECT_EQ(sub_to_ind(sub({4, 1, 1}), krel::ArraySize{5, 1, 1}).index(), 3u);
}

TEST(IndexingConformance, SingleSubscriptPastAColumnVectorIsOutOfRange) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({6}), krel::ArraySize{5, 1});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//6"), text_arg(u"5x1")}));
}

TEST(IndexingConformance, FirstOutOfRangeSubscriptIsReportedWithTheWholeSubscript) {
  // Both the second and third are too large; the message shows the subscript,
  // not a position.
  EXPECT_TRUE(throws_error(
      [] {
        (void)sub_to_ind(sub({1, 9, 9}), krel::ArraySize{2, 3, 4});
      },
      ErrorId::SubscriptOutOfRange, {text_arg(u"//1, 9, 9"), text_arg(u"2x3x4")}));
}

TEST(IndexingConformance, IndToSubOfTheColumnVectorExampleKeepsTheTrailingOne) {
  const ObjectPathSubscript s = ind_to_sub(PathElementIndex(3, krel::ArraySize{5, 1}));
  EXPECT_EQ(s.size(), 2u);
  EXPECT_EQ(static_cast<ustring>(s), u"//4, 1");
  EXPECT_EQ(sub_to_ind(s, krel::ArraySize{5, 1}).index(), 3u);
}

// ---- Language paths -------------------------------------------------------

TEST(LangPathConformance, StepsAreCheckedInOrderEachForScalarFirstThenForItsName) {
  // The first step's name is refused before the second step's size is seen.
  EXPECT_TRUE(throws_error(
      [] {
        (void)to_node_path(container({step(u"a/"), step(u"b", {2, 3})}));
      },
      ErrorId::InvalidNodeId, {text_arg(u"a/")}));
  // Within one step, the size is tested before the name.
  EXPECT_TRUE(throws_error(
      [] {
        (void)to_node_path(container({step(u"a/", {2, 3})}));
      },
      ErrorId::NonScalarPath, {text_arg(u"a/(1,1)")}));
}

TEST(LangPathConformance, HeadIsConvertedBeforeTheTailName) {
  const ValuePath bad_both(container({step(u"/h")}),
                           ValueTail(PathElementName(u"t/"), std::nullopt));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path(bad_both); }, ErrorId::InvalidNodeId,
                           {text_arg(u"/h")}));
  // A non-scalar head also comes before a bad tail name.
  const ValuePath array_head(container({step(u"h", {3})}),
                             ValueTail(PathElementName(u"t/"), std::nullopt));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path1(array_head); }, ErrorId::NonScalarPath,
                           {text_arg(u"h(1)")}));
}

TEST(LangPathConformance, CellIndexComesBeforeABadHeadName) {
  const ValuePath path(container({step(u"/h")}),
                       ValueTail(PathElementName(u"t"), PathElementIndex(0, krel::ArraySize{2})));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path(path); }, ErrorId::NonScalarPath,
                           {text_arg(u"/h.t{1}")}));
}

TEST(LangPathConformance, FailedConversionsLeaveTheirArgumentsUnchanged) {
  const ContainerPath c = container({step(u"a"), step(u"b", {2, 2})});
  const ContainerPath c_copy = c;
  EXPECT_THROW((void)to_node_path(c), krel::MessageException);
  EXPECT_THROW((void)to_node_path1(c), krel::MessageException);
  EXPECT_EQ(c, c_copy);
  const ValuePath v(c, ValueTail(PathElementName(u"x"), std::nullopt));
  const ValuePath v_copy = v;
  EXPECT_THROW((void)to_node_path(v), krel::MessageException);
  EXPECT_EQ(v, v_copy);
}

TEST(LangPathConformance, ValuePathOfManyIdsHasTheExpectedHeadAndTail) {
  const ValuePath v = to_value_path(NodePath1(u"a/b//c/d"));
  ASSERT_EQ(v.head().size(), 2u);
  EXPECT_EQ(v.head(), container({step(u"a"), step(u"b//c")}));
  EXPECT_EQ(v.tail(), ValueTail(PathElementName(u"d"), std::nullopt));
  EXPECT_EQ(lang::core::to_user_string(v), u"a.b//c.d");
}

}  // namespace
