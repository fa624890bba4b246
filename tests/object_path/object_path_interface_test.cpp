#include "ui/core/object_path.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "expect_error.h"
#include "reference_hash.h"
#include "ui/core/object_path_element.h"
#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"

// The interface of names, subscripts, elements and object paths as their
// callers spell it, and rules that the per-header tests do not state on their
// own.

namespace {

using namespace ui::core;
using Values = std::vector<unsigned long>;
using Sink = std::function<void(const char*, unsigned long)>;

// ------------------------------------------------------------ signatures

static_assert(
    std::is_same_v<decltype(detail::ObjectPathNameCheck{}(std::declval<const ustring&>())),
                   krel::BasicTableString<char16_t>>);
static_assert(std::is_empty_v<detail::ObjectPathNameCheck>, "the check object is stateless");
static_assert(std::is_same_v<decltype(ObjectPathName::make(std::declval<const ustring&>())),
                             std::optional<ObjectPathName>>);
static_assert(std::is_constructible_v<ObjectPathSubscript, unsigned long, krel::ArraySize>);
static_assert(
    std::is_same_v<decltype(std::declval<const ObjectPathSubscript&>()(0UL)), unsigned long>);
static_assert(std::is_same_v<decltype(ObjectPathSubscript::make(std::declval<const ustring&>())),
                             std::optional<ObjectPathSubscript>>);
static_assert(std::is_convertible_v<const ObjectPathSubscript&, std::vector<unsigned long>>);
static_assert(std::is_convertible_v<const ObjectPathSubscript&, ustring>);
static_assert(std::is_convertible_v<ObjectPathSubscript, ObjectPathElement>);
static_assert(std::is_convertible_v<ObjectPathName, ObjectPathElement>);
static_assert(std::is_same_v<decltype(make_element(std::declval<const ustring&>())),
                             std::optional<ObjectPathElement>>);
static_assert(std::is_same_v<decltype(to_partial_path(std::declval<const ustring&>())),
                             std::pair<ObjectPath, ustring>>);
static_assert(std::is_same_v<decltype(to_partial_name_path(std::declval<const ustring&>())),
                             std::pair<ObjectPath, ustring>>);
static_assert(std::is_same_v<decltype(to_object_path(std::declval<const ustring&>())), ObjectPath>);
static_assert(std::is_same_v<decltype(to_name_path(std::declval<const ustring&>())), ObjectPath>);
static_assert(
    std::is_same_v<decltype(std::declval<ObjectPath&>() /= std::declval<const ObjectPath&>()),
                   ObjectPath&>);
static_assert(std::is_convertible_v<const ObjectPath&, ustring>);
static_assert(sizeof(ObjectPathSubscript) == sizeof(void*), "copying a subscript copies a pointer");
static_assert(sizeof(ObjectPath) == sizeof(void*), "copying a path copies a pointer");

TEST(ObjectPathElement, FreeFunctionsHaveTheirDocumentedSignatures) {
  void (*feed)(Sink&, const ObjectPathElement&) = &incorporate_data;
  std::size_t (*hash)(const ObjectPathElement&) = &hash_value;
  bool (*ignore)(const ObjectPathElement&, const ObjectPathElement&) = &equal_ignore_annotation;
  void (*strip)(ObjectPathElement&) = &strip_annotation_inplace;
  ustring (*text)(const ObjectPathElement&) = &to_string;

  ObjectPathElement e(ObjectPathName(u"A"));
  std::vector<unsigned long> lengths;
  Sink sink = [&lengths](const char*, unsigned long n) { lengths.push_back(n); };
  feed(sink, e);
  EXPECT_EQ(lengths, (std::vector<unsigned long>{8, 2}));
  EXPECT_EQ(hash(e), hash_value(ObjectPathElement(ObjectPathName(u"A"))));
  EXPECT_TRUE(ignore(e, e));
  strip(e);
  EXPECT_EQ(text(e), u"A");
  const int order = compare(e, ObjectPathElement());
  EXPECT_EQ(order, 2);
}

// ------------------------------------------------------------ names

TEST(ObjectPathName, TextReadsAsAStringOfCodeUnits) {
  // Regression: the stored text could be read only through text(), so
  // `ustring text = name;` did not compile, unlike a subscript's text form.
  const ObjectPathName name(u"x\ty//z");
  const ustring text = name;
  EXPECT_EQ(text, u"x y//z");
  EXPECT_EQ(name.size(), 6u);
  EXPECT_EQ(ustring(name.begin(), name.end()), u"x y//z");
  EXPECT_EQ(ustring(name.data(), name.size()), u"x y//z");
}

TEST(ObjectPathName, EqualNamesHoldTheSameCodeUnits) {
  EXPECT_TRUE(ObjectPathName(u"a\tb") == ObjectPathName(u"a b"));
  EXPECT_FALSE(ObjectPathName(u"a") == ObjectPathName(u"A"));
  EXPECT_FALSE(ObjectPathName(u"a") == ObjectPathName(u"ab"));
  EXPECT_TRUE(*ObjectPathName::make(u"a//b") == ObjectPathName(u"a//b"));
}

TEST(ObjectPathName, LoneSurrogatePrintsAsReplacementCharacterInUtf8) {
  std::ostringstream os;
  os << ObjectPathName(ustring(u"a") + char16_t(0xdc00));
  EXPECT_EQ(os.str(), "a\xef\xbf\xbd");
}

// ------------------------------------------------------------ subscripts

TEST(ObjectPathSubscript, CountOfZeroIsStoredAlongsideValues) {
  // The count is not checked against the stored positions: a count of 0 shows
  // no values, though the stored one is still read by position.
  const ObjectPathSubscript s(0, krel::ArraySize{4});
  EXPECT_EQ(s.size(), 0u);
  EXPECT_EQ(static_cast<Values>(s), Values{});
  EXPECT_EQ(static_cast<ustring>(s), u"//");
  EXPECT_EQ(s(0), 4u);
  EXPECT_TRUE(s.equivalent(ObjectPathSubscript(Values{4})));
  // Only the product of the values is checked, whatever the count.
  EXPECT_TRUE(test_support::throws_error(
      [] {
        ObjectPathSubscript z(0, krel::ArraySize{4, 0});
      },
      ErrorId::InvalidObjectPathSubscript, {}));
}

TEST(ObjectPathSubscript, BuildsFromABracedListOfValues) {
  // Regression: ObjectPathSubscript({2, 3}) did not compile, since the list
  // could become either the vector of values or a text.
  const ObjectPathSubscript s({2, 3});
  EXPECT_EQ(s.size(), 2u);
  EXPECT_EQ(static_cast<ustring>(s), u"//2, 3");
  const ObjectPathSubscript one{5};
  EXPECT_EQ(static_cast<Values>(one), Values{5});
  // A count and a size still select the constructor that stores both.
  const ObjectPathSubscript counted{1, krel::ArraySize{5, 1}};
  EXPECT_EQ(counted.size(), 1u);
  EXPECT_EQ(counted(1), 1u);
  EXPECT_TRUE(test_support::throws_error(
      [] {
        ObjectPathSubscript z({4, 0});
      },
      ErrorId::InvalidObjectPathSubscript, {}));
}

TEST(ObjectPathSubscript, ParsingReadsTheTextNotTheFirstPieceOnly) {
  // "Parsing stops at the first bad piece": a good first piece does not save
  // a bad later one.
  for (const ustring text : {u"//1, x", u"//1, 0", u"//1, 2, ", u"//3, 18446744073709551616"}) {
    EXPECT_FALSE(ObjectPathSubscript::make(text).has_value());
    EXPECT_TRUE(test_support::throws_error([&] { ObjectPathSubscript s(text); },
                                           ErrorId::InvalidObjectPathSubscriptString,
                                           {test_support::text_arg(text)}));
  }
}

// ------------------------------------------------------------ elements

using test_support::combine;

TEST(ObjectPathElement, NamesCompareByCodeUnitNotByCodePoint) {
  // U+10000 is written as the units D800 DC00. By code point it would sort
  // after U+E000; by code unit D800 comes first.
  const ObjectPathElement supplementary(ObjectPathName(u"\U00010000"));
  const ObjectPathElement private_use(ObjectPathName(u"\ue000"));
  EXPECT_EQ(compare(supplementary, private_use), 1);
  EXPECT_EQ(compare(private_use, supplementary), 2);
  EXPECT_FALSE(supplementary == private_use);
}

TEST(ObjectPathElement, DefaultAndParsedOneAreEqualAndHashAlike) {
  // The default subscript stores the values (1, 1), the parsed //1 only (1);
  // both have count 1, so they are equal and must hash alike.
  const ObjectPathElement by_default;
  const ObjectPathElement parsed = *make_element(u"//1");
  EXPECT_TRUE(by_default == parsed);
  EXPECT_EQ(compare(by_default, parsed), 0);
  EXPECT_EQ(hash_value(by_default), hash_value(parsed));
  const std::uint64_t content = combine(combine(0, 1), krel::hash_value(krel::ArraySize{1, 1}));
  EXPECT_EQ(hash_value(by_default), combine(content, 0));
}

TEST(ObjectPathElement, EmptySinkThrowsOnTheFirstFeed) {
  Sink empty;
  EXPECT_THROW(incorporate_data(empty, ObjectPathElement()), std::bad_function_call);
}

TEST(ObjectPathElement, FeedsEveryCodeUnitOfANameInItsOwnCall) {
  std::vector<std::vector<unsigned char>> calls;
  Sink sink = [&calls](const char* p, unsigned long n) {
    calls.emplace_back(reinterpret_cast<const unsigned char*>(p),
                       reinterpret_cast<const unsigned char*>(p) + n);
  };
  incorporate_data(sink, ObjectPathElement(ObjectPathName(u"a//\U00010000")));
  const std::vector<std::vector<unsigned char>> expected = {{0, 0, 0, 0, 0, 0, 0, 1},
                                                            {0x00, 0x61},
                                                            {0x00, 0x2f},
                                                            {0x00, 0x2f},
                                                            {0xd8, 0x00},
                                                            {0xdc, 0x00}};
  EXPECT_EQ(calls, expected);
}

// ------------------------------------------------------------ paths

TEST(ObjectPath, ParsersAcceptAStringLiteral) {
  EXPECT_EQ(static_cast<ustring>(to_object_path(u"a/b")), u"a/b");
  const auto [path, rest] = to_partial_path(u"a//");
  EXPECT_EQ(path.size(), 1u);
  EXPECT_EQ(rest, u"/");
}

TEST(ObjectPath, CompleteParsersReportTheWholeTextNotTheBadSegment) {
  EXPECT_TRUE(test_support::throws_error([] { (void)to_object_path(u"a/b/c//"); },
                                         ErrorId::InvalidObjectPath,
                                         {test_support::text_arg(u"a/b/c//")}));
  EXPECT_TRUE(test_support::throws_error([] { (void)to_object_path(u"x///1///2/y"); },
                                         ErrorId::InvalidObjectPath,
                                         {test_support::text_arg(u"x///1///2/y")}));
  EXPECT_TRUE(test_support::throws_error([] { (void)to_name_path(u"a/b///3"); },
                                         ErrorId::InvalidNodePath,
                                         {test_support::text_arg(u"a/b///3")}));
}

TEST(ObjectPath, AdjacentSubscriptsThrowEvenWhenALaterSegmentIsBad) {
  // The parse throws at the second subscript before it reaches "/a".
  EXPECT_TRUE(test_support::throws_error([] { (void)to_partial_path(u"//1///2///a"); },
                                         ErrorId::InvalidObjectPath,
                                         {test_support::text_arg(u"//1///2///a")}));
}

TEST(ObjectPath, SlashOperatorSharesTheLeftBlockOnlyUntilItAppends) {
  const ObjectPath a = to_object_path(u"a");
  const ObjectPath joined = a / to_object_path(u"b");
  EXPECT_FALSE(joined.shares_storage_with(a));
  EXPECT_EQ(static_cast<ustring>(a), u"a");
  // Joining an empty path on the right appends nothing, so the block stays shared.
  const ObjectPath same = a / ObjectPath();
  EXPECT_TRUE(same.shares_storage_with(a));
}

}  // namespace
