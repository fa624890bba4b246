#include "ui/core/object_path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include <boost/container_hash/hash.hpp>
#include <boost/unordered_set.hpp>

#include "expect_error.h"
#include "krel/ustring.h"
#include "value_checks.h"

namespace {

using ui::core::ErrorId;
using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathName;
using ui::core::ObjectPathSubscript;
using ui::core::ustring;
using Values = std::vector<unsigned long>;

ObjectPathElement name(const ustring& text) {
  return ObjectPathElement(ObjectPathName(text));
}
ObjectPathElement sub(const Values& values) {
  return ObjectPathElement(ObjectPathSubscript(values));
}
ustring text_of(const ObjectPath& p) {
  return static_cast<ustring>(p);
}

std::vector<ustring> texts_of(const ObjectPath& p) {
  std::vector<ustring> texts;
  for (const ObjectPathElement& e : p) texts.push_back(ui::core::to_string(e));
  return texts;
}

TEST(ObjectPath, EmptyPathHasNoElementsAndEmptyText) {
  const ObjectPath p;
  EXPECT_TRUE(p.empty());
  EXPECT_EQ(p.size(), 0u);
  EXPECT_EQ(p.begin(), p.end());
  EXPECT_EQ(text_of(p), u"");
}

TEST(ObjectPath, TextFormJoinsElementsWithOneSlash) {
  EXPECT_EQ(text_of(ObjectPath{name(u"Gain")}), u"Gain");
  EXPECT_EQ(text_of(ObjectPath{name(u"a"), name(u"b")}), u"a/b");
  EXPECT_EQ(text_of(ObjectPath{name(u"a"), sub({1, 2})}), u"a///1, 2");
  EXPECT_EQ(text_of(ObjectPath{sub({3}), name(u"x")}), u"//3/x");
  EXPECT_EQ(text_of(ObjectPath{name(u"a"), sub({2}), name(u"b")}), u"a///2/b");
  EXPECT_EQ(text_of(ObjectPath{name(u"a//b"), name(u"c")}), u"a//b/c");
}

TEST(ObjectPath, PrintsTheTextFormInTheLocalEncoding) {
  std::setlocale(LC_ALL, "C");
  std::ostringstream os;
  os << ObjectPath{name(u"a\u00e9"), sub({1, 2})};
  EXPECT_EQ(os.str(), "a?///1, 2");
}

struct ParseCase {
  ustring text;
  std::vector<ustring> elements;  // the elements' texts from to_partial_path
  ustring rest;
  bool partial_throws = false;
};

const std::vector<ParseCase>& parse_cases() {
  static const std::vector<ParseCase> cases = {
      {u"a/b", {u"a", u"b"}, u""},
      {u"a///1, 2/b", {u"a", u"//1, 2", u"b"}, u""},
      {u"//3/x", {u"//3", u"x"}, u""},
      {u"a//b", {u"a//b"}, u""},
      {u"a/", {u"a"}, u""},
      {u"a//", {u"a"}, u"/"},
      {u"/a", {}, u"/a"},
      {u"a///b", {u"a"}, u"//b"},
      {u"a/b//c/d e/0x", {u"a", u"b//c", u"d e", u"0x"}, u""},
      {u"a///0/b", {u"a"}, u"//0/b"},
      {u"//1///2", {}, u"", true},
      {u"", {}, u""},
      // More cuts of runs of slashes.
      {u"a////b", {u"a////b"}, u""},
      {u"a/////b", {u"a"}, u"////b"},
      {u"a///", {u"a"}, u"//"},
      {u"a/b/", {u"a", u"b"}, u""},
      {u"//", {}, u"//"},
      {u"/", {}, u"/"},
      {u"//2,3", {u"//2, 3"}, u""},
      {u"//2, 3///4", {}, u"", true},
      {u"a\tb/c", {u"a b", u"c"}, u""},
      {u"a/b c/ /d", {u"a", u"b c", u" ", u"d"}, u""},
      {u"a//b///7/c//d///8", {u"a//b", u"//7", u"c//d", u"//8"}, u""},
      // "//x" is no subscript, so the parse stops there before any adjacency.
      {u"a///7///x", {u"a", u"//7"}, u"//x"},
      {u"a/b/c//", {u"a", u"b", u"c"}, u"/"},
      {u"a//b/", {u"a//b"}, u""},
  };
  return cases;
}

TEST(ObjectPath, PartialAndCompleteParsersFollowTheSegmentingRule) {
  for (const ParseCase& c : parse_cases()) {
    SCOPED_TRACE(krel::ustring_to_utf8_string(c.text));
    if (c.partial_throws) {
      EXPECT_TRUE(test_support::throws_error([&] { (void)ui::core::to_partial_path(c.text); },
                                             ErrorId::InvalidObjectPath,
                                             {test_support::text_arg(c.text)}));
      EXPECT_TRUE(test_support::throws_error([&] { (void)ui::core::to_object_path(c.text); },
                                             ErrorId::InvalidObjectPath,
                                             {test_support::text_arg(c.text)}));
      continue;
    }
    const auto [path, rest] = ui::core::to_partial_path(c.text);
    EXPECT_EQ(texts_of(path), c.elements);
    EXPECT_EQ(rest, c.rest);
    if (c.rest.empty()) {
      EXPECT_EQ(texts_of(ui::core::to_object_path(c.text)), c.elements);
    } else {
      EXPECT_TRUE(test_support::throws_error([&] { (void)ui::core::to_object_path(c.text); },
                                             ErrorId::InvalidObjectPath,
                                             {test_support::text_arg(c.text)}));
    }
  }
}

TEST(ObjectPath, ParsedElementsHaveTheirKinds) {
  const ObjectPath p = ui::core::to_object_path(u"a///1, 2/b");
  ASSERT_EQ(p.size(), 3u);
  EXPECT_EQ(p[0].id(), 1u);
  EXPECT_EQ(p[1].id(), 0u);
  EXPECT_EQ(p[2].id(), 1u);
  EXPECT_EQ(p.front(), name(u"a"));
  EXPECT_EQ(p.back(), name(u"b"));
  EXPECT_EQ(p.at(1), sub({1, 2}));
  EXPECT_THROW((void)p.at(3), std::out_of_range);
}

TEST(ObjectPath, PartialParseOfABadFirstSegmentReturnsTheWholeText) {
  for (const ustring text : {u"/a/b", u"//0/a", u"//x///1", u"/"}) {
    const auto [path, rest] = ui::core::to_partial_path(text);
    EXPECT_TRUE(path.empty());
    EXPECT_EQ(rest, text);
  }
}

TEST(ObjectPath, NamePathStopsAtTheFirstSegmentThatIsNotAName) {
  const auto [path, rest] = ui::core::to_partial_name_path(u"a///1/b");
  EXPECT_EQ(texts_of(path), std::vector<ustring>{u"a"});
  EXPECT_EQ(rest, u"//1/b");
  EXPECT_TRUE(test_support::throws_error([] { (void)ui::core::to_name_path(u"a///1/b"); },
                                         ErrorId::InvalidNodePath,
                                         {test_support::text_arg(u"a///1/b")}));
}

TEST(ObjectPath, NamePathParsersAcceptNamesOnly) {
  EXPECT_EQ(texts_of(ui::core::to_name_path(u"a//b/c")), (std::vector<ustring>{u"a//b", u"c"}));
  EXPECT_EQ(texts_of(ui::core::to_name_path(u"a/b/")), (std::vector<ustring>{u"a", u"b"}));
  EXPECT_TRUE(ui::core::to_name_path(u"").empty());

  const auto [empty, empty_rest] = ui::core::to_partial_name_path(u"");
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(empty_rest, u"");

  // A subscript segment is simply not a name, even at the start.
  const auto [none, whole] = ui::core::to_partial_name_path(u"//1/a");
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(whole, u"//1/a");

  // Two subscripts in a row are no error here: the first already stops it.
  const auto [a, rest] = ui::core::to_partial_name_path(u"a///1///2");
  EXPECT_EQ(texts_of(a), std::vector<ustring>{u"a"});
  EXPECT_EQ(rest, u"//1///2");
  EXPECT_TRUE(test_support::throws_error([] { (void)ui::core::to_name_path(u"a//"); },
                                         ErrorId::InvalidNodePath,
                                         {test_support::text_arg(u"a//")}));
}

TEST(ObjectPath, PartialNamePathNeverThrowsForBadText) {
  for (const ParseCase& c : parse_cases()) {
    EXPECT_NO_THROW((void)ui::core::to_partial_name_path(c.text));
  }
}

TEST(ObjectPath, JoiningDoesNotCheckAdjacentSubscripts) {
  const ObjectPath a{name(u"a"), sub({1})};
  const ObjectPath b{sub({2})};
  const ObjectPath joined = a / b;
  EXPECT_EQ(texts_of(joined), (std::vector<ustring>{u"a", u"//1", u"//2"}));
  EXPECT_EQ(text_of(joined), u"a///1///2");
  EXPECT_TRUE(test_support::throws_error([&] { (void)ui::core::to_object_path(text_of(joined)); },
                                         ErrorId::InvalidObjectPath,
                                         {test_support::text_arg(u"a///1///2")}));
  EXPECT_EQ(texts_of(a), (std::vector<ustring>{u"a", u"//1"}));  // a is unchanged
}

TEST(ObjectPath, AppendingToASharedPathLeavesTheCopyUnchanged) {
  ObjectPath p = ui::core::to_object_path(u"a/b");
  const ObjectPath copy = p;
  EXPECT_TRUE(p.shares_storage_with(copy));
  p /= ObjectPath{name(u"c")};
  EXPECT_FALSE(p.shares_storage_with(copy));
  EXPECT_EQ(text_of(p), u"a/b/c");
  EXPECT_EQ(text_of(copy), u"a/b");

  ObjectPath q = copy;
  q.push_back(sub({4}));
  EXPECT_EQ(text_of(q), u"a/b///4");
  EXPECT_EQ(text_of(copy), u"a/b");
}

TEST(ObjectPath, AppendingAnEmptyPathChangesNothing) {
  ObjectPath p = ui::core::to_object_path(u"a/b");
  const ObjectPath copy = p;
  p /= ObjectPath();
  EXPECT_TRUE(p.shares_storage_with(copy));
  EXPECT_EQ(text_of(p), u"a/b");
}

TEST(ObjectPath, JoinWithItselfDoublesThePath) {
  ObjectPath p{name(u"a"), sub({2})};
  const ObjectPath& same = p;
  p /= same;
  EXPECT_EQ(text_of(p), u"a///2/a///2");
  ObjectPath q{name(u"x")};
  q.push_back(q.front());
  q.push_back(q.back());
  EXPECT_EQ(text_of(q), u"x/x/x");
}

TEST(ObjectPath, SlashJoinsTwoPathsIntoANewOne) {
  const ObjectPath a = ui::core::to_object_path(u"a");
  const ObjectPath b = ui::core::to_object_path(u"b///3");
  const ObjectPath joined = a / b;
  EXPECT_EQ(text_of(joined), u"a/b///3");
  EXPECT_EQ(text_of(a), u"a");
  EXPECT_EQ(text_of(b), u"b///3");
  EXPECT_EQ(ObjectPath() / a, a);
  EXPECT_EQ(a / ObjectPath(), a);
}

TEST(ObjectPath, EqualityComparesElementsInOrder) {
  EXPECT_EQ(ui::core::to_object_path(u"a///2, 3"), (ObjectPath{name(u"a"), sub({2, 3})}));
  EXPECT_FALSE(ui::core::to_object_path(u"a/b") == ui::core::to_object_path(u"b/a"));
  EXPECT_FALSE(ui::core::to_object_path(u"a/b") == ui::core::to_object_path(u"a"));
  EXPECT_FALSE(ui::core::to_object_path(u"a///5") == ui::core::to_object_path(u"a///5, 1"));
  EXPECT_EQ(ObjectPath(), ui::core::to_object_path(u""));
}

// Paths without adjacent subscripts and without a subscript of count 0.
ObjectPath generated_path(std::mt19937& rng) {
  const std::vector<ustring> units = {u"a", u"Z", u"//", u" ", u"\u00e9", u"0", u"x y"};
  ObjectPath path;
  const std::size_t length = rng() % 6;
  for (std::size_t i = 0; i < length; ++i) {
    const bool after_subscript = !path.empty() && path.back().id() == 0;
    if (!after_subscript && rng() % 3 == 0) {
      Values values(1 + rng() % 3);
      for (auto& v : values) v = 1 + rng() % 1000;
      path.push_back(sub(values));
    } else {
      ustring text;
      do {
        text.clear();
        const std::size_t n = 1 + rng() % 4;
        for (std::size_t k = 0; k < n; ++k) text += units[rng() % units.size()];
      } while (!ObjectPathName::make(text));
      path.push_back(name(text));
    }
  }
  return path;
}

TEST(ObjectPath, TextFormParsesBackToAnEqualPath) {
  std::mt19937 rng(7031);
  for (int i = 0; i < 2000; ++i) {
    const ObjectPath path = generated_path(rng);
    const ustring text = text_of(path);
    SCOPED_TRACE(krel::ustring_to_utf8_string(text));
    ASSERT_EQ(ui::core::to_object_path(text), path);
  }
}

TEST(ObjectPath, CopiesMayBeReadAndExtendedOnManyThreads) {
  const ObjectPath shared = ui::core::to_object_path(u"a///1, 2/b");
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (std::size_t t = 0; t < 4; ++t) {
    threads.emplace_back([&shared, &failures, t] {
      for (int i = 0; i < 500; ++i) {
        ObjectPath copy = shared;
        copy /= ObjectPath{name(u"c")};
        ObjectPath again = copy;
        again.push_back(sub({3}));
        if (text_of(copy) != u"a///1, 2/b/c") ++failures[t];
        if (again.size() != 5 || ui::core::hash_value(again[1]) == 0) ++failures[t];
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
  EXPECT_EQ(text_of(shared), u"a///1, 2/b");
}

int three_way(const ObjectPath& a, const ObjectPath& b) {
  const auto c = a <=> b;
  return c == 0 ? 0 : (c < 0 ? 1 : 2);
}

std::size_t std_hash(const ObjectPath& p) {
  return std::hash<ObjectPath>{}(p);
}

TEST(ObjectPath, OrderEqualityAndHashAgree) {
  const auto check = [](const ustring& a, const ustring& b, int expected) {
    SCOPED_TRACE(krel::ustring_to_utf8_string(a) + " vs " + krel::ustring_to_utf8_string(b));
    test_support::expect_consistent(ui::core::to_object_path(a), ui::core::to_object_path(b),
                                    expected, three_way, std_hash);
  };
  check(u"a///2, 3/b", u"a/// 2 ,3/b", 0);
  check(u"", u"", 0);
  check(u"", u"a", 1);     // the empty path first
  check(u"a", u"a/b", 1);  // a prefix first
  check(u"a/b", u"a/c", 1);
  check(u"//9/z", u"a", 1);         // every subscript before every name
  check(u"a///2", u"a///1, 1", 1);  // the smaller count first
  check(u"a///3, 1", u"a///2, 4", 2);
  check(u"b", u"abc/d", 2);
  const ObjectPath p = ui::core::to_object_path(u"x///2/y");
  const ObjectPath copy = p;  // NOLINT(performance-unnecessary-copy-initialization)
  test_support::expect_consistent(p, copy, 0, three_way, std_hash);
}

TEST(ObjectPath, OrderFollowsTheElementCompare) {
  const std::vector<ObjectPath> paths = {
      ObjectPath{name(u"a"), sub({2})},   ObjectPath{name(u"a"), sub({1, 1})},
      ObjectPath{sub({3}), name(u"x")},   ObjectPath{name(u"a")},
      ObjectPath{name(u"a"), name(u"b")}, ObjectPath{}};
  for (const ObjectPath& a : paths) {
    for (const ObjectPath& b : paths) {
      // The first element that differs decides, by compare(); else the shorter.
      int expected = a.size() == b.size() ? 0 : (a.size() < b.size() ? 1 : 2);
      for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (const int c = ui::core::compare(a[i], b[i]); c != 0) {
          expected = c;
          break;
        }
      }
      EXPECT_EQ(three_way(a, b), expected) << krel::ustring_to_utf8_string(text_of(a)) << " vs "
                                           << krel::ustring_to_utf8_string(text_of(b));
    }
  }
}

TEST(ObjectPath, HashCombinesTheElementHashesInOrder) {
  const ObjectPath p = ui::core::to_object_path(u"a///1, 2/b");
  const std::size_t h = hash_value(p);
  EXPECT_EQ(h, boost::hash_range(p.begin(), p.end()));
  EXPECT_EQ(std_hash(p), h);
  EXPECT_EQ(boost::hash<ObjectPath>{}(p), h);
  EXPECT_NE(hash_value(ui::core::to_object_path(u"b///1, 2/a")), h);
  EXPECT_EQ(hash_value(ObjectPath{}), 0u);
}

TEST(ObjectPath, KeysStandardAndBoostContainers) {
  std::map<ObjectPath, int> ordered{{ui::core::to_object_path(u"b"), 3},
                                    {ui::core::to_object_path(u"a///2"), 2},
                                    {ui::core::to_object_path(u"a"), 1}};
  std::vector<ustring> order;
  for (const auto& [path, value] : ordered) order.push_back(text_of(path));
  EXPECT_EQ(order, (std::vector<ustring>{u"a", u"a///2", u"b"}));
  std::unordered_map<ObjectPath, int> by_path{{ui::core::to_object_path(u"x///2, 3"), 7}};
  EXPECT_EQ(by_path.count(ui::core::to_object_path(u"x/// 2 ,3")), 1u);
  boost::unordered_set<ObjectPath> boost_set{ui::core::to_object_path(u"x///2, 3"),
                                             ui::core::to_object_path(u"x/// 2 ,3")};
  EXPECT_EQ(boost_set.size(), 1u);
}

}  // namespace
