#include "lang/core/path_element.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <sstream>

#include "expect_message.h"
#include "msgcat/catalogue.h"

namespace {

using lang::core::ContainerPathElement;
using lang::core::PathElementIndex;
using lang::core::PathElementName;
using test_support::throws_message;

TEST(PathElementName, RejectsOnlyTheEmptyTextWithItsOwnMessage) {
  EXPECT_TRUE(throws_message([] { PathElementName name(u""); }, "lang:core:path",
                             "EmptyPathElementName", {}));
  for (const char16_t* text : {u"a", u" ", u"a.b", u"x(1)", u"//", u"\u00e4"}) {
    EXPECT_EQ(PathElementName(text).string(), text);
  }
}

TEST(PathElementName, EmptyNameMessageHasEnglishAndGermanText) {
  EXPECT_TRUE(msgcat::find_pattern("lang:core:path", "EmptyPathElementName", "en"));
  EXPECT_TRUE(msgcat::find_pattern("lang:core:path", "EmptyPathElementName", "de"));
}

TEST(PathElementName, EqualityComparesTheText) {
  EXPECT_EQ(PathElementName(u"mass"), PathElementName(u"mass"));
  EXPECT_NE(PathElementName(u"mass"), PathElementName(u"Mass"));
}

TEST(PathElementIndex, KeepsAnIndexPastTheElementCount) {
  const PathElementIndex index(12, krel::ArraySize{3, 4});
  EXPECT_EQ(index.index(), 12u);
  EXPECT_EQ(index.size(), (krel::ArraySize{3, 4}));
}

TEST(PathElementIndex, EqualityReadsTrailingOnesAsEqualSizes) {
  EXPECT_EQ(PathElementIndex(0, krel::ArraySize{1}), PathElementIndex(0, krel::ArraySize{1, 1}));
  EXPECT_EQ(PathElementIndex(2, krel::ArraySize{5}), PathElementIndex(2, krel::ArraySize{5, 1}));
  EXPECT_NE(PathElementIndex(2, krel::ArraySize{5}), PathElementIndex(3, krel::ArraySize{5}));
  EXPECT_NE(PathElementIndex(2, krel::ArraySize{5}), PathElementIndex(2, krel::ArraySize{1, 5}));
}

TEST(ContainerPathElement, HoldsItsNameAndIndex) {
  const ContainerPathElement e(PathElementName(u"Frame"), PathElementIndex(1, {2, 3}));
  EXPECT_EQ(e.name().string(), u"Frame");
  EXPECT_EQ(e.objIndex(), PathElementIndex(1, {2, 3}));
  EXPECT_EQ(e, ContainerPathElement(PathElementName(u"Frame"), PathElementIndex(1, {2, 3})));
  EXPECT_NE(e, ContainerPathElement(PathElementName(u"Frame"), PathElementIndex(0, {2, 3})));
  EXPECT_NE(e, ContainerPathElement(PathElementName(u"Frames"), PathElementIndex(1, {2, 3})));
}

ContainerPathElement element(std::size_t index, const krel::ArraySize& size) {
  return ContainerPathElement(PathElementName(u"x"), PathElementIndex(index, size));
}

TEST(ContainerPathElement, ScalarSizesShowNoSubscripts) {
  EXPECT_EQ(to_user_string(element(0, {})), u"x");
  EXPECT_EQ(to_user_string(element(0, {1})), u"x");
  EXPECT_EQ(to_user_string(element(0, {1, 1})), u"x");
  EXPECT_EQ(to_user_string(element(0, {1, 1, 1})), u"x");
  // Only the size decides: a scalar element shows no index even if it is not 0.
  EXPECT_EQ(to_user_string(element(4, {1, 1})), u"x");
}

TEST(ContainerPathElement, ArraySizesShowOneBasedColumnMajorSubscripts) {
  EXPECT_EQ(to_user_string(element(1, {2, 3})), u"x(2,1)");
  EXPECT_EQ(to_user_string(element(2, {2, 3})), u"x(1,2)");
  EXPECT_EQ(to_user_string(element(7, {3, 4})), u"x(2,3)");
  EXPECT_EQ(to_user_string(element(23, {2, 3, 4})), u"x(2,3,4)");
  EXPECT_EQ(to_user_string(element(2, {5})), u"x(3)");
  EXPECT_EQ(to_user_string(element(2, {5, 1})), u"x(3,1)");
  EXPECT_EQ(to_user_string(element(3, {1, 5})), u"x(1,4)");
}

TEST(ContainerPathElement, IndexPastTheEndGrowsTheLastSubscript) {
  EXPECT_EQ(to_user_string(element(12, {3, 4})), u"x(1,5)");
  EXPECT_EQ(to_user_string(element(0, {0, 3})), u"x(1,1)");
}

TEST(ContainerPathElement, ZeroLengthDimensionDoesNotStopTheText) {
  // The strides after a zero-length dimension are 0; the index then falls to
  // the dimensions up to the zero-length one.
  EXPECT_EQ(to_user_string(element(5, {2, 0, 3})), u"x(2,3,1)");
  EXPECT_EQ(to_user_string(element(5, {0, 4})), u"x(6,1)");
}

TEST(ContainerPathElement, LargestIndexIsWrittenWithoutWrapping) {
  constexpr std::size_t max = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(to_user_string(element(max, {2})), u"x(18446744073709551616)");
  EXPECT_EQ(to_user_string(element(max, {max, 2})), u"x(1,2)");
  EXPECT_EQ(to_user_string(element(9, {20})), u"x(10)");
  EXPECT_EQ(to_user_string(element(99, {200})), u"x(100)");
}

TEST(ContainerPathElement, StreamsItsUserText) {
  std::ostringstream os;
  os << element(1, {2, 3}) << ' ' << PathElementName(u"mass");
  EXPECT_EQ(os.str(), "x(2,1) mass");
}

}  // namespace
