#include "ui/core/node_path.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <boost/container_hash/hash.hpp>
#include <boost/unordered_set.hpp>

#include "alloc_counter.h"
#include "expect_error.h"
#include "value_checks.h"

namespace {

using namespace ui::core;
using test_support::text_arg;
using test_support::throws_error;

std::vector<ustring> texts_of(const NodePathBase& path) {
  std::vector<ustring> texts;
  for (const NodeId& id : std::as_const(path)) texts.push_back(id.ustring());
  return texts;
}

std::string utf8(const ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

// ---------------------------------------------------------------- parsing

TEST(NodePath, EmptyTextParsesToEmptyPath) {
  const NodePath p(u"");
  EXPECT_TRUE(p.empty());
  EXPECT_EQ(p.size(), 0u);
  EXPECT_EQ(p.ustring(), u"");
}

TEST(NodePath, SeparatorSplitsTextIntoIdentifiers) {
  const NodePath p(u"a/b");
  EXPECT_EQ(texts_of(p), (std::vector<ustring>{u"a", u"b"}));
  EXPECT_EQ(texts_of(NodePath(u"x/y z/w")), (std::vector<ustring>{u"x", u"y z", u"w"}));
}

TEST(NodePath, EscapedSeparatorStaysInOneIdentifier) {
  const NodePath p(u"a//b");
  ASSERT_EQ(p.size(), 1u);
  EXPECT_EQ(p.front().ustring(), u"a//b");
}

TEST(NodePath, SplitsBodyFrameMassIntoTwoIdentifiers) {
  const NodePath1 p(u"Body//Frame/mass");
  EXPECT_EQ(texts_of(p), (std::vector<ustring>{u"Body//Frame", u"mass"}));
}

TEST(NodePath, RejectsSeparatorAtEitherEndWithInvalidNodePath) {
  for (const ustring text : {u"/a", u"a/", u"/", u"a/b/", u"//a", u"//"}) {
    EXPECT_TRUE(throws_error([&] { NodePath p(text); }, ErrorId::InvalidNodePath, {text_arg(text)}))
        << utf8(text);
  }
}

TEST(NodePath, TripleSlashFailsOnTheLeftPieceWithInvalidNodeId) {
  // Pairs are taken from the left, so the first piece of "a///b" is "a//",
  // which ends with "/".
  EXPECT_TRUE(
      throws_error([] { NodePath p(u"a///b"); }, ErrorId::InvalidNodeId, {text_arg(u"a//")}));
}

TEST(NodePath, TextEndingInAnEscapePassesTheTextCheckButNotTheIdentifierCheck) {
  EXPECT_TRUE(is_node_path(u"a//"));
  EXPECT_TRUE(throws_error([] { NodePath p(u"a//"); }, ErrorId::InvalidNodeId, {text_arg(u"a//")}));
  EXPECT_TRUE(
      throws_error([] { NodePath p(u"x/b//"); }, ErrorId::InvalidNodeId, {text_arg(u"b//")}));
  EXPECT_TRUE(
      throws_error([] { NodePath p(u"a///"); }, ErrorId::InvalidNodeId, {text_arg(u"a//")}));
}

TEST(NodePath, WhiteSpaceIsCleanedPerIdentifier) {
  EXPECT_EQ(texts_of(NodePath(u"a\tb/\nc")), (std::vector<ustring>{u"a b", u" c"}));
}

TEST(NodePath, InvalidPieceErrorCarriesThePieceBeforeCleaning) {
  EXPECT_TRUE(throws_error([] { NodePath p(u"x\ty/a\t///b"); }, ErrorId::InvalidNodeId,
                           {text_arg(u"a\t//")}));
}

TEST(NodePath, FirstInvalidPieceIsTheOneReported) {
  EXPECT_TRUE(throws_error([] { NodePath p(u"ok/a///b/c///d"); }, ErrorId::InvalidNodeId,
                           {text_arg(u"a//")}));
}

TEST(NodePath, MakeAcceptsExactlyWhatTheConstructorAccepts) {
  const std::vector<ustring> texts = {u"",      u"a",      u"a/b",   u"a//b",  u"/a",
                                      u"a/",    u"/",      u"a//",   u"a///b", u"a b/c",
                                      u"a/b/c", u"a////b", u"x\t/y", u"//",    u"a/b//"};
  for (const ustring& text : texts) {
    bool threw = false;
    std::optional<NodePath> built;
    try {
      built.emplace(text);
    } catch (const krel::MessageException&) {
      threw = true;
    }
    const auto made = NodePath::make(text);
    EXPECT_EQ(made.has_value(), !threw) << utf8(text);
    if (made && built) {
      EXPECT_EQ(*made, *built) << utf8(text);
    }

    bool threw1 = false;
    try {
      const NodePath1 p1(text);
    } catch (const krel::MessageException&) {
      threw1 = true;
    }
    EXPECT_EQ(NodePath1::make(text).has_value(), !threw1) << utf8(text);
  }
}

TEST(NodePath, BuildsFromIdentifiersAndSharesTheirRecords) {
  const NodeId a(u"a");
  const NodeId b(u"b//c");
  const NodePath p(std::vector<NodeId>{a, b});
  EXPECT_EQ(p.ustring(), u"a/b//c");
  EXPECT_TRUE(p.front().shares_record_with(a));
  EXPECT_TRUE(p.back().shares_record_with(b));

  const NodePath one(a);
  ASSERT_EQ(one.size(), 1u);
  EXPECT_TRUE(one.front().shares_record_with(a));
}

// ---------------------------------------------------------------- text form

TEST(NodePath, TextFormJoinsIdentifiersWithSeparator) {
  NodePath p;
  EXPECT_EQ(p.ustring(), u"");
  p.push_back(NodeId(u"Body//Frame"));
  EXPECT_EQ(p.ustring(), u"Body//Frame");
  p.push_back(NodeId(u"mass"));
  EXPECT_EQ(p.ustring(), u"Body//Frame/mass");
}

TEST(NodePath, StreamsItsTextForm) {
  std::ostringstream os;
  os << NodePath(u"a//b/c\td") << '|' << NodePath();
  EXPECT_EQ(os.str(), "a//b/c d|");
}

// The text forms of generated paths parse back to the same path. Identifiers
// are made of letters, white space, punctuation, a non-ASCII letter and
// escaped separators, so every rule of the grammar is exercised.
TEST(NodePathProperty, TextFormOfGeneratedPathParsesToEqualPath) {
  std::mt19937 rng(20240611u);
  const std::u16string inner = u"ab Z\t.,\\-\u00fc\n";
  auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
  };
  for (int round = 0; round < 2000; ++round) {
    std::vector<ustring> generated;
    const std::size_t count = pick(6);
    for (std::size_t i = 0; i < count; ++i) {
      // An identifier starts and ends with a non-"/" character; in between,
      // characters and escaped separators.
      ustring id(1, inner[pick(inner.size())]);
      const std::size_t middle = pick(5);
      for (std::size_t k = 0; k < middle; ++k) {
        if (pick(3) == 0) {
          id += u"//";
        } else {
          id += inner[pick(inner.size())];
        }
      }
      if (id.back() == u'/') id += inner[pick(inner.size())];
      generated.push_back(id);
    }
    ustring text;
    for (std::size_t i = 0; i < generated.size(); ++i) text += (i ? u"/" : u"") + generated[i];

    ASSERT_TRUE(is_node_path(text)) << utf8(text);
    const NodePath p(text);
    ASSERT_EQ(p.size(), generated.size()) << utf8(text);
    for (std::size_t i = 0; i < generated.size(); ++i) {
      EXPECT_EQ(p.ids()[i].ustring(), clean_white_space(generated[i])) << utf8(text);
    }
    EXPECT_EQ(p.ustring(), clean_white_space(text)) << utf8(text);
    EXPECT_EQ(NodePath(p.ustring()), p) << utf8(text);
  }
}

// Arbitrary short texts over "a", "/", " " and tab either parse and round
// trip, or fail with the message the grammar predicts.
TEST(NodePathProperty, ArbitraryTextParsesOrFailsWithThePredictedMessage) {
  std::mt19937 rng(7u);
  const std::u16string alphabet = u"a/ \t";
  for (int round = 0; round < 3000; ++round) {
    const std::size_t length = std::uniform_int_distribution<std::size_t>(0, 8)(rng);
    ustring text;
    for (std::size_t i = 0; i < length; ++i) {
      text += alphabet[std::uniform_int_distribution<std::size_t>(0, alphabet.size() - 1)(rng)];
    }
    const auto made = NodePath::make(text);
    try {
      const NodePath p(text);
      ASSERT_TRUE(made.has_value()) << utf8(text);
      EXPECT_EQ(*made, p);
      EXPECT_EQ(p.ustring(), clean_white_space(text)) << utf8(text);
      EXPECT_EQ(NodePath(p.ustring()), p) << utf8(text);
    } catch (const krel::MessageException& e) {
      EXPECT_FALSE(made.has_value()) << utf8(text);
      if (!is_node_path(text)) {
        EXPECT_TRUE(is_error(e, ErrorId::InvalidNodePath)) << utf8(text);
      } else {
        ASSERT_TRUE(is_error(e, ErrorId::InvalidNodeId)) << utf8(text);
        const auto& args = e.message().id().arguments;
        ASSERT_EQ(args.size(), 1u);
        const ustring& piece = std::get<2>(args[0]);
        EXPECT_FALSE(is_node_id(piece)) << utf8(text);
        EXPECT_NE(text.find(piece), ustring::npos) << utf8(text);
      }
    }
  }
}

// ---------------------------------------------------------------- access

TEST(NodePath, IteratesFirstToLastAndLastToFirst) {
  const NodePath p(u"a/b/c");
  std::vector<ustring> forward;
  for (auto it = p.begin(); it != p.end(); ++it) forward.push_back(it->ustring());
  std::vector<ustring> backward;
  for (auto it = p.rbegin(); it != p.rend(); ++it) backward.push_back(it->ustring());
  EXPECT_EQ(forward, (std::vector<ustring>{u"a", u"b", u"c"}));
  EXPECT_EQ(backward, (std::vector<ustring>{u"c", u"b", u"a"}));
  EXPECT_EQ(p.front().ustring(), u"a");
  EXPECT_EQ(p.back().ustring(), u"c");
  EXPECT_EQ(p.cend() - p.cbegin(), 3);
}

TEST(NodePath, NonConstIteratorsCanReplaceIdentifiers) {
  NodePath p(u"a/b/c");
  *p.begin() = NodeId(u"x");
  *p.rbegin() = NodeId(u"z");
  EXPECT_EQ(p.ustring(), u"x/b/z");
  p.front() = NodeId(u"first");
  p.back() = NodeId(u"last");
  EXPECT_EQ(p.ustring(), u"first/b/last");
}

TEST(NodePath, EqualityComparesIdentifiersElementWise) {
  EXPECT_EQ(NodePath(u"a/b"), NodePath(u"a/b"));
  EXPECT_NE(NodePath(u"a/b"), NodePath(u"a/c"));
  EXPECT_NE(NodePath(u"a/b"), NodePath(u"a"));
  EXPECT_NE(NodePath(u"a//b"), NodePath(u"a/b"));
  EXPECT_EQ(NodePath(), NodePath(u""));
  EXPECT_EQ(NodePath(u"a\tb"), NodePath(u"a b"));
  EXPECT_EQ(NodePath1(u"a/b"), NodePath(u"a/b"));
}

// ---------------------------------------------------------------- sharing

TEST(NodePath, CopySharesStorage) {
  const NodePath p(u"a/b");
  const NodePath q = p;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_TRUE(q.shares_storage_with(p));
  EXPECT_TRUE(q.front().shares_record_with(p.front()));
}

TEST(NodePath, ChangingACopyLeavesTheOriginalUnchanged) {
  const NodePath p(u"a/b");
  NodePath q = p;
  q.push_back(NodeId(u"c"));
  EXPECT_FALSE(q.shares_storage_with(p));
  EXPECT_EQ(p.ustring(), u"a/b");
  EXPECT_EQ(q.ustring(), u"a/b/c");
  // The copy's identifiers still share records with the original's.
  EXPECT_TRUE(q.front().shares_record_with(p.front()));
}

TEST(NodePath, ConstAccessorsNeverDetach) {
  const NodePath p(u"a/b/c");
  const NodePath q = p;
  const long allocations = alloc_counter::total();
  std::size_t seen = q.ids().size() + q.size() + (q.empty() ? 1 : 0);
  seen += static_cast<std::size_t>(q.end() - q.begin());
  seen += static_cast<std::size_t>(q.rend() - q.rbegin());
  seen += static_cast<std::size_t>(q.cend() - q.cbegin());
  seen += q.front().ustring().size() + q.back().ustring().size();
  if (alloc_counter::counting()) {
    EXPECT_EQ(alloc_counter::total(), allocations);
  }
  EXPECT_EQ(seen, 3u + 3u + 3u + 3u + 3u + 2u);
  EXPECT_TRUE(q.shares_storage_with(p));
}

TEST(NodePath, EveryNonConstAccessorDetachesASharedRecord) {
  const std::vector<std::pair<const char*, std::function<void(NodePath&)>>> accessors = {
      {"ids", [](NodePath& p) { (void)p.ids(); }},
      {"begin", [](NodePath& p) { (void)p.begin(); }},
      {"end", [](NodePath& p) { (void)p.end(); }},
      {"rbegin", [](NodePath& p) { (void)p.rbegin(); }},
      {"rend", [](NodePath& p) { (void)p.rend(); }},
      {"front", [](NodePath& p) { (void)p.front(); }},
      {"back", [](NodePath& p) { (void)p.back(); }},
      {"push_back", [](NodePath& p) { p.push_back(NodeId(u"z")); }},
  };
  for (const auto& [name, access] : accessors) {
    const NodePath original(u"a/b");
    NodePath copy = original;
    access(copy);
    EXPECT_FALSE(copy.shares_storage_with(original)) << name;
    EXPECT_EQ(original.ustring(), u"a/b") << name;
    EXPECT_EQ(texts_of(copy).front(), u"a") << name;
  }
}

TEST(NodePath, NonConstAccessOnSoleOwnerWritesInPlace) {
  NodePath p(u"a/b");
  const std::vector<NodeId>* record = &std::as_const(p).ids();
  (void)p.begin();
  p.push_back(NodeId(u"c"));
  EXPECT_EQ(&std::as_const(p).ids(), record);
}

TEST(NodePath, EmptyPathsShareOneRecordAndNeverAllocate) {
  const long allocations = alloc_counter::total();
  const NodePath a;
  const NodePath b(u"");
  const NodePath c(std::vector<NodeId>{});
  const NodePath d = a;  // NOLINT(performance-unnecessary-copy-initialization)
  const bool all_empty = a.empty() && b.empty() && c.empty() && d.empty();
  const ustring text = a.ustring();
  if (alloc_counter::counting()) {
    EXPECT_EQ(alloc_counter::total(), allocations);
  }
  EXPECT_TRUE(all_empty);
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(a.shares_storage_with(b));
  EXPECT_TRUE(a.shares_storage_with(c));
  EXPECT_TRUE(a.shares_storage_with(d));
}

TEST(NodePath, ChangingAnEmptyPathLeavesOtherEmptyPathsEmpty) {
  NodePath a;
  a.push_back(NodeId(u"x"));
  const NodePath b;
  EXPECT_TRUE(b.empty());
  EXPECT_FALSE(a.shares_storage_with(b));
  EXPECT_EQ(a.ustring(), u"x");
}

TEST(NodePath, MovedFromPathIsEmpty) {
  NodePath a(u"a/b");
  const NodePath b = std::move(a);
  EXPECT_EQ(b.ustring(), u"a/b");
  EXPECT_TRUE(a.empty());  // NOLINT(bugprone-use-after-move): the contract
  EXPECT_TRUE(a.shares_storage_with(NodePath()));
}

// ---------------------------------------------------------------- concatenation

TEST(NodePath, PlusEqualsAppendsTheOtherPathInOrder) {
  NodePath p(u"a/b");
  p += NodePath(u"c//d/e");
  EXPECT_EQ(texts_of(p), (std::vector<ustring>{u"a", u"b", u"c//d", u"e"}));
}

TEST(NodePath, PlusEqualsOfEmptyPathChangesNothing) {
  NodePath p(u"a/b");
  const NodePath copy = p;
  p += NodePath();
  EXPECT_EQ(p.ustring(), u"a/b");
  EXPECT_TRUE(p.shares_storage_with(copy));  // not even a detach
}

TEST(NodePath, PlusEqualsOnEmptyPathTakesAShareOfTheOther) {
  NodePath p;
  const NodePath other(u"x/y");
  p += other;
  EXPECT_TRUE(p.shares_storage_with(other));
  EXPECT_EQ(p.ustring(), u"x/y");
  // The share is copy-on-write like any other.
  p.push_back(NodeId(u"z"));
  EXPECT_EQ(other.ustring(), u"x/y");
}

TEST(NodePath, PlusEqualsDetachesASharedPathFirst) {
  NodePath p(u"a");
  const NodePath before = p;
  p += NodePath(u"b");
  EXPECT_EQ(before.ustring(), u"a");
  EXPECT_EQ(p.ustring(), u"a/b");
  EXPECT_FALSE(p.shares_storage_with(before));
}

TEST(NodePath, AppendingAPathToItselfDoublesIt) {
  NodePath p(u"a/b");
  p += p;
  EXPECT_EQ(p.ustring(), u"a/b/a/b");
  NodePath q(u"c");
  const NodePath alias = q;
  q += alias;
  EXPECT_EQ(q.ustring(), u"c/c");
  EXPECT_EQ(alias.ustring(), u"c");
}

TEST(NodePath, PlusLeavesItsOperandsUnchanged) {
  const NodePath a(u"a");
  const NodePath1 b(u"b/c");
  const NodePath sum = a + b;
  EXPECT_EQ(sum.ustring(), u"a/b/c");
  EXPECT_EQ(a.ustring(), u"a");
  EXPECT_EQ(b.ustring(), u"b/c");
  static_assert(std::is_same_v<decltype(a + b), NodePath>);
}

// ---------------------------------------------------------------- NodePath1

TEST(NodePath1, RejectsEmptyTextWithInvalidNodePath1) {
  EXPECT_TRUE(throws_error([] { NodePath1 p(u""); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
}

TEST(NodePath1, RejectsBadTextWithTheParserMessage) {
  EXPECT_TRUE(
      throws_error([] { NodePath1 p(u"/mass"); }, ErrorId::InvalidNodePath, {text_arg(u"/mass")}));
  EXPECT_TRUE(
      throws_error([] { NodePath1 p(u"a///b"); }, ErrorId::InvalidNodeId, {text_arg(u"a//")}));
}

TEST(NodePath1, RejectsEmptyIdentifierList) {
  EXPECT_TRUE(throws_error([] { NodePath1 p(std::vector<NodeId>{}); }, ErrorId::InvalidNodePath1,
                           {text_arg(u"")}));
}

TEST(NodePath1, TakesOverANodePathWithoutCopyingIt) {
  const NodePath path(u"a/b");
  const NodePath1 p1(path);
  EXPECT_TRUE(p1.shares_storage_with(path));
  EXPECT_EQ(p1.ustring(), u"a/b");

  NodePath moved(u"c");
  const NodePath keep = moved;
  const NodePath1 q1(std::move(moved));
  EXPECT_TRUE(q1.shares_storage_with(keep));
}

TEST(NodePath1, TakingOverAnEmptyNodePathThrowsInvalidNodePath1) {
  EXPECT_TRUE(
      throws_error([] { NodePath1 p(NodePath{}); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
}

TEST(NodePath1, CheckReportsTheTextFormOfAnEmptiedPath) {
  NodePath1 p(u"a");
  p.ids().clear();
  EXPECT_TRUE(throws_error([&] { p.check_(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
}

TEST(NodePath1, CheckAcceptsANonEmptyPath) {
  const NodePath1 p(NodeId(u"a"));
  EXPECT_NO_THROW(p.check_());
  EXPECT_EQ(p.size(), 1u);
}

TEST(NodePath1, MoveHandsTheRecordOverAndLeavesAnEmptyPath) {
  NodePath1 a(u"a/b");
  const NodePath1 keep = a;
  const NodePath1 b = std::move(a);
  EXPECT_TRUE(b.shares_storage_with(keep));
  // Before, a move copied the handle, so `p = std::move(p) + q` shared the
  // record it appended to and copied the whole path on every append.
  // NOLINTBEGIN(bugprone-use-after-move): the contract
  EXPECT_TRUE(a.empty());
  EXPECT_TRUE(throws_error([&] { a.check_(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  a = b;
  EXPECT_EQ(a.ustring(), u"a/b");
  // NOLINTEND(bugprone-use-after-move)
}

TEST(NodePath1, FrontAndBackOfAnEmptiedPathThrowInvalidNodePath1) {
  // An emptied NodePath1 used to reach the vector's front() and back() on no
  // element: undefined behaviour, a crash in a release build.
  NodePath1 p(u"a/b");
  p.ids().clear();
  const NodePath1& view = p;
  EXPECT_TRUE(
      throws_error([&] { (void)view.front(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  EXPECT_TRUE(throws_error([&] { (void)view.back(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  EXPECT_TRUE(throws_error([&] { (void)p.front(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  EXPECT_TRUE(throws_error([&] { (void)p.back(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  NodePath1 moved(u"c");
  const NodePath1 taker = std::move(moved);
  // NOLINTNEXTLINE(bugprone-use-after-move): the contract
  EXPECT_TRUE(
      throws_error([&] { (void)moved.back(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  EXPECT_EQ(taker.back().ustring(), u"c");
}

TEST(NodePath, FrontAndBackOfAnEmptyPathThrowInvalidNodePath1) {
  const NodePath p;
  EXPECT_TRUE(throws_error([&] { (void)p.front(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
  EXPECT_TRUE(throws_error([&] { (void)p.back(); }, ErrorId::InvalidNodePath1, {text_arg(u"")}));
}

TEST(NodePath1, PlusEqualsAndPlusKeepTheTypeAndAppend) {
  NodePath1 p(u"a");
  p += NodePath();
  EXPECT_EQ(p.ustring(), u"a");
  p += NodePath(u"b");
  EXPECT_EQ(p.ustring(), u"a/b");
  const NodePath1 q = p + NodePath1(u"c");
  EXPECT_EQ(q.ustring(), u"a/b/c");
  EXPECT_EQ(p.ustring(), u"a/b");
  static_assert(std::is_same_v<decltype(p + NodePath()), NodePath1>);
}

static_assert(!std::is_default_constructible_v<NodePath1>, "a NodePath1 is never empty");
static_assert(!std::is_convertible_v<ustring, NodePath>, "parsing is explicit");
static_assert(!std::is_convertible_v<NodePath, NodePath1>, "taking over a path checks it");
static_assert(std::is_nothrow_default_constructible_v<NodePath>);
static_assert(std::is_nothrow_copy_constructible_v<NodePath1>);
static_assert(std::is_nothrow_move_constructible_v<NodePath>);
static_assert(std::is_nothrow_move_assignable_v<NodePath>);
static_assert(std::is_nothrow_move_constructible_v<NodePath1>);
static_assert(std::is_nothrow_move_assignable_v<NodePath1>);

// ---------------------------------------------------------------- growth

// Allocations made while appending a path of one identifier `n` times in the
// way `append` does.
template <class Path, class Append>
long allocations_for_appends(Path start, std::size_t n, Append append) {
  const NodePath one(u"signal");
  const long before = alloc_counter::total();
  for (std::size_t i = 0; i < n; ++i) append(start, one);
  const long allocations = alloc_counter::total() - before;
  EXPECT_EQ(start.size(), n + 1);
  return allocations;
}

TEST(NodePath, AppendingOneIdentifierAtATimeGrowsGeometrically) {
  if (!alloc_counter::counting()) GTEST_SKIP() << "allocations are not counted";
  // Appending reserved room for exactly the new length, so every append
  // allocated and copied the whole path: 80,000 appends took half a minute.
  // Growing to at least twice the room makes the allocations logarithmic in
  // the number of appends (here at most 2 * log2(4096) + a few).
  constexpr std::size_t n = 4096;
  const long limit = 30;
  EXPECT_LE(allocations_for_appends(NodePath(u"first"), n,
                                    [](NodePath& p, const NodePath& one) { p += one; }),
            limit);
  EXPECT_LE(
      allocations_for_appends(NodePath(u"first"), n,
                              [](NodePath& p, const NodePath& one) { p = std::move(p) + one; }),
      limit);
  EXPECT_LE(allocations_for_appends(NodePath1(u"first"), n,
                                    [](NodePath1& p, const NodePath& one) { p += one; }),
            limit);
  EXPECT_LE(
      allocations_for_appends(NodePath1(u"first"), n,
                              [](NodePath1& p, const NodePath& one) { p = std::move(p) + one; }),
      limit);
  EXPECT_LE(
      allocations_for_appends(NodePath(u"first"), n,
                              [](NodePath& p, const NodePath& one) { p.push_back(one.front()); }),
      limit);
}

TEST(NodePath, AppendingToAPathThatSharesItsRecordStillCopiesFirst) {
  NodePath p(u"a");
  for (int i = 0; i < 5; ++i) p += NodePath(u"b");  // room to spare now
  const NodePath copy = p;
  p += NodePath(u"c");
  EXPECT_EQ(copy.ustring(), u"a/b/b/b/b/b");
  EXPECT_EQ(p.ustring(), u"a/b/b/b/b/b/c");
  p += p;
  EXPECT_EQ(p.size(), 14u);
  EXPECT_EQ(p.back().ustring(), u"c");
}

// ---------------------------------------------------------------- memory

// The text of a path of `count` identifiers whose last one is `last`.
ustring path_text_ending_in(std::size_t count, const ustring& last) {
  ustring text;
  for (std::size_t i = 0; i + 1 < count; ++i) {
    text += u"segment_";
    for (const char c : std::to_string(i)) text += static_cast<char16_t>(c);
    text += u'/';
  }
  return text + last;
}

TEST(NodePath, IdentifierKeptFromAParsedPathHoldsOnlyItsOwnMemory) {
  if (!alloc_counter::counting()) GTEST_SKIP() << "allocations are not counted";
  // All records of a parsed path used to live in one block that only the
  // last of its identifiers freed: keeping one identifier of a path of ten
  // kept 568 bytes instead of 72, and of a path of a million, all of it.
  for (const ustring last : {u"mass", u"a_longer_identifier", u"with\ttab"}) {
    long alone = 0;
    {
      const long before = alloc_counter::live_bytes();
      const NodeId id(last);
      alone = alloc_counter::live_bytes() - before;
    }
    for (const std::size_t count : {std::size_t{1}, std::size_t{10}, std::size_t{10000}}) {
      const ustring text = path_text_ending_in(count, last);
      const long before = alloc_counter::live_bytes();
      std::optional<NodeId> kept;
      {
        const NodePath p(text);
        kept.emplace(p.back());
      }
      const long held = alloc_counter::live_bytes() - before;
      EXPECT_LE(held, alone + 64) << utf8(last) << " of " << count << ": " << held << " bytes";
      kept.reset();
      EXPECT_EQ(alloc_counter::live_bytes(), before) << utf8(last) << " of " << count;
      // The figures, for the test report (--gtest_output=xml); recorded after
      // the counts, since recording allocates.
      RecordProperty(utf8(last) + "_of_" + std::to_string(count) + "_kept_bytes",
                     std::to_string(held) + " (alone: " + std::to_string(alone) + ")");
    }
  }
}

// ---------------------------------------------------------------- order and hash

int three_way(const NodePathBase& a, const NodePathBase& b) {
  const auto c = a <=> b;
  return c == 0 ? 0 : (c < 0 ? 1 : 2);
}

std::size_t std_hash(const NodePathBase& p) {
  return std::hash<NodePathBase>{}(p);
}

TEST(NodePath, OrderEqualityAndHashAgree) {
  const auto check = [](const ustring& a, const ustring& b, int expected) {
    SCOPED_TRACE(utf8(a) + " vs " + utf8(b));
    test_support::expect_consistent(NodePath(a), NodePath(b), expected, three_way, std_hash);
  };
  check(u"a/b", u"a/b", 0);
  check(u"a\tb/c", u"a b/c", 0);
  check(u"", u"", 0);
  check(u"", u"a", 1);     // the empty path first
  check(u"a", u"a/b", 1);  // a prefix first
  check(u"a/b", u"a/c", 1);
  check(u"a/c", u"a/b/z", 2);
  check(u"a//b", u"a/b", 2);  // "a//b" is one identifier, after "a"
  check(u"B/a", u"a/a", 1);
  const NodePath p(u"x/y");
  const NodePath copy = p;  // NOLINT(performance-unnecessary-copy-initialization)
  test_support::expect_consistent(p, copy, 0, three_way, std_hash);
}

TEST(NodePath, EveryPathTypeHashesAlikeWithStdAndBoost) {
  const NodePath p(u"Body//Frame/mass");
  const NodePath1 p1(u"Body//Frame/mass");
  const std::size_t h = hash_value(p);
  EXPECT_EQ(std::hash<NodePath>{}(p), h);
  EXPECT_EQ(std::hash<NodePath1>{}(p1), h);
  EXPECT_EQ(std::hash<NodePathBase>{}(p1), h);
  EXPECT_EQ(boost::hash<NodePath>{}(p), h);
  EXPECT_EQ(boost::hash<NodePath1>{}(p1), h);
  EXPECT_EQ(boost::hash<NodePathBase>{}(p), h);
  EXPECT_NE(hash_value(NodePath(u"mass/Body//Frame")), h);  // the order counts
}

TEST(NodePath, KeysStandardAndBoostContainers) {
  std::map<NodePath, int> ordered{{NodePath(u"b"), 3}, {NodePath(u"a/b"), 2}, {NodePath(u"a"), 1}};
  std::vector<ustring> order;
  for (const auto& [path, value] : ordered) order.push_back(path.ustring());
  EXPECT_EQ(order, (std::vector<ustring>{u"a", u"a/b", u"b"}));
  std::set<NodePath1> ones{NodePath1(u"z"), NodePath1(u"z"), NodePath1(u"y")};
  EXPECT_EQ(ones.size(), 2u);

  std::unordered_map<NodePath, int> by_path{{NodePath(u"a/b"), 1}};
  EXPECT_EQ(by_path.count(NodePath(u"a/b")), 1u);
  std::unordered_set<NodePath1> unordered{NodePath1(u"a/b"), NodePath1(u"a/b")};
  EXPECT_EQ(unordered.size(), 1u);
  boost::unordered_set<NodePath> boost_set{NodePath(u"a/b"), NodePath(u"a\tb"), NodePath(u"a b")};
  EXPECT_EQ(boost_set.size(), 2u);
}

// ---------------------------------------------------------------- relpath

TEST(Relpath, GivesTheRestAfterAPrefix) {
  const auto rest = relpath(NodePath(u"a/b/c"), NodePath(u"a/b"));
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(rest->ustring(), u"c");
}

TEST(Relpath, EqualPathsGiveTheEmptyPathAsAValue) {
  const auto rest = relpath(NodePath(u"a/b/c"), NodePath(u"a/b/c"));
  ASSERT_TRUE(rest.has_value());
  EXPECT_TRUE(rest->empty());
}

TEST(Relpath, EmptyBaseGivesTheWholePath) {
  const NodePath path(u"a/b/c");
  const auto rest = relpath(path, NodePath());
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(*rest, path);
  EXPECT_EQ(relpath(NodePath(), NodePath()), std::optional<NodePath>(NodePath()));
}

TEST(Relpath, NonPrefixGivesNoValue) {
  EXPECT_FALSE(relpath(NodePath(u"a/b/c"), NodePath(u"a/x")).has_value());
  EXPECT_FALSE(relpath(NodePath(u"a/b/c"), NodePath(u"a/b/c/d")).has_value());
  EXPECT_FALSE(relpath(NodePath(u"a/b/c"), NodePath(u"b")).has_value());
  EXPECT_FALSE(relpath(NodePath(), NodePath(u"a")).has_value());
}

TEST(Relpath, ComparesTextsCaseSensitivelyAndEscapesAsStored) {
  EXPECT_FALSE(relpath(NodePath(u"A/b"), NodePath(u"a")).has_value());
  EXPECT_FALSE(relpath(NodePath(u"a//b/c"), NodePath(u"a")).has_value());
  const auto rest = relpath(NodePath(u"a//b/c"), NodePath(u"a//b"));
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(rest->ustring(), u"c");
}

TEST(Relpath, MatchesIdentifiersBySharedRecordOrEqualText) {
  const NodeId a(u"a");
  const NodePath path(std::vector<NodeId>{a, NodeId(u"b")});
  // `base` holds the same record as `path` for "a".
  EXPECT_TRUE(relpath(path, NodePath(a)).has_value());
  // `base` holds a separately built "a".
  EXPECT_TRUE(relpath(path, NodePath(u"a")).has_value());
}

TEST(Relpath, ResultSharesTheIdentifiersOfThePath) {
  const NodePath path(u"a/b/c");
  const auto rest = relpath(path, NodePath(u"a"));
  ASSERT_TRUE(rest.has_value());
  EXPECT_TRUE(rest->front().shares_record_with(path.ids()[1]));
  EXPECT_TRUE(rest->back().shares_record_with(path.ids()[2]));
  EXPECT_FALSE(rest->shares_storage_with(path));
}

TEST(Relpath, LeavesItsArgumentsShared) {
  const NodePath1 path(u"a/b");
  const NodePath1 path_copy = path;
  const NodePath base(u"a");
  const NodePath base_copy = base;
  (void)relpath(path, base);
  EXPECT_TRUE(path.shares_storage_with(path_copy));
  EXPECT_TRUE(base.shares_storage_with(base_copy));
}

// ---------------------------------------------------------------- failures

TEST(NodePath, FailedParseLeavesTheTargetUnchanged) {
  NodePath p(u"a/b");
  const NodePath before = p;
  try {
    p = NodePath(u"c///d");
  } catch (const krel::MessageException&) {
  }
  EXPECT_TRUE(p.shares_storage_with(before));
  EXPECT_EQ(p.ustring(), u"a/b");

  NodePath1 p1(u"x");
  try {
    p1 = NodePath1(u"");
  } catch (const krel::MessageException&) {
  }
  EXPECT_EQ(p1.ustring(), u"x");
}

// Each allocation an operation makes is refused in turn; whenever the
// operation fails, the target must be exactly as before.
template <class Target, class Op>
void expect_unchanged_when_allocation_fails(const Target& start, Op op) {
  const ustring original = start.ustring();
  for (long allowed = 0;; ++allowed) {
    Target target = start;
    bool threw = false;
    {
      alloc_counter::FailAfter limit(allowed);
      try {
        op(target);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
    }
    if (!threw) break;
    ASSERT_EQ(target.ustring(), original) << "allocation " << allowed;
    ASSERT_LT(allowed, 100) << "the operation never succeeds";
  }
}

TEST(NodePath, FailedAllocationLeavesTheTargetUnchanged) {
  if (!alloc_counter::counting()) GTEST_SKIP() << "allocations cannot be made to fail here";
  const NodePath shared(u"a/b/c");
  const NodePath alias = shared;
  // Longer than the path it is appended to, so that growing one identifier at
  // a time would need more than one allocation and could stop half-way.
  const NodePath tail(u"d/e//f/g/h/i/j");
  expect_unchanged_when_allocation_fails(shared, [&](NodePath& p) { p += tail; });
  expect_unchanged_when_allocation_fails(shared, [&](NodePath& p) { p += p; });
  expect_unchanged_when_allocation_fails(shared, [&](NodePath& p) { p.push_back(NodeId(u"x")); });
  expect_unchanged_when_allocation_fails(shared, [&](NodePath& p) { p = NodePath(u"x/y/z"); });
  expect_unchanged_when_allocation_fails(NodePath(),
                                         [&](NodePath& p) { p.push_back(NodeId(u"x")); });
  expect_unchanged_when_allocation_fails(NodePath1(u"q"), [&](NodePath1& p) { p = p + tail; });
  EXPECT_EQ(alias.ustring(), u"a/b/c");
}

TEST(NodePath, ParseFailsCleanlyAtEveryAllocation) {
  if (!alloc_counter::counting()) GTEST_SKIP() << "allocations cannot be made to fail here";
  // Short and long identifiers: the long ones need storage of their own.
  const ustring text = u"a\tb/c//d/a_long_identifier/f/another long one";
  const long live = alloc_counter::live();
  const long before = alloc_counter::total();
  { const NodePath p(text); }
  const long allocations = alloc_counter::total() - before;
  int refusals = 0;
  for (long allowed = 0; allowed < 100; ++allowed) {
    bool done = false;
    {
      alloc_counter::FailAfter limit(allowed);
      try {
        const NodePath p(text);
        done = true;
      } catch (const std::bad_alloc&) {
      }
      if (limit.failed()) ++refusals;
    }
    if (done) break;
  }
  // Each allocation of the parse was refused once, and nothing leaked.
  EXPECT_GE(allocations, 3);
  EXPECT_EQ(refusals, allocations);
  EXPECT_EQ(alloc_counter::live(), live);
}

// ---------------------------------------------------------------- leaks

TEST(NodePath, LeakCounterReturnsToItsStartAfterEveryOperation) {
  if (!alloc_counter::counting()) GTEST_SKIP() << "the sanitizer checks for leaks here";
  // Throw the same message once first, so that whatever the message catalogue
  // keeps for the rest of the program is not counted as a leak.
  try {
    NodePath warm(u"ok/a///b");
  } catch (const krel::MessageException&) {
  }
  const long live = alloc_counter::live();
  {
    NodePath p(u"a/b//c");
    NodePath q = p;
    q.push_back(NodeId(u"d"));
    NodePath1 r(u"x");
    r += q;
    r += r;
    const NodePath s = p + r;
    const auto rest = relpath(s, p);
    const NodePath1 t(NodePath(u"m/n"));
    NodePath moved = std::move(q);
    moved += NodePath(u"e");
    EXPECT_TRUE(rest.has_value());
    try {
      NodePath bad(u"ok/a///b");
    } catch (const krel::MessageException&) {
    }
  }
  EXPECT_EQ(alloc_counter::live(), live);
}

// ---------------------------------------------------------------- threads

// Copies of one path are made, read, changed and destroyed on several threads
// at once. Under ThreadSanitizer this shows that the counts are ordered so
// that no record is freed or written while another thread reads it.
TEST(NodePathThreads, CopiesAreUsedAndDestroyedOnManyThreadsAtOnce) {
  const long live = alloc_counter::live();
  {
    const NodePath1 shared(u"Body//Frame/mass/x");
    const NodeId shared_id = shared.front();
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < 2000; ++i) {
          NodePath1 copy = shared;
          const NodePath1& view = copy;  // reads that keep the record shared
          const NodeId id = shared_id;
          if (view.size() != 3 || view.ustring() != u"Body//Frame/mass/x") ++mismatches;
          if (!(id == view.front()) || !view.shares_storage_with(shared)) ++mismatches;
          if ((i + t) % 5 == 0) {
            copy.push_back(NodeId(u"y"));  // detaches this copy only
            if (copy.size() != 4 || copy.shares_storage_with(shared)) ++mismatches;
          }
          const auto rest = relpath(copy, NodePath(shared_id));
          if (!rest || rest->front().ustring() != u"mass") ++mismatches;
          NodePath empty;
          empty += copy;  // takes a share
        }
      });
    }
    for (auto& th : threads) th.join();
    EXPECT_EQ(mismatches.load(), 0);
    EXPECT_EQ(shared.ustring(), u"Body//Frame/mass/x");
  }
  if (alloc_counter::counting()) {
    EXPECT_EQ(alloc_counter::live(), live);
  }
}

}  // namespace
