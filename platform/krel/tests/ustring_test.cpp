#include "krel/ustring.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

// Sets LC_CTYPE for one test and restores the previous setting afterwards.
class CtypeLocale {
 public:
  explicit CtypeLocale(const char* name) : old_(std::setlocale(LC_CTYPE, nullptr)) {
    ok_ = std::setlocale(LC_CTYPE, name) != nullptr;
  }
  ~CtypeLocale() { std::setlocale(LC_CTYPE, old_.c_str()); }
  bool ok() const { return ok_; }

 private:
  std::string old_;
  bool ok_ = false;
};

TEST(Utf8, RoundTripsValidText) {
  const krel::ustring text = u"Gr\u00fc\u00dfe \u6f22\u5b57 \U0001F600 a/b";
  const std::string utf8 = krel::ustring_to_utf8_string(text);
  EXPECT_EQ(utf8,
            "Gr\xc3\xbc\xc3\x9f"
            "e \xe6\xbc\xa2\xe5\xad\x97 \xf0\x9f\x98\x80 a/b");
  EXPECT_EQ(krel::utf8_string_to_ustring(utf8), text);
}

TEST(Utf8, LoneSurrogateBecomesReplacementCharacter) {
  krel::ustring text = u"a";
  text += char16_t(0xD800);
  text += u"b";
  EXPECT_EQ(krel::ustring_to_utf8_string(text),
            "a\xef\xbf\xbd"
            "b");
  krel::ustring low(1, char16_t(0xDC00));
  EXPECT_EQ(krel::ustring_to_utf8_string(low), "\xef\xbf\xbd");
}

TEST(Utf8, InvalidUtf8BecomesReplacementCharacter) {
  EXPECT_EQ(krel::utf8_string_to_ustring(std::string("a\xff"
                                                     "b")),
            u"a\uFFFDb");
  EXPECT_EQ(krel::utf8_string_to_ustring(std::string("\xc3")), u"\uFFFD");
}

TEST(Utf8, EmptyTextStaysEmpty) {
  EXPECT_EQ(krel::ustring_to_utf8_string(krel::ustring()), "");
  EXPECT_EQ(krel::utf8_string_to_ustring(std::string()), u"");
}

TEST(Utf8, KeepsEmbeddedNul) {
  const krel::ustring text(u"a\0b", 3);
  EXPECT_EQ(krel::ustring_to_utf8_string(text), std::string("a\0b", 3));
}

TEST(LocalEncoding, CLocaleIsAsciiWithQuestionMarks) {
  CtypeLocale c("C");
  ASSERT_TRUE(c.ok());
  EXPECT_EQ(krel::ustring_to_local_encoded_string(u"abc"), "abc");
  EXPECT_EQ(krel::ustring_to_local_encoded_string(u"Gr\u00fc\u00dfe"), "Gr??e");
  EXPECT_EQ(krel::local_encoded_string_to_ustring("abc"), u"abc");
}

TEST(LocalEncoding, Utf8LocaleIsUtf8) {
  CtypeLocale c("C.UTF-8");
  ASSERT_TRUE(c.ok());
  EXPECT_EQ(krel::ustring_to_local_encoded_string(u"Gr\u00fc\u00dfe"),
            "Gr\xc3\xbc\xc3\x9f"
            "e");
  EXPECT_EQ(krel::local_encoded_string_to_ustring("Gr\xc3\xbc\xc3\x9f"
                                                  "e"),
            u"Gr\u00fc\u00dfe");
  krel::ustring lone = u"x";
  lone += char16_t(0xDFFF);
  EXPECT_EQ(krel::ustring_to_local_encoded_string(lone), "x?");
}

TEST(IsAsciiString, ChecksEveryCodeUnit) {
  EXPECT_TRUE(krel::is_ascii_string(u""));
  EXPECT_TRUE(krel::is_ascii_string(u"//1, 2\x7f"));
  EXPECT_FALSE(krel::is_ascii_string(u"1\u0660"));
  EXPECT_FALSE(krel::is_ascii_string(u"\u0080"));
}

TEST(Tokenize, KeepsEmptyPieces) {
  using V = std::vector<std::string>;
  EXPECT_EQ(krel::tokenize("1,,2", ","), (V{"1", "", "2"}));
  EXPECT_EQ(krel::tokenize("", ","), (V{""}));
  EXPECT_EQ(krel::tokenize(",", ","), (V{"", ""}));
  EXPECT_EQ(krel::tokenize("1,", ","), (V{"1", ""}));
  EXPECT_EQ(krel::tokenize("a;b,c", ",;"), (V{"a", "b", "c"}));
  EXPECT_EQ(krel::tokenize("abc", ","), (V{"abc"}));
}

TEST(Trim, RemovesOnlyPosixSpaceAtBothEnds) {
  EXPECT_EQ(krel::trim(" \t\n\v\f\r a b \r\n"), "a b");
  EXPECT_EQ(krel::trim(""), "");
  EXPECT_EQ(krel::trim("   "), "");
  EXPECT_EQ(krel::trim("x"), "x");
  EXPECT_EQ(krel::trim("\xa0x\xa0"), "\xa0x\xa0");
}

TEST(PosixClasses, SpaceAndPunctuationAreTheAsciiClasses) {
  for (char32_t c = 0; c < 0x80; ++c) {
    EXPECT_EQ(krel::is_posix_space(c), c == ' ' || (c >= 9 && c <= 13)) << unsigned(c);
    const bool punct =
        c > 0x20 && c < 0x7f &&
        !((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'));
    EXPECT_EQ(krel::is_posix_punct(c), punct) << unsigned(c);
  }
  EXPECT_FALSE(krel::is_posix_space(0xA0));
  EXPECT_FALSE(krel::is_posix_punct(0xA1));
}

}  // namespace
