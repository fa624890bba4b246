#include "krel/table_string.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using krel::BasicTableString;

TEST(TableString, HoldsTheTextGiven) {
  BasicTableString<char16_t> s(std::u16string(u"Gain"));
  EXPECT_EQ(s.size(), 4u);
  EXPECT_EQ(std::u16string(s), u"Gain");
  EXPECT_EQ(std::u16string(s.begin(), s.end()), u"Gain");
  EXPECT_EQ(s.data()[4], u'\0');
}

TEST(TableString, CopiesShareOneBlock) {
  BasicTableString<char> a(std::string("abc"));
  BasicTableString<char> b = a;
  EXPECT_TRUE(a.shares_with(b));
  EXPECT_EQ(a.data(), b.data());
}

TEST(TableString, EmptyTextHasNoBlock) {
  BasicTableString<char16_t> a;
  BasicTableString<char16_t> b(std::u16string{});
  EXPECT_EQ(a.size(), 0u);
  EXPECT_TRUE(a.empty());
  EXPECT_EQ(a.compare_(b), 0);
  EXPECT_EQ(std::u16string(b), u"");
}

TEST(TableString, CompareIsByUnsignedCodeUnitPrefixFirst) {
  using S = BasicTableString<char16_t>;
  EXPECT_LT(S(std::u16string(u"ab")).compare_(S(std::u16string(u"abc"))), 0);
  EXPECT_GT(S(std::u16string(u"b")).compare_(S(std::u16string(u"abc"))), 0);
  EXPECT_EQ(S(std::u16string(u"x")).compare_(S(std::u16string(u"x"))), 0);
  // U+E000 is above every surrogate; a signed comparison would get this wrong.
  EXPECT_LT(S(std::u16string(u"a")).compare_(S(std::u16string(u"\uE000"))), 0);
  EXPECT_GT(S(std::u16string(u"\uFFFF")).compare_(S(std::u16string(u"\u7FFF"))), 0);
}

TEST(TableString, KeepsEmbeddedNul) {
  BasicTableString<char> s("a\0b", 3);
  EXPECT_EQ(s.size(), 3u);
  EXPECT_EQ(std::string(s), std::string("a\0b", 3));
}

TEST(TableString, CopiesAcrossThreadsReleaseCleanly) {
  BasicTableString<char16_t> shared(std::u16string(u"shared text"));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([shared] {
      for (int i = 0; i < 10000; ++i) {
        BasicTableString<char16_t> copy = shared;
        ASSERT_EQ(copy.size(), 11u);
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(std::u16string(shared), u"shared text");
}

}  // namespace
