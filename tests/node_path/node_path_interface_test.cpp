#include "ui/core/node_path.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "expect_error.h"
#include "ui/core/node_id.h"

// The interface of node identifiers and node paths as their callers spell it,
// and rules that the per-header tests do not state on their own.

namespace {

using namespace ui::core;
using test_support::text_arg;
using test_support::throws_error;

// ------------------------------------------------------------ signatures

static_assert(std::is_same_v<decltype(std::declval<const NodeId&>().ustring()), const ustring&>,
              "NodeId::ustring() hands out the stored text, not a copy");
static_assert(std::is_same_v<decltype(is_node_sep(std::declval<const char16_t&>())), bool>);
static_assert(std::is_same_v<decltype(relpath(std::declval<const NodePathBase&>(),
                                              std::declval<const NodePathBase&>())),
                             std::optional<NodePath>>);
static_assert(std::is_base_of_v<NodePathBase, NodePath>);
static_assert(std::is_base_of_v<NodePathBase, NodePath1>);
static_assert(sizeof(NodePath) == sizeof(NodePathBase), "NodePath adds no fields");
static_assert(sizeof(NodePath1) == sizeof(NodePathBase), "NodePath1 adds no fields");
static_assert(sizeof(NodeId) == sizeof(void*), "a NodeId is one handle");
static_assert(sizeof(NodePathBase) == sizeof(void*), "a node path is one handle");

TEST(NodeIdSeparators, FreeFunctionsHaveTheirDocumentedSignatures) {
  bool (*sep)(const char16_t&) = &is_node_sep;
  ustring::const_iterator (*find_range)(ustring::const_iterator, ustring::const_iterator) =
      &find_node_sep;
  ustring::const_iterator (*find_text)(const ustring&) = &find_node_sep;
  ustring (*clean)(const ustring&) = &clean_white_space;
  bool (*escaped)(const ustring&) = &is_node_sep_escaped;
  bool (*head)(const ustring&) = &is_node_id_head_char;
  bool (*tail)(const ustring&) = &is_node_id_tail_char;
  bool (*id)(const ustring&) = &is_node_id;
  bool (*path)(const ustring&) = &is_node_path;

  const ustring text = u"a///b";
  EXPECT_TRUE(sep(u'/'));
  EXPECT_EQ(find_range(text.cbegin(), text.cend()) - text.cbegin(), 3);
  EXPECT_EQ(find_text(text) - text.cbegin(), 3);
  EXPECT_EQ(clean(u"a\vb"), u"a b");
  EXPECT_FALSE(escaped(text));
  EXPECT_TRUE(head(text));
  EXPECT_TRUE(tail(text));
  EXPECT_FALSE(id(text));
  EXPECT_TRUE(path(text));
}

// ------------------------------------------------------------ NodeId

TEST(NodeId, StoresTheCleanedTextAndReportsTheRawOne) {
  // Every POSIX white-space character becomes a space, one for one.
  EXPECT_EQ(NodeId(u"a\t\n\v\f\r b").ustring(), u"a      b");
  // A backslash is an ordinary character; only "/" takes part in the rule.
  EXPECT_EQ(NodeId(u"a\\b").ustring(), u"a\\b");
  EXPECT_TRUE(
      throws_error([] { NodeId id(u"\ta/"); }, ErrorId::InvalidNodeId, {text_arg(u"\ta/")}));
}

// ------------------------------------------------------------ NodePathBase

TEST(NodePathBase, OffersEveryConstructorItself) {
  const NodePathBase empty;
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(empty.ustring(), u"");

  const NodePathBase parsed(u"a/b//c");
  EXPECT_EQ(parsed.size(), 2u);
  EXPECT_EQ(parsed.front().ustring(), u"a");
  EXPECT_EQ(parsed.back().ustring(), u"b//c");

  const NodeId x(u"x");
  const NodePathBase from_ids(std::vector<NodeId>{x, NodeId(u"y")});
  EXPECT_EQ(from_ids.ustring(), u"x/y");
  EXPECT_TRUE(from_ids.front().shares_record_with(x));

  const NodePathBase one(x);
  EXPECT_EQ(one.ustring(), u"x");

  EXPECT_TRUE(
      throws_error([] { NodePathBase p(u"a/"); }, ErrorId::InvalidNodePath, {text_arg(u"a/")}));
}

TEST(NodePathBase, PushBackAndStreamWorkOnTheBaseItself) {
  NodePathBase p(u"a");
  p.push_back(NodeId(u"b\tc"));
  std::ostringstream os;
  os << p;
  EXPECT_EQ(os.str(), "a/b c");
}

TEST(NodePathBase, ReverseIterationRunsLastToFirst) {
  const NodePathBase p(u"a/b/c");
  std::vector<ustring> texts;
  for (auto it = p.rbegin(); it != p.rend(); ++it) texts.push_back(it->ustring());
  EXPECT_EQ(texts, (std::vector<ustring>{u"c", u"b", u"a"}));
}

// ------------------------------------------------------------ NodePath1 as a NodePath

ustring text_of_node_path(const NodePath& p) {
  return p.ustring();
}

TEST(NodePath1, CanBeUsedWhereANodePathIsTaken) {
  // Regression: the conversion to NodePath was explicit, so a NodePath1 could
  // not be passed to a function taking a NodePath, nor assigned to one.
  const NodePath1 p1(u"a/b");
  EXPECT_EQ(text_of_node_path(p1), u"a/b");
  const NodePath p = p1;
  EXPECT_TRUE(p.shares_storage_with(p1));
  NodePath q;
  q = NodePath1(u"c");
  EXPECT_EQ(q.ustring(), u"c");
  static_assert(std::is_convertible_v<NodePath1, NodePath>);
  static_assert(std::is_nothrow_constructible_v<NodePath, const NodePath1&>);
}

TEST(NodePath1, OperatorPlusTakesAnyNodePathOnTheRight) {
  const NodePath1 p(u"a");
  const NodePath1 sum = p + NodePathBase(u"b");
  EXPECT_EQ(sum.ustring(), u"a/b");
  const NodePath1 same = p + NodePathBase();
  EXPECT_EQ(same.ustring(), u"a");
  EXPECT_TRUE(same.shares_storage_with(p));
}

// ------------------------------------------------------------ relpath

TEST(Relpath, FirstArgumentIsThePathAndSecondTheBase) {
  const NodePath1 path(u"a/b/c");
  const NodePath1 base(u"a");
  const auto rest = relpath(path, base);
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(rest->ustring(), u"b/c");
  // Swapped, the longer path is no prefix of the shorter one.
  EXPECT_FALSE(relpath(base, path).has_value());
}

TEST(Relpath, EscapesAndWhiteSpaceAreComparedAsStored) {
  // Both identifiers were cleaned when built, so a tab and a space match.
  const auto rest = relpath(NodePath(u"a\tb/c"), NodePath(u"a b"));
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(rest->ustring(), u"c");
  EXPECT_FALSE(relpath(NodePath(u"a//b/c"), NodePath(u"a")).has_value());
}

}  // namespace
