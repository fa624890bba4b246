#include "krel/ustring.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstdint>
#include <string>
#include <string_view>

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

// The table of well-formed UTF-8 byte sequences of the Unicode standard: for
// each row, the range each byte may take.
struct ByteRange {
  unsigned char low;
  unsigned char high;
};
struct WellFormedRow {
  std::size_t length;
  std::array<ByteRange, 4> bytes;
};
constexpr std::array<WellFormedRow, 9> well_formed_rows{{
    {1, {{{0x00, 0x7F}}}},
    {2, {{{0xC2, 0xDF}, {0x80, 0xBF}}}},
    {3, {{{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}}}},
    {3, {{{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}}}},
    {3, {{{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}}}},
    {3, {{{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}}}},
    {4, {{{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}}},
    {4, {{{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}}},
    {4, {{{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}}},
}};

// The length of the sequence of the table that `bytes` starts with, or 0.
std::size_t table_length(std::string_view bytes) {
  for (const WellFormedRow& row : well_formed_rows) {
    if (bytes.size() < row.length) continue;
    bool fits = true;
    for (std::size_t i = 0; i < row.length && fits; ++i) {
      const auto b = static_cast<unsigned char>(bytes[i]);
      fits = b >= row.bytes[i].low && b <= row.bytes[i].high;
    }
    if (fits) return row.length;
  }
  return 0;
}

TEST(Utf8Validity, SequenceLengthFollowsTheTableOfWellFormedSequences) {
  // Every one- and two-byte text, and for longer ones every first and second
  // byte with the later bytes at the edges of the continuation range and
  // just outside it.
  const std::array<unsigned char, 6> later{0x00, 0x7F, 0x80, 0xBF, 0xC0, 0xFF};
  std::size_t checked = 0;
  for (unsigned b0 = 0; b0 < 256; ++b0) {
    const std::string one(1, static_cast<char>(b0));
    ASSERT_EQ(krel::utf8_sequence_length(one), table_length(one)) << b0;
    for (unsigned b1 = 0; b1 < 256; ++b1) {
      std::string text{static_cast<char>(b0), static_cast<char>(b1)};
      ASSERT_EQ(krel::utf8_sequence_length(text), table_length(text)) << b0 << ' ' << b1;
      for (const unsigned char b2 : later) {
        text.resize(2);
        text += static_cast<char>(b2);
        ASSERT_EQ(krel::utf8_sequence_length(text), table_length(text)) << b0 << ' ' << b1;
        for (const unsigned char b3 : later) {
          text.resize(3);
          text += static_cast<char>(b3);
          text += 'x';  // a byte after the sequence is never part of it
          ASSERT_EQ(krel::utf8_sequence_length(text), table_length(text)) << b0 << ' ' << b1;
          ++checked;
        }
      }
    }
  }
  EXPECT_EQ(checked, 256u * 256u * 36u);
  EXPECT_EQ(krel::utf8_sequence_length(""), 0u);
}

TEST(Utf8Validity, ClaimedLengthComesFromTheLeadByteAlone) {
  for (unsigned b = 0; b < 256; ++b) {
    const auto lead = static_cast<unsigned char>(b);
    std::size_t expected = 0;
    for (const WellFormedRow& row : well_formed_rows) {
      if (lead >= row.bytes[0].low && lead <= row.bytes[0].high) expected = row.length;
    }
    EXPECT_EQ(krel::utf8_claimed_length(lead), expected) << b;
  }
}

TEST(Utf8Validity, FirstInvalidByteIsFoundAfterValidText) {
  using namespace std::string_view_literals;
  EXPECT_EQ(krel::first_invalid_utf8(""), std::string_view::npos);
  EXPECT_EQ(krel::first_invalid_utf8("plain ASCII\t\0"sv), std::string_view::npos);
  // "Größe", then U+20AC and U+1F600: all valid.
  EXPECT_EQ(krel::first_invalid_utf8("Gr\xc3\xb6\xc3\x9f"
                                     "e \xe2\x82\xac \xf0\x9f\x98\x80"sv),
            std::string_view::npos);
  EXPECT_EQ(krel::first_invalid_utf8("ab\xff"sv), 2u);
  EXPECT_EQ(krel::first_invalid_utf8("\xc3\xb6\xc3"sv), 2u);              // cut short at the end
  EXPECT_EQ(krel::first_invalid_utf8("a\xc0\xaf"sv), 1u);                 // overlong '/'
  EXPECT_EQ(krel::first_invalid_utf8("\xe2\x82\xac\xed\xa0\x80"sv), 3u);  // a surrogate
  EXPECT_EQ(krel::first_invalid_utf8("\xf4\x90\x80\x80"sv), 0u);          // above U+10FFFF
  EXPECT_EQ(krel::first_invalid_utf8("\x80"sv), 0u);                      // a lone continuation
  EXPECT_EQ(krel::first_invalid_utf8("a\0\xc3"sv), 2u);                   // NUL is valid
}

TEST(Utf8Validity, ValidTextRoundTripsThroughUtf16) {
  // Every code point but the surrogates, encoded by hand.
  std::string text;
  for (char32_t c = 0; c <= 0x10FFFF; c += (c < 0x800 ? 1 : 0x3F)) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    if (c < 0x80) {
      text += static_cast<char>(c);
    } else if (c < 0x800) {
      text += static_cast<char>(0xC0 | (c >> 6));
      text += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      text += static_cast<char>(0xE0 | (c >> 12));
      text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      text += static_cast<char>(0xF0 | (c >> 18));
      text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      text += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  ASSERT_EQ(krel::first_invalid_utf8(text), std::string_view::npos);
  EXPECT_EQ(krel::ustring_to_utf8_string(krel::utf8_string_to_ustring(text)), text);
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
