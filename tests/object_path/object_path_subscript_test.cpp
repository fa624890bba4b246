#include "ui/core/object_path_subscript.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <optional>
#include <sstream>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

#include <boost/container_hash/hash.hpp>
#include <boost/unordered_set.hpp>

#include "expect_error.h"
#include "ui/core/object_path_element.h"

namespace {

using ui::core::ErrorId;
using ui::core::ObjectPathSubscript;
using ui::core::ustring;
using Values = std::vector<unsigned long>;

constexpr unsigned long max_value = std::numeric_limits<unsigned long>::max();

Values values_of(const ObjectPathSubscript& s) {
  return static_cast<Values>(s);
}
ustring text_of(const ObjectPathSubscript& s) {
  return static_cast<ustring>(s);
}

TEST(ObjectPathSubscript, DefaultIsOneWithValuesOneAndOne) {
  const ObjectPathSubscript s;
  EXPECT_EQ(s.size(), 1u);
  EXPECT_EQ(s(0), 1u);
  EXPECT_EQ(s(1), 1u);
  EXPECT_EQ(s.subscripts().size(), 2u);
  EXPECT_TRUE(s.subscripts() == krel::ArraySize(1, 1));
  EXPECT_EQ(text_of(s), u"//1");
  EXPECT_EQ(values_of(s), Values{1});
}

TEST(ObjectPathSubscript, CountAndSizeAreStoredAsGiven) {
  const ObjectPathSubscript s(3, krel::ArraySize{2});
  EXPECT_EQ(s.size(), 3u);
  EXPECT_EQ(s.subscripts().size(), 1u);
  EXPECT_EQ(values_of(s), (Values{2, 1, 1}));
  EXPECT_EQ(text_of(s), u"//2, 1, 1");

  const ObjectPathSubscript fewer(1, krel::ArraySize{2, 3});
  EXPECT_EQ(fewer.size(), 1u);
  EXPECT_EQ(fewer(1), 3u);
  EXPECT_EQ(values_of(fewer), Values{2});
  EXPECT_EQ(text_of(fewer), u"//2");
}

TEST(ObjectPathSubscript, ZeroValueIsRefusedWithNoArguments) {
  EXPECT_TRUE(test_support::throws_error(
      [] {
        ObjectPathSubscript s(2, krel::ArraySize{3, 0});
      },
      ErrorId::InvalidObjectPathSubscript, {}));
  EXPECT_TRUE(test_support::throws_error(
      [] {
        ObjectPathSubscript s(Values{1, 0, 2});
      },
      ErrorId::InvalidObjectPathSubscript, {}));
}

TEST(ObjectPathSubscript, OnlyARealZeroIsRefusedNotAnOverflowingProduct) {
  // The product of these values does not fit in 64 bits, but none is zero.
  const ObjectPathSubscript s(Values{max_value, max_value, 2});
  EXPECT_EQ(values_of(s), (Values{max_value, max_value, 2}));
}

TEST(ObjectPathSubscript, SingleValueReadsOnePastItsPosition) {
  const ObjectPathSubscript s(Values{5});
  EXPECT_EQ(s.size(), 1u);
  EXPECT_EQ(s(0), 5u);
  EXPECT_EQ(s(1), 1u);
  EXPECT_EQ(s(1000), 1u);
  EXPECT_EQ(values_of(s), Values{5});
  EXPECT_EQ(text_of(s), u"//5");
}

TEST(ObjectPathSubscript, EquivalenceIgnoresTheCount) {
  const ObjectPathSubscript five(Values{5});
  const ObjectPathSubscript five_one(Values{5, 1});
  EXPECT_EQ(five.size(), 1u);
  EXPECT_EQ(five_one.size(), 2u);
  EXPECT_TRUE(five.equivalent(five_one));
  EXPECT_TRUE(five_one.equivalent(five));
  EXPECT_EQ(text_of(five), u"//5");
  EXPECT_EQ(text_of(five_one), u"//5, 1");
  EXPECT_FALSE(five.equivalent(ObjectPathSubscript(Values{5, 2})));
  EXPECT_FALSE(five.equivalent(ObjectPathSubscript(Values{6})));
}

TEST(ObjectPathSubscript, EmptyVectorGivesCountZeroAndTextOfTwoSlashes) {
  // A size with no stored values has one element, so the check lets it pass.
  const ObjectPathSubscript s(Values{});
  EXPECT_EQ(s.size(), 0u);
  EXPECT_EQ(values_of(s), Values{});
  EXPECT_EQ(text_of(s), u"//");
  EXPECT_EQ(s(0), 1u);
}

TEST(ObjectPathSubscript, TextFormJoinsDecimalValuesWithCommaAndBlank) {
  EXPECT_EQ(text_of(ObjectPathSubscript(Values{2})), u"//2");
  EXPECT_EQ(text_of(ObjectPathSubscript(Values{2, 3})), u"//2, 3");
  EXPECT_EQ(text_of(ObjectPathSubscript(Values{10, 200, max_value})),
            u"//10, 200, 18446744073709551615");
}

struct SubscriptCase {
  ustring text;
  std::optional<Values> values;  // empty when the text is refused
};

const std::vector<SubscriptCase>& subscript_cases() {
  static const std::vector<SubscriptCase> cases = {
      {u"//1", Values{1}},
      {u"//2, 3", Values{2, 3}},
      {u"//2,3", Values{2, 3}},
      {u"// 4 ,5", Values{4, 5}},
      {u"//007", Values{7}},
      {u"//\t3\n", Values{3}},
      {u"// \v\f\r9", Values{9}},
      {u"//1, 2, 3, 4, 5, 6", Values{1, 2, 3, 4, 5, 6}},
      {u"//18446744073709551615", Values{max_value}},
      {u"//000000000000000000000000018446744073709551615", Values{max_value}},
      {u"//18446744073709551610", Values{18446744073709551610UL}},
      {u"//1844674407370955161", Values{1844674407370955161UL}},
      {u"//0", std::nullopt},
      {u"//00", std::nullopt},
      {u"//1,0", std::nullopt},
      {u"/1", std::nullopt},
      {u"1", std::nullopt},
      {u"", std::nullopt},
      {u"/", std::nullopt},
      {u"//", std::nullopt},
      {u"// ", std::nullopt},
      {u"//a", std::nullopt},
      {u"//-1", std::nullopt},
      {u"//+1", std::nullopt},
      {u"//1.5", std::nullopt},
      {u"//1 2", std::nullopt},
      {u"//0x10", std::nullopt},
      {u"//1,,2", std::nullopt},
      {u"//1,", std::nullopt},
      {u"//,1", std::nullopt},
      {u"//1;2", std::nullopt},
      {u"//18446744073709551616", std::nullopt},
      {u"//18446744073709551620", std::nullopt},
      {u"//99999999999999999999", std::nullopt},
      {u"//184467440737095516150", std::nullopt},
      {u"//\uff11", std::nullopt},      // a fullwidth digit one
      {u"//1, 2\u00a0", std::nullopt},  // a non-ASCII blank
      {u"\uff0f/1", std::nullopt},      // a fullwidth slash
      {u"x//1", std::nullopt},
      {u"///1", std::nullopt},
      {u"//1//2", std::nullopt},
  };
  return cases;
}

TEST(ObjectPathSubscript, ConstructorAndMakeParseTheSameTexts) {
  for (const SubscriptCase& c : subscript_cases()) {
    SCOPED_TRACE(krel::ustring_to_utf8_string(c.text));
    const std::optional<ObjectPathSubscript> made = ObjectPathSubscript::make(c.text);
    if (c.values) {
      ASSERT_TRUE(made.has_value());
      EXPECT_EQ(values_of(*made), *c.values);
      EXPECT_EQ(made->size(), c.values->size());
      EXPECT_EQ(values_of(ObjectPathSubscript(c.text)), *c.values);
    } else {
      EXPECT_FALSE(made.has_value());
      EXPECT_TRUE(test_support::throws_error([&] { ObjectPathSubscript s(c.text); },
                                             ErrorId::InvalidObjectPathSubscriptString,
                                             {test_support::text_arg(c.text)}));
    }
  }
}

TEST(ObjectPathSubscript, ParsedTextPrintsInCanonicalForm) {
  EXPECT_EQ(text_of(ObjectPathSubscript(u"//2,3")), u"//2, 3");
  EXPECT_EQ(text_of(ObjectPathSubscript(u"// 4 ,5")), u"//4, 5");
  EXPECT_EQ(text_of(ObjectPathSubscript(u"//007")), u"//7");
  EXPECT_EQ(text_of(ObjectPathSubscript(u"//2, 3")), u"//2, 3");
}

TEST(ObjectPathSubscript, ParsedValuesAreStoredInOrderWithTheirCount) {
  const ObjectPathSubscript s(u"//4, 1, 7");
  EXPECT_EQ(s.size(), 3u);
  EXPECT_EQ(s(0), 4u);
  EXPECT_EQ(s(1), 1u);
  EXPECT_EQ(s(2), 7u);
  EXPECT_EQ(s.subscripts().size(), 3u);
}

TEST(ObjectPathSubscript, MakeNeverThrowsForBadText) {
  for (const SubscriptCase& c : subscript_cases()) {
    EXPECT_NO_THROW((void)ObjectPathSubscript::make(c.text));
  }
}

TEST(ObjectPathSubscript, PrintsTheTextFormInTheLocalEncoding) {
  std::setlocale(LC_ALL, "C");
  std::ostringstream os;
  os << ObjectPathSubscript(Values{2, 3});
  EXPECT_EQ(os.str(), "//2, 3");
}

TEST(ObjectPathSubscript, CopySharesTheRecord) {
  const ObjectPathSubscript a(Values{2, 3});
  const ObjectPathSubscript b = a;
  EXPECT_TRUE(a.shares_record_with(b));
  EXPECT_FALSE(a.shares_record_with(ObjectPathSubscript(Values{2, 3})));
}

TEST(ObjectPathSubscript, MovedFromSubscriptCanBeAssignedAgain) {
  ObjectPathSubscript a(Values{2, 3});
  const ObjectPathSubscript witness = a;
  ObjectPathSubscript b = std::move(a);
  EXPECT_TRUE(b.shares_record_with(witness));
  a = ObjectPathSubscript(Values{7});
  EXPECT_EQ(values_of(a), Values{7});
  EXPECT_EQ(values_of(b), (Values{2, 3}));
}

TEST(ObjectPathSubscript, CopiesMayBeMadeAndDestroyedOnManyThreads) {
  const ObjectPathSubscript shared(Values{4, 5, 6});
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&shared] {
      for (int i = 0; i < 2000; ++i) {
        ObjectPathSubscript copy = shared;
        ObjectPathSubscript other = copy;
        if (other.size() != 3 || other(2) != 6) std::abort();
        copy = ObjectPathSubscript();
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(values_of(shared), (Values{4, 5, 6}));
}

TEST(ObjectPathSubscript, EqualityComparesCountsAndValues) {
  EXPECT_TRUE(ObjectPathSubscript({2, 3}) == ObjectPathSubscript(u"// 2 ,3"));
  EXPECT_FALSE(ObjectPathSubscript({2, 3}) == ObjectPathSubscript({3, 2}));
  // Equivalent, but the counts differ.
  EXPECT_FALSE(ObjectPathSubscript({5}) == ObjectPathSubscript({5, 1}));
  // Equal counts; the values differ only in stored trailing ones.
  const std::size_t stored[] = {5, 1};
  EXPECT_TRUE(ObjectPathSubscript(1, krel::ArraySize(stored, 2)) == ObjectPathSubscript({5}));
  const ObjectPathSubscript s({4});
  const ObjectPathSubscript copy = s;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_TRUE(copy == s);
}

TEST(ObjectPathSubscript, HashesAsItsElementWithStdAndBoost) {
  const ObjectPathSubscript s({2, 3});
  const std::size_t h = hash_value(s);
  EXPECT_EQ(h, hash_value(ui::core::ObjectPathElement(s)));
  EXPECT_EQ(h, hash_value(ui::core::ObjectPathElement(ObjectPathSubscript({2, 3}))));
  EXPECT_EQ(std::hash<ObjectPathSubscript>{}(s), h);
  EXPECT_EQ(boost::hash<ObjectPathSubscript>{}(s), h);
  const std::size_t stored[] = {5, 1};
  EXPECT_EQ(hash_value(ObjectPathSubscript(1, krel::ArraySize(stored, 2))),
            hash_value(ObjectPathSubscript({5})));
  std::unordered_set<ObjectPathSubscript> subscripts{
      ObjectPathSubscript({1}), ObjectPathSubscript(u"//1"), ObjectPathSubscript({1, 1})};
  EXPECT_EQ(subscripts.size(), 2u);
  boost::unordered_set<ObjectPathSubscript> boost_subscripts{ObjectPathSubscript({1}),
                                                             ObjectPathSubscript(u"//1")};
  EXPECT_EQ(boost_subscripts.size(), 1u);
}

}  // namespace
