#include "lang/core/value_path.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <sstream>

namespace {

using lang::core::ContainerPath;
using lang::core::ContainerPathElement;
using lang::core::PathElementIndex;
using lang::core::PathElementName;
using lang::core::ValuePath;
using lang::core::ValueTail;

ContainerPath head_of(std::initializer_list<ContainerPathElement> elements) {
  ContainerPath path;
  for (const auto& e : elements) path.push_back(e);
  return path;
}

const ContainerPathElement body(PathElementName(u"Body"), PathElementIndex(0, {1, 1}));
const ContainerPathElement frame(PathElementName(u"Frame"), PathElementIndex(1, {2, 3}));

TEST(ValueTail, HoldsItsNameAndOptionalCellIndex) {
  const ValueTail plain(PathElementName(u"mass"), std::nullopt);
  EXPECT_EQ(plain.name().string(), u"mass");
  EXPECT_FALSE(plain.cellIndex().has_value());
  const ValueTail cell(PathElementName(u"mass"), PathElementIndex(2, {5}));
  ASSERT_TRUE(cell.cellIndex().has_value());
  EXPECT_EQ(cell.cellIndex()->index(), 2u);
  EXPECT_NE(plain, cell);
  EXPECT_EQ(cell, ValueTail(PathElementName(u"mass"), PathElementIndex(2, {5, 1})));
}

TEST(ValuePath, HoldsItsHeadAndTail) {
  const ValuePath path(head_of({body, frame}), ValueTail(PathElementName(u"mass"), std::nullopt));
  EXPECT_EQ(path.head(), head_of({body, frame}));
  EXPECT_EQ(path.tail().name().string(), u"mass");
}

TEST(ValuePath, UserTextFollowsTheHeadWithTheTailName) {
  const ValuePath path(head_of({body, frame}), ValueTail(PathElementName(u"mass"), std::nullopt));
  EXPECT_EQ(to_user_string(path), u"Body.Frame(2,1).mass");
  std::ostringstream os;
  os << path;
  EXPECT_EQ(os.str(), "Body.Frame(2,1).mass");
}

TEST(ValuePath, EmptyHeadGivesTheTailAlone) {
  const ValuePath path(ContainerPath(), ValueTail(PathElementName(u"mass"), std::nullopt));
  EXPECT_EQ(to_user_string(path), u"mass");
}

TEST(ValuePath, CellIndexShowsItsOneBasedLinearPositionInBraces) {
  const ContainerPath a =
      head_of({ContainerPathElement(PathElementName(u"a"), PathElementIndex(0, {1}))});
  EXPECT_EQ(
      to_user_string(ValuePath(a, ValueTail(PathElementName(u"b"), PathElementIndex(2, {5})))),
      u"a.b{3}");
  // Also for a 2-D value, and for a scalar one: the braces show whenever a cell is named.
  EXPECT_EQ(
      to_user_string(ValuePath(a, ValueTail(PathElementName(u"b"), PathElementIndex(4, {2, 3})))),
      u"a.b{5}");
  EXPECT_EQ(to_user_string(ValueTail(PathElementName(u"b"), PathElementIndex(0, {1}))), u"b{1}");
  EXPECT_EQ(
      to_user_string(ValueTail(PathElementName(u"b"),
                               PathElementIndex(std::numeric_limits<std::size_t>::max(), {2}))),
      u"b{18446744073709551616}");
}

TEST(ValuePath, EqualityComparesHeadAndTail) {
  const ValueTail mass(PathElementName(u"mass"), std::nullopt);
  EXPECT_EQ(ValuePath(head_of({body}), mass), ValuePath(head_of({body}), mass));
  EXPECT_NE(ValuePath(head_of({body}), mass), ValuePath(head_of({frame}), mass));
  EXPECT_NE(
      ValuePath(head_of({body}), mass),
      ValuePath(head_of({body}), ValueTail(PathElementName(u"mass"), PathElementIndex(0, {1}))));
}

}  // namespace
