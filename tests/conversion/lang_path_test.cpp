#include "ui/core/lang_path.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "expect_error.h"
#include "krel/array_size.h"

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

ContainerPathElement step(const char16_t* name, std::size_t index = 0,
                          const krel::ArraySize& size = krel::ArraySize{1, 1}) {
  return ContainerPathElement(PathElementName(name), PathElementIndex(index, size));
}

ContainerPath container(std::initializer_list<ContainerPathElement> steps) {
  ContainerPath path;
  for (const auto& s : steps) path.push_back(s);
  return path;
}

ValueTail tail(const char16_t* name, std::optional<PathElementIndex> cell = std::nullopt) {
  return ValueTail(PathElementName(name), cell);
}

std::vector<ustring> texts(const NodePathBase& path) {
  std::vector<ustring> out;
  for (const NodeId& id : path.ids()) out.push_back(id.ustring());
  return out;
}

TEST(ToContainerPath, EmptyNodePathGivesEmptyContainerPath) {
  EXPECT_TRUE(to_container_path(NodePath()).empty());
}

TEST(ToContainerPath, EachIdBecomesAScalarStepOfTwoUnitDimensions) {
  const ContainerPath path = to_container_path(NodePath(u"Body//Frame/joint/mass"));
  ASSERT_EQ(path.size(), 3u);
  std::vector<ustring> names;
  for (const ContainerPathElement& e : path) {
    names.push_back(e.name().string());
    EXPECT_EQ(e.objIndex().index(), 0u);
    // Going out the scalar size is the explicit 1x1.
    ASSERT_EQ(e.objIndex().size().size(), 2u);
    EXPECT_EQ(e.objIndex().size()(0), 1u);
    EXPECT_EQ(e.objIndex().size()(1), 1u);
  }
  EXPECT_EQ(names, (std::vector<ustring>{u"Body//Frame", u"joint", u"mass"}));
  EXPECT_EQ(lang::core::to_user_string(path), u"Body//Frame.joint.mass");
}

TEST(ToValuePath, SingleIdGivesEmptyHeadAndPlainTail) {
  const ValuePath value = to_value_path(NodePath1(u"mass"));
  EXPECT_TRUE(value.head().empty());
  EXPECT_EQ(value.tail().name().string(), u"mass");
  EXPECT_FALSE(value.tail().cellIndex().has_value());
}

TEST(ToValuePath, AllIdsButTheLastMakeTheHead) {
  const ValuePath value = to_value_path(NodePath1(u"Body//Frame/mass"));
  EXPECT_EQ(value.head(), container({step(u"Body//Frame")}));
  EXPECT_EQ(value.tail().name().string(), u"mass");
  EXPECT_FALSE(value.tail().cellIndex().has_value());
  EXPECT_EQ(lang::core::to_user_string(value), u"Body//Frame.mass");
}

TEST(ToValuePath, EmptiedNodePath1ThrowsInvalidNodePath1) {
  // A NodePath1 emptied through ids() used to reach the last identifier of no
  // identifiers, which crashed a release build.
  NodePath1 emptied(u"a/b");
  emptied.ids().clear();
  EXPECT_TRUE(throws_error([&] { (void)to_value_path(emptied); }, ErrorId::InvalidNodePath1,
                           {text_arg(u"")}));
  NodePath1 moved(u"mass");
  const NodePath1 taker = std::move(moved);
  // NOLINTNEXTLINE(bugprone-use-after-move): a moved-from path is empty
  EXPECT_TRUE(throws_error([&] { (void)to_value_path(moved); }, ErrorId::InvalidNodePath1,
                           {text_arg(u"")}));
  EXPECT_EQ(to_value_path(taker).tail().name().string(), u"mass");
}

TEST(ToNodePath, EmptyContainerPathGivesEmptyNodePath) {
  EXPECT_TRUE(to_node_path(ContainerPath()).empty());
}

TEST(ToNodePath, AcceptsEveryScalarSpellingAndIgnoresTheIndexValue) {
  const ContainerPath path =
      container({step(u"a", 0, krel::ArraySize{1}), step(u"b", 0, krel::ArraySize{1, 1}),
                 step(u"c", 0, krel::ArraySize{}), step(u"d", 7, krel::ArraySize{1, 1, 1})});
  EXPECT_EQ(texts(to_node_path(path)), (std::vector<ustring>{u"a", u"b", u"c", u"d"}));
}

TEST(ToNodePath, ArrayStepThrowsNonScalarPathWithTheWholeContainerText) {
  for (std::size_t index : {0u, 4u, 99u}) {
    const ContainerPath path =
        container({step(u"Body"), step(u"Frame", index, krel::ArraySize{2, 3}), step(u"x")});
    EXPECT_TRUE(throws_error([&] { (void)to_node_path(path); }, ErrorId::NonScalarPath,
                             {text_arg(lang::core::to_user_string(path))}));
  }
  EXPECT_TRUE(throws_error(
      [] {
        (void)to_node_path(container({step(u"a"), step(u"b", 1, krel::ArraySize{2, 3})}));
      },
      ErrorId::NonScalarPath, {text_arg(u"a.b(2,1)")}));
  // A row or column vector is no more scalar than a matrix.
  EXPECT_TRUE(
      throws_error([] { (void)to_node_path(container({step(u"v", 0, krel::ArraySize{3})})); },
                   ErrorId::NonScalarPath, {text_arg(u"v(1)")}));
}

TEST(ToNodePath, NameThatIsNotANodeIdThrowsInvalidNodeId) {
  EXPECT_TRUE(throws_error(
      [] {
        (void)to_node_path(container({step(u"a"), step(u"b/c")}));
      },
      ErrorId::InvalidNodeId, {text_arg(u"b/c")}));
  EXPECT_TRUE(throws_error([] { (void)to_node_path(container({step(u"/x")})); },
                           ErrorId::InvalidNodeId, {text_arg(u"/x")}));
}

TEST(ToNodePath, NameWhiteSpaceIsCleanedLikeAnyNodeId) {
  EXPECT_EQ(texts(to_node_path(container({step(u"a\tb")}))), (std::vector<ustring>{u"a b"}));
}

TEST(ToNodePath, ValuePathGivesOneMoreIdThanItsHead) {
  EXPECT_EQ(texts(to_node_path(ValuePath(ContainerPath(), tail(u"mass")))),
            (std::vector<ustring>{u"mass"}));
  EXPECT_EQ(texts(to_node_path(ValuePath(container({step(u"a"), step(u"b")}), tail(u"c")))),
            (std::vector<ustring>{u"a", u"b", u"c"}));
}

TEST(ToNodePath, CellIndexThrowsNonScalarPathWithTheWholeValueText) {
  const ValuePath scalar_head(container({step(u"a")}),
                              tail(u"b", PathElementIndex(2, krel::ArraySize{5})));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path(scalar_head); }, ErrorId::NonScalarPath,
                           {text_arg(u"a.b{3}")}));
  // Even a cell of a scalar value is refused: the presence of a cell index decides.
  const ValuePath scalar_cell(ContainerPath(), tail(u"b", PathElementIndex(0, krel::ArraySize{1})));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path(scalar_cell); }, ErrorId::NonScalarPath,
                           {text_arg(u"b{1}")}));
}

TEST(ToNodePath, CellIndexIsTestedBeforeTheHead) {
  const ValuePath both(container({step(u"a", 1, krel::ArraySize{2, 3})}),
                       tail(u"b", PathElementIndex(0, krel::ArraySize{4})));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path(both); }, ErrorId::NonScalarPath,
                           {text_arg(u"a(2,1).b{1}")}));
}

TEST(ToNodePath, ArrayStepInTheHeadNamesTheHeadOnly) {
  const ValuePath value(container({step(u"Body"), step(u"Frame", 1, krel::ArraySize{2, 3})}),
                        tail(u"mass"));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path(value); }, ErrorId::NonScalarPath,
                           {text_arg(u"Body.Frame(2,1)")}));
  EXPECT_TRUE(throws_error([&] { (void)to_node_path1(value); }, ErrorId::NonScalarPath,
                           {text_arg(u"Body.Frame(2,1)")}));
}

TEST(ToNodePath, TailNameThatIsNotANodeIdThrowsInvalidNodeId) {
  EXPECT_TRUE(
      throws_error([] { (void)to_node_path(ValuePath(container({step(u"a")}), tail(u"b/"))); },
                   ErrorId::InvalidNodeId, {text_arg(u"b/")}));
}

TEST(ToNodePath1, ValuePathGivesANonEmptyPath) {
  const NodePath1 path = to_node_path1(ValuePath(ContainerPath(), tail(u"mass")));
  EXPECT_EQ(texts(path), (std::vector<ustring>{u"mass"}));
  EXPECT_EQ(to_node_path1(ValuePath(container({step(u"a//b")}), tail(u"c"))).ustring(), u"a//b/c");
}

TEST(ToNodePath1, EmptyContainerPathThrowsInvalidNodePath1WithEmptyText) {
  EXPECT_TRUE(throws_error([] { (void)to_node_path1(ContainerPath()); }, ErrorId::InvalidNodePath1,
                           {text_arg(u"")}));
  // The plain conversion of the same path is fine: a NodePath may be empty.
  EXPECT_TRUE(to_node_path(ContainerPath()).empty());
}

TEST(ToNodePath1, ContainerPathKeepsItsIdsAndErrors) {
  EXPECT_EQ(to_node_path1(container({step(u"a"), step(u"b", 0, krel::ArraySize{1})})).ustring(),
            u"a/b");
  EXPECT_TRUE(throws_error(
      [] {
        (void)to_node_path1(container({step(u"a", 0, krel::ArraySize{1, 2})}));
      },
      ErrorId::NonScalarPath, {text_arg(u"a(1,1)")}));
}

// Identifier texts of every shape a node path allows: letters, digits, inner
// spaces, non-ASCII text and escaped separators anywhere but at the ends.
ustring random_id(std::mt19937& rng) {
  static const std::vector<ustring> inner = {u"a", u"Z", u"7", u" ", u"//", u"\u00e9", u"_", u"."};
  static const std::vector<ustring> ends = {u"a", u"Z", u"7", u"\u00e9", u"_"};
  ustring id = ends[rng() % ends.size()];
  const std::size_t n = rng() % 5;
  for (std::size_t i = 0; i < n; ++i) id += inner[rng() % inner.size()];
  if (id.back() == u'/' || rng() % 2) id += ends[rng() % ends.size()];
  return id;
}

NodePath random_path(std::mt19937& rng, std::size_t min_length) {
  NodePath path;
  const std::size_t n = min_length + rng() % 6;
  for (std::size_t i = 0; i < n; ++i) path.push_back(NodeId(random_id(rng)));
  return path;
}

TEST(LangPathRoundTrip, NodePathThroughContainerPathComesBackEqual) {
  std::mt19937 rng(20240611);
  for (int trial = 0; trial < 500; ++trial) {
    const NodePath p = random_path(rng, 0);
    const ContainerPath c = to_container_path(p);
    ASSERT_EQ(c.size(), p.size());
    EXPECT_EQ(to_node_path(c), p) << p;
    if (!p.empty()) {
      EXPECT_EQ(to_node_path1(c), NodePath1(p)) << p;
    }
    // The text of the path survives too: the escapes stay doubled.
    EXPECT_EQ(to_node_path(c).ustring(), p.ustring());
  }
}

TEST(LangPathRoundTrip, NodePath1ThroughValuePathComesBackWithItsIds) {
  std::mt19937 rng(977);
  for (int trial = 0; trial < 500; ++trial) {
    const NodePath1 q(random_path(rng, 1));
    const ValuePath v = to_value_path(q);
    EXPECT_EQ(v.head().size() + 1, q.size());
    EXPECT_EQ(texts(to_node_path(v)), texts(q)) << q;
    EXPECT_EQ(to_node_path1(v), q) << q;
  }
}

TEST(LangPathRoundTrip, ScalarContainerPathThroughNodePathComesBackEqual) {
  // Coming back and going out again replaces each scalar size by 1x1, which
  // compares equal to every other spelling of the scalar size.
  std::mt19937 rng(31);
  const std::vector<krel::ArraySize> scalars = {krel::ArraySize{}, krel::ArraySize{1},
                                                krel::ArraySize{1, 1}, krel::ArraySize{1, 1, 1}};
  for (int trial = 0; trial < 200; ++trial) {
    ContainerPath c;
    const std::size_t n = rng() % 6;
    for (std::size_t i = 0; i < n; ++i) {
      c.push_back(ContainerPathElement(PathElementName(random_id(rng)),
                                       PathElementIndex(0, scalars[rng() % scalars.size()])));
    }
    EXPECT_EQ(to_container_path(to_node_path(c)), c) << c;
  }
}

}  // namespace
