#include "ui/core/node_id.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include <boost/container_hash/hash.hpp>
#include <boost/unordered_set.hpp>

#include "expect_error.h"
#include "krel/ustring.h"
#include "value_checks.h"

namespace {

using namespace ui::core;
using test_support::text_arg;
using test_support::throws_error;

// Position of the separator find_node_sep reports, or npos for "none".
std::size_t sep_pos(const ustring& text) {
  const auto it = find_node_sep(text);
  return it == text.cend() ? ustring::npos : static_cast<std::size_t>(it - text.cbegin());
}

TEST(IsNodeSep, IsTrueOnlyForSlash) {
  for (char32_t c = 0; c < 0x10000; ++c) {
    EXPECT_EQ(is_node_sep(static_cast<char16_t>(c)), c == U'/') << static_cast<unsigned>(c);
  }
}

TEST(FindNodeSep, ReportsFirstUnescapedSeparator) {
  EXPECT_EQ(sep_pos(u"ab"), ustring::npos);
  EXPECT_EQ(sep_pos(u"a/b"), 1u);
  EXPECT_EQ(sep_pos(u"a//b"), ustring::npos);
  EXPECT_EQ(sep_pos(u"a///b"), 3u);  // the pair on the left is the escape
  EXPECT_EQ(sep_pos(u"a/"), 1u);
  EXPECT_EQ(sep_pos(u""), ustring::npos);
  EXPECT_EQ(sep_pos(u"/"), 0u);
  EXPECT_EQ(sep_pos(u"//"), ustring::npos);
  EXPECT_EQ(sep_pos(u"a////b"), ustring::npos);
  EXPECT_EQ(sep_pos(u"a/////b"), 5u);
  EXPECT_EQ(sep_pos(u"x.y,z!/w"), 6u);  // other punctuation is passed over
}

TEST(FindNodeSep, BackslashIsNeitherSeparatorNorEscape) {
  EXPECT_EQ(sep_pos(u"a\\b"), ustring::npos);
  EXPECT_EQ(sep_pos(u"a\\/b"), 2u);
  EXPECT_EQ(sep_pos(u"a\\//b"), ustring::npos);
}

TEST(FindNodeSep, RangeFormStopsAtLastAndStartsAtFirst) {
  const ustring text = u"a/b//c/d";
  // Over [0, 1) there is no separator: the end of the range is returned.
  EXPECT_EQ(find_node_sep(text.cbegin(), text.cbegin() + 1), text.cbegin() + 1);
  EXPECT_EQ(find_node_sep(text.cbegin(), text.cbegin()), text.cbegin());
  // From position 2, "//" is an escape and the next separator is at 6.
  EXPECT_EQ(find_node_sep(text.cbegin() + 2, text.cend()) - text.cbegin(), 6);
  // A "/" that is the last character of the range is unescaped, even if the
  // text continues with another "/".
  EXPECT_EQ(find_node_sep(text.cbegin() + 2, text.cbegin() + 4) - text.cbegin(), 3);
}

TEST(CleanWhiteSpace, ReplacesEachPosixSpaceWithoutChangingLength) {
  EXPECT_EQ(clean_white_space(u"x\ty"), u"x y");
  EXPECT_EQ(clean_white_space(u" \t\n\v\f\r"), u"      ");
  EXPECT_EQ(clean_white_space(u"\ta\n"), u" a ");  // nothing trimmed
  EXPECT_EQ(clean_white_space(u"a  b"), u"a  b");  // nothing collapsed
  EXPECT_EQ(clean_white_space(u""), u"");
  // A no-break space and other characters outside the POSIX class stay.
  EXPECT_EQ(clean_white_space(u"a\u00a0b\u2003c"), u"a\u00a0b\u2003c");
}

TEST(IsNodeSepEscaped, IsTrueWithoutUnescapedSeparator) {
  EXPECT_TRUE(is_node_sep_escaped(u""));
  EXPECT_TRUE(is_node_sep_escaped(u"ab"));
  EXPECT_TRUE(is_node_sep_escaped(u"a//b"));
  EXPECT_TRUE(is_node_sep_escaped(u"//"));
  EXPECT_FALSE(is_node_sep_escaped(u"a/b"));
  EXPECT_FALSE(is_node_sep_escaped(u"a///b"));
  EXPECT_FALSE(is_node_sep_escaped(u"/"));
}

TEST(IsNodeIdHeadAndTailChar, LookOnlyAtTheEnds) {
  EXPECT_TRUE(is_node_id_head_char(u""));  // the terminator is not "/"
  EXPECT_TRUE(is_node_id_head_char(u"a/"));
  EXPECT_FALSE(is_node_id_head_char(u"/a"));
  EXPECT_TRUE(is_node_id_tail_char(u"/a"));
  EXPECT_FALSE(is_node_id_tail_char(u"a/"));
  EXPECT_FALSE(is_node_id_tail_char(u"a//"));
}

TEST(IsNodeId, AcceptsExactlyValidIdentifiers) {
  EXPECT_FALSE(is_node_id(u""));
  EXPECT_TRUE(is_node_id(u"a"));
  EXPECT_TRUE(is_node_id(u"a b"));
  EXPECT_FALSE(is_node_id(u"/a"));
  EXPECT_FALSE(is_node_id(u"a/"));
  EXPECT_FALSE(is_node_id(u"a/b"));
  EXPECT_TRUE(is_node_id(u"a//b"));
  EXPECT_FALSE(is_node_id(u"a//"));
  EXPECT_FALSE(is_node_id(u"a///b"));
  EXPECT_TRUE(is_node_id(u"a////b"));
  EXPECT_TRUE(is_node_id(u" "));
}

TEST(IsNodePath, AcceptsTheEdgeCases) {
  EXPECT_TRUE(is_node_path(u""));
  EXPECT_TRUE(is_node_path(u"a"));
  EXPECT_FALSE(is_node_path(u"/"));
  EXPECT_FALSE(is_node_path(u"/a"));
  EXPECT_FALSE(is_node_path(u"a/"));
  EXPECT_TRUE(is_node_path(u"a//"));
  EXPECT_TRUE(is_node_path(u"a/b"));
}

TEST(IsNodePath, ChecksTheLeadingSeparatorBeforeTheLength) {
  // Step 1 before step 2: a one-character text is a path unless it is "/".
  EXPECT_FALSE(is_node_path(u"/"));
  EXPECT_TRUE(is_node_path(u"x"));
  // Step 1 before step 4: "//" ends with an escape but starts with "/".
  EXPECT_FALSE(is_node_path(u"//"));
  EXPECT_FALSE(is_node_path(u"//a"));
}

TEST(IsNodePath, ExaminesOnlyTheEnds) {
  // The middle is left to the identifiers: these are path texts even though
  // they do not parse.
  EXPECT_TRUE(is_node_path(u"a///b"));
  EXPECT_TRUE(is_node_path(u"a///"));
  EXPECT_TRUE(is_node_path(u"a/b//"));
  // Ending in "//" is accepted whatever comes before; a single "/" is not.
  EXPECT_TRUE(is_node_path(u"a////"));
  EXPECT_FALSE(is_node_path(u"a/b/"));
}

TEST(NodeId, CleansWhiteSpaceOnConstruction) {
  EXPECT_EQ(NodeId(u"x\ty").ustring(), u"x y");
  EXPECT_EQ(NodeId(u"\nx\r").ustring(), u" x ");
}

TEST(NodeId, KeepsEscapedSeparatorsDoubled) {
  EXPECT_EQ(NodeId(u"x//y").ustring(), u"x//y");
  EXPECT_EQ(NodeId(u"a////b").ustring(), u"a////b");
}

TEST(NodeId, RejectsInvalidTextWithInvalidNodeId) {
  for (const ustring text : {u"", u"a/b", u"/a", u"a/", u"a//", u"a///b", u"/"}) {
    EXPECT_TRUE(throws_error([&] { NodeId id(text); }, ErrorId::InvalidNodeId, {text_arg(text)}))
        << krel::ustring_to_utf8_string(text);
  }
}

TEST(NodeId, ErrorCarriesTheTextBeforeCleaning) {
  EXPECT_TRUE(
      throws_error([] { NodeId id(u"a\t/b"); }, ErrorId::InvalidNodeId, {text_arg(u"a\t/b")}));
}

TEST(NodeId, MakeAcceptsExactlyWhatTheConstructorAccepts) {
  const std::vector<ustring> texts = {u"",    u"a",    u"a b",    u"/a",     u"a/",
                                      u"a/b", u"a//b", u"a//",    u"a///b",  u"x\ty",
                                      u"//",  u"/",    u"\u00fc", u"a////b", u" "};
  for (const ustring& text : texts) {
    const auto made = NodeId::make(text);
    EXPECT_EQ(made.has_value(), is_node_id(text)) << krel::ustring_to_utf8_string(text);
    bool threw = false;
    try {
      const NodeId built(text);
      ASSERT_TRUE(made.has_value());
      EXPECT_EQ(made->ustring(), built.ustring());
    } catch (const krel::MessageException&) {
      threw = true;
    }
    EXPECT_EQ(threw, !made.has_value()) << krel::ustring_to_utf8_string(text);
  }
}

TEST(NodeId, CopySharesTheRecord) {
  const NodeId a(u"mass");
  const NodeId b = a;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_TRUE(a.shares_record_with(b));
  EXPECT_EQ(&a.ustring(), &b.ustring());
}

TEST(NodeId, SeparatelyBuiltIdsDoNotShareButCompareEqualByText) {
  const NodeId a(u"mass");
  const NodeId b(u"mass");
  EXPECT_FALSE(a.shares_record_with(b));
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a != b);
}

TEST(NodeId, EqualityIsCaseSensitiveAndComparesEscapesAsStored) {
  EXPECT_NE(NodeId(u"Mass"), NodeId(u"mass"));
  EXPECT_NE(NodeId(u"a//b"), NodeId(u"a////b"));
  EXPECT_NE(NodeId(u"ab"), NodeId(u"abc"));
  // Cleaning happens before comparison: a tab and a space give equal ids.
  EXPECT_EQ(NodeId(u"a\tb"), NodeId(u"a b"));
}

TEST(NodeId, MoveHandsTheRecordOverAndLeavesNoText) {
  NodeId a(u"mass");
  const ustring* const text = &a.ustring();
  const NodeId b = std::move(a);
  EXPECT_EQ(&b.ustring(), text);  // the same record, not a copy
  // Before moves took the record over, a moved-from identifier kept sharing
  // it, so every vector of identifiers that grew paid an atomic increment and
  // decrement per identifier.
  EXPECT_TRUE(a.ustring().empty());  // NOLINT(bugprone-use-after-move): the contract
  EXPECT_FALSE(a.shares_record_with(b));
}

TEST(NodeId, MovedFromIdComparesHashesAndTakesAssignment) {
  NodeId a(u"mass");
  NodeId c(u"other");
  const NodeId b = std::move(a);
  const NodeId d = std::move(c);
  // NOLINTBEGIN(bugprone-use-after-move): the contract
  EXPECT_TRUE(a == c);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a < b);
  EXPECT_EQ(std::hash<NodeId>{}(a), std::hash<NodeId>{}(c));
  a = b;
  EXPECT_TRUE(a.shares_record_with(b));
  c = NodeId(u"again");
  EXPECT_EQ(c.ustring(), u"again");
  // NOLINTEND(bugprone-use-after-move)
  EXPECT_EQ(d.ustring(), u"other");
}

TEST(NodeId, MoveAssignmentTakesTheRecordAndReleasesItsOwn) {
  NodeId a(u"a");
  NodeId b(u"b");
  const ustring* const text = &b.ustring();
  a = std::move(b);
  EXPECT_EQ(&a.ustring(), text);
  EXPECT_EQ(a.ustring(), u"b");
}

TEST(NodeId, AssignmentSharesTheSourceRecord) {
  NodeId a(u"a");
  const NodeId b(u"b");
  a = b;
  EXPECT_TRUE(a.shares_record_with(b));
  EXPECT_EQ(a.ustring(), u"b");
}

// Three-valued order as value_checks.h expects it: 0 equal, 1 less, 2 greater.
int three_way(const NodeId& a, const NodeId& b) {
  const auto c = a <=> b;
  return c == 0 ? 0 : (c < 0 ? 1 : 2);
}

std::size_t std_hash(const NodeId& id) {
  return std::hash<NodeId>{}(id);
}

TEST(NodeId, OrderEqualityAndHashAgree) {
  const auto check = [](const ustring& a, const ustring& b, int expected) {
    SCOPED_TRACE(krel::ustring_to_utf8_string(a) + " vs " + krel::ustring_to_utf8_string(b));
    test_support::expect_consistent(NodeId(a), NodeId(b), expected, three_way, std_hash);
  };
  check(u"mass", u"mass", 0);
  check(u"a\tb", u"a b", 0);  // cleaned before comparing
  check(u"a", u"b", 1);
  check(u"ab", u"abc", 1);  // a prefix first
  check(u"b", u"abc", 2);
  check(u"Mass", u"mass", 1);    // by code unit, no case folding
  check(u"a//b", u"a////b", 2);  // "b" after "/"
  // Code units compare as unsigned numbers: U+E000 and a lone surrogate sort
  // after every ASCII letter.
  check(u"\uE000", u"z", 2);
  check(u"\xD800", u"\uE000", 1);
}

TEST(NodeId, CopiesCompareEqualWithoutLookingAtTheText) {
  const NodeId a(u"mass");
  const NodeId b = a;  // NOLINT(performance-unnecessary-copy-initialization)
  test_support::expect_consistent(a, b, 0, three_way, std_hash);
}

TEST(NodeId, BoostHashFindsHashValue) {
  const NodeId id(u"Body//Frame");
  EXPECT_EQ(boost::hash<NodeId>{}(id), hash_value(id));
  EXPECT_EQ(std_hash(id), hash_value(id));
  boost::unordered_set<NodeId> ids{NodeId(u"a"), NodeId(u"b"), NodeId(u"a")};
  EXPECT_EQ(ids.size(), 2u);
  EXPECT_TRUE(ids.contains(NodeId(u"b")));
}

TEST(NodeId, KeysStandardContainers) {
  std::map<NodeId, int> ordered{{NodeId(u"b"), 2}, {NodeId(u"a"), 1}};
  EXPECT_EQ(ordered.begin()->first.ustring(), u"a");
  std::unordered_set<NodeId> unordered{NodeId(u"x"), NodeId(u"x"), NodeId(u"y")};
  EXPECT_EQ(unordered.size(), 2u);
}

TEST(NodeId, StreamsItsTextInTheLocalEncoding) {
  std::ostringstream os;
  os << NodeId(u"Body//Frame\tx");
  EXPECT_EQ(os.str(), "Body//Frame x");
}

static_assert(!std::is_default_constructible_v<NodeId>, "a NodeId always holds text");
static_assert(!std::is_convertible_v<ustring, NodeId>,
              "building a NodeId checks, so it is explicit");
static_assert(std::is_nothrow_copy_constructible_v<NodeId>);
static_assert(std::is_nothrow_move_constructible_v<NodeId>);
static_assert(std::is_nothrow_move_assignable_v<NodeId>);

}  // namespace
