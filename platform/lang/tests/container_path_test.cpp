#include "lang/core/container_path.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace {

using lang::core::ContainerPath;
using lang::core::ContainerPathElement;
using lang::core::PathElementIndex;
using lang::core::PathElementName;

ContainerPathElement element(const char16_t* name, std::size_t index = 0,
                             const krel::ArraySize& size = {1}) {
  return ContainerPathElement(PathElementName(name), PathElementIndex(index, size));
}

TEST(ContainerPath, DefaultIsEmptyWithEmptyText) {
  const ContainerPath path;
  EXPECT_TRUE(path.empty());
  EXPECT_EQ(path.size(), 0u);
  EXPECT_EQ(path.begin(), path.end());
  EXPECT_EQ(to_user_string(path), u"");
}

TEST(ContainerPath, KeepsElementsInTheOrderPushed) {
  ContainerPath path;
  path.push_back(element(u"a"));
  path.push_back(element(u"b", 1, {2}));
  path.push_back(element(u"c"));
  EXPECT_FALSE(path.empty());
  ASSERT_EQ(path.size(), 3u);
  std::vector<std::u16string> names;
  for (const ContainerPathElement& e : path) names.push_back(e.name().string());
  EXPECT_EQ(names, (std::vector<std::u16string>{u"a", u"b", u"c"}));
  EXPECT_EQ(path.begin()[1].objIndex(), PathElementIndex(1, {2}));
}

TEST(ContainerPath, UserTextJoinsNamesWithDotsAndShowsArraySubscripts) {
  ContainerPath path;
  path.push_back(element(u"Body"));
  EXPECT_EQ(to_user_string(path), u"Body");
  path.push_back(element(u"Frame", 1, {2, 3}));
  path.push_back(element(u"joint", 0, {1, 1}));
  EXPECT_EQ(to_user_string(path), u"Body.Frame(2,1).joint");
  std::ostringstream os;
  os << path;
  EXPECT_EQ(os.str(), "Body.Frame(2,1).joint");
}

TEST(ContainerPath, EqualityComparesEveryElement) {
  ContainerPath a;
  ContainerPath b;
  EXPECT_EQ(a, b);
  a.push_back(element(u"x", 0, {1}));
  EXPECT_NE(a, b);
  b.push_back(element(u"x", 0, {1, 1}));
  EXPECT_EQ(a, b);
  a.push_back(element(u"y"));
  b.push_back(element(u"z"));
  EXPECT_NE(a, b);
}

TEST(ContainerPath, CopyIsIndependentOfLaterPushes) {
  ContainerPath a;
  a.push_back(element(u"x"));
  ContainerPath b = a;
  b.push_back(element(u"y"));
  EXPECT_EQ(a.size(), 1u);
  EXPECT_EQ(b.size(), 2u);
}

}  // namespace
