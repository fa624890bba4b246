#include "ui/core/object_path_name.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include <boost/container_hash/hash.hpp>
#include <boost/unordered_set.hpp>

#include "expect_error.h"
#include "ui/core/object_path_element.h"

namespace {

using ui::core::ErrorId;
using ui::core::ObjectPathName;
using ui::core::ustring;

ustring stored(const ObjectPathName& name) {
  return ustring(name.text());
}

// Both faces of the parser run over every case, so they cannot drift apart.
struct NameCase {
  ustring text;
  std::optional<ustring> stored;  // empty when the text is refused
};

const std::vector<NameCase>& name_cases() {
  static const std::vector<NameCase> cases = {
      {u"Gain", u"Gain"},
      {u"a//b", u"a//b"},
      {u"a////b", u"a////b"},
      {u"x\ty", u"x y"},
      {u"a", u"a"},
      {u"   ", u"   "},
      {u"\t\t", u"  "},
      {u"a\n\v\f\r b", u"a     b"},
      {u"a//b//c", u"a//b//c"},
      {u"1.5e3 (m/s)x", std::nullopt},  // a lone "/" inside
      {u"\u00e9t\u00e9", u"\u00e9t\u00e9"},
      {ustring(1, char16_t(0xd800)), ustring(1, char16_t(0xd800))},  // lone surrogate
      {u"a.b-c_d!?\\", u"a.b-c_d!?\\"},
      {u"\u00a0", u"\u00a0"},  // not a POSIX space: kept as it is
      {u"", std::nullopt},
      {u"/", std::nullopt},
      {u"//", std::nullopt},
      {u"/a", std::nullopt},
      {u"a/", std::nullopt},
      {u"a//", std::nullopt},
      {u"a/b", std::nullopt},
      {u"a///b", std::nullopt},
      {u"a//b/c", std::nullopt},
      {u"//1", std::nullopt},
      {u"\t/", std::nullopt},
  };
  return cases;
}

TEST(ObjectPathName, ConstructorAndMakeAcceptTheSameTextsAndStoreTheSameText) {
  for (const NameCase& c : name_cases()) {
    SCOPED_TRACE(krel::ustring_to_utf8_string(c.text));
    const std::optional<ObjectPathName> made = ObjectPathName::make(c.text);
    if (c.stored) {
      ASSERT_TRUE(made.has_value());
      EXPECT_EQ(stored(*made), *c.stored);
      EXPECT_EQ(stored(ObjectPathName(c.text)), *c.stored);
    } else {
      EXPECT_FALSE(made.has_value());
      EXPECT_TRUE(test_support::throws_error([&] { ObjectPathName name(c.text); },
                                             ErrorId::InvalidObjectPathName,
                                             {test_support::text_arg(c.text)}));
    }
  }
}

TEST(ObjectPathName, CheckReturnsTheCleanedText) {
  const ui::core::detail::ObjectPathNameCheck check;
  EXPECT_EQ(ustring(check(u"x\ty")), u"x y");
  EXPECT_EQ(ustring(check(u"a//b")), u"a//b");
}

TEST(ObjectPathName, CheckCalledDirectlyReportsTheRawTextTabsIncluded) {
  const ui::core::detail::ObjectPathNameCheck check;
  EXPECT_TRUE(test_support::throws_error([&] { (void)check(u"a\tb/"); },
                                         ErrorId::InvalidObjectPathName,
                                         {test_support::text_arg(u"a\tb/")}));
}

TEST(ObjectPathName, WhiteSpaceIsCleanedNeverRefused) {
  for (char16_t c : {u' ', u'\t', u'\n', u'\v', u'\f', u'\r'}) {
    const ustring text = ustring(u"a") + c + u"b";
    const auto name = ObjectPathName::make(text);
    ASSERT_TRUE(name.has_value());
    EXPECT_EQ(stored(*name), u"a b");
  }
}

TEST(ObjectPathName, CleaningKeepsTheLength) {
  const ustring text = u"\t\n\v\f\r ";
  EXPECT_EQ(stored(ObjectPathName(text)).size(), text.size());
  EXPECT_EQ(stored(ObjectPathName(text)), u"      ");
}

TEST(ObjectPathName, HasNoLengthLimit) {
  const ustring text(100000, u'x');
  EXPECT_EQ(stored(ObjectPathName(text)), text);
}

TEST(ObjectPathName, HasNoDefaultConstructor) {
  static_assert(!std::is_default_constructible_v<ObjectPathName>);
}

TEST(ObjectPathName, CopiesShareTheText) {
  const ObjectPathName a(u"Gain");
  const ObjectPathName b = a;
  EXPECT_TRUE(a.text().shares_with(b.text()));
}

TEST(ObjectPathName, MakeNeverThrowsForBadText) {
  for (const NameCase& c : name_cases()) {
    EXPECT_NO_THROW((void)ObjectPathName::make(c.text));
  }
}

TEST(ObjectPathName, PrintsUtf8WhateverTheLocale) {
  // The test process runs in the "C" locale, whose encoding cannot hold these
  // letters; a name is written as UTF-8 all the same.
  std::ostringstream os;
  os << ObjectPathName(u"Gr\u00fc\u00dfe//\u03a9");
  EXPECT_EQ(os.str(),
            "Gr\xc3\xbc\xc3\x9f"
            "e//\xce\xa9");
}

TEST(ObjectPathName, PrintsTheCleanedText) {
  std::ostringstream os;
  os << ObjectPathName(u"a\tb");
  EXPECT_EQ(os.str(), "a b");
}

TEST(ObjectPathName, HashesAsItsElementWithStdAndBoost) {
  const ObjectPathName gain(u"Gain");
  const std::size_t h = hash_value(gain);
  EXPECT_EQ(h, hash_value(ui::core::ObjectPathElement(gain)));
  EXPECT_EQ(std::hash<ObjectPathName>{}(gain), h);
  EXPECT_EQ(boost::hash<ObjectPathName>{}(gain), h);
  // Equal names built apart (and cleaned alike) hash equal.
  EXPECT_EQ(hash_value(ObjectPathName(u"a\tb")), hash_value(ObjectPathName(u"a b")));
  std::unordered_set<ObjectPathName> names{ObjectPathName(u"x"), ObjectPathName(u"x"),
                                           ObjectPathName(u"y")};
  EXPECT_EQ(names.size(), 2u);
  boost::unordered_set<ObjectPathName> boost_names{ObjectPathName(u"x"), ObjectPathName(u"x")};
  EXPECT_EQ(boost_names.size(), 1u);
}

}  // namespace
