#include "ui/core/text_utils.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ui::core;

std::string show(const ustring& text) {
  std::string out;
  for (char16_t c : text) {
    if (c >= 0x20 && c < 0x7F) {
      out += static_cast<char>(c);
    } else {
      static constexpr char hex[] = "0123456789ABCDEF";
      out += "\\u";
      for (int shift = 12; shift >= 0; shift -= 4) out += hex[(c >> shift) & 0xF];
    }
  }
  return out;
}

struct BlockRow {
  ustring path;
  ustring name;
  ustring without_model;
};

// Example paths of the host environment and the two pieces taken from them.
const std::vector<BlockRow>& block_rows() {
  static const std::vector<BlockRow> rows = {
      {u"model/sub/Gain", u"Gain", u"sub/Gain"},
      {u"model", u"model", u"model"},
      {u"", u"", u""},
      {u"model/", u"", u""},
      {u"/Gain", u"/Gain", u"Gain"},
      {u"model/a//b", u"a//b", u"a//b"},
      {u"mo//del/sub", u"sub", u"sub"},
      {u"a///b", u"//b", u"b"},
      {u"a//", u"a//", u"a//"},
      {u"//x", u"//x", u"//x"},
  };
  return rows;
}

// Longer runs of solidi, worked out by following the two scans step by step
// (positions count code units from 0).
//
// "a////b" (solidi at 1..4):
//   block_name: last solidus 4; 3 is a solidus, so resume at 2 -> 2; 1 is a
//   solidus, so resume at 0 -> none found. Whole path.
//   block_path_without_model: first solidus 1; 2 is a solidus, resume at 3
//   -> 3; 4 is a solidus, resume at 5 -> none found. Whole path.
// "a/////b" (solidi at 1..5):
//   block_name: 5; 4 is a solidus -> resume at 3 -> 3; 2 is a solidus ->
//   resume at 1 -> 1; 0 is 'a', stop. Separator 1: "////b".
//   block_path_without_model: 1; 2 is a solidus -> resume at 3 -> 3; 4 is a
//   solidus -> resume at 5 -> 5; 6 is 'b', stop. Separator 5: "b".
// "////" (solidi at 0..3):
//   block_name: 3; 2 -> resume at 1 -> 1; 0 is a solidus -> resume at 0 -> 0;
//   the loop needs p >= 1, stop. Separator at 0: whole path.
//   block_path_without_model: 0; 1 -> resume at 2 -> 2; 3 -> resume at 4 ->
//   none found. Whole path.
// "/////" (solidi at 0..4):
//   block_name: 4; 3 -> resume at 2 -> 2; 1 -> resume at 0 -> 0; stop.
//   Separator at 0: whole path.
//   block_path_without_model: 0; 1 -> resume at 2 -> 2; 3 -> resume at 4 ->
//   4; position 5 is past the end, stop. Separator 4 is the last code unit:
//   empty.
// "x////" (solidi at 1..4):
//   block_name: 4; 3 -> resume at 2 -> 2; 1 -> resume at 0 -> none. Whole.
//   block_path_without_model: 1; 2 -> resume at 3 -> 3; 4 -> resume at 5 ->
//   none. Whole.
// "x/////" (solidi at 1..5):
//   block_name: 5; 4 -> 3; 2 -> 1; 0 is 'x', stop. Separator 1: "////".
//   block_path_without_model: 1; 2 -> 3; 4 -> 5; past the end, stop.
//   Separator 5 is the last code unit: empty.
// "////b" (solidi at 0..3):
//   block_name: 3; 2 -> 1; 0 is a solidus -> resume at 0 -> 0; stop. Whole.
//   block_path_without_model: 0; 1 -> 2; 3 -> resume at 4 -> none. Whole.
// "/////b" (solidi at 0..4):
//   block_name: 4; 3 -> 2; 1 -> 0; stop. Separator at 0: whole path.
//   block_path_without_model: 0; 1 -> 2; 3 -> 4; 5 is 'b', stop. "b".
const std::vector<BlockRow>& long_run_rows() {
  static const std::vector<BlockRow> rows = {
      {u"a////b", u"a////b", u"a////b"}, {u"a/////b", u"////b", u"b"},
      {u"////", u"////", u"////"},       {u"/////", u"/////", u""},
      {u"x////", u"x////", u"x////"},    {u"x/////", u"////", u""},
      {u"////b", u"////b", u"////b"},    {u"/////b", u"/////b", u"b"},
  };
  return rows;
}

TEST(BlockName, GivesTheLastComponentOfEachExamplePath) {
  for (const BlockRow& row : block_rows()) {
    EXPECT_EQ(block_name(row.path), row.name) << show(row.path);
  }
}

TEST(BlockPathWithoutModel, DropsTheFirstComponentOfEachExamplePath) {
  for (const BlockRow& row : block_rows()) {
    EXPECT_EQ(block_path_without_model(row.path), row.without_model) << show(row.path);
  }
}

TEST(BlockName, MatchesEscapedPairsFromTheRightInLongRuns) {
  for (const BlockRow& row : long_run_rows()) {
    EXPECT_EQ(block_name(row.path), row.name) << show(row.path);
  }
}

TEST(BlockPathWithoutModel, MatchesEscapedPairsFromTheLeftInLongRuns) {
  for (const BlockRow& row : long_run_rows()) {
    EXPECT_EQ(block_path_without_model(row.path), row.without_model) << show(row.path);
  }
}

TEST(BlockName, KeepsEscapedSolidiInTheName) {
  EXPECT_EQ(block_name(u"m/a//b//c"), u"a//b//c");
  EXPECT_EQ(block_name(u"m/x/a//b//c"), u"a//b//c");
}

TEST(BlockPathWithoutModel, KeepsEscapedSolidiInTheRest) {
  EXPECT_EQ(block_path_without_model(u"m//n/a//b/c"), u"a//b/c");
  EXPECT_EQ(block_path_without_model(u"m/a//b/c//"), u"a//b/c//");
}

TEST(BlockName, TreatsOnlyU002FAsASeparator) {
  EXPECT_EQ(block_name(u"model\\sub\\Gain"), u"model\\sub\\Gain");
  EXPECT_EQ(block_name(u"model\u2215Gain"), u"model\u2215Gain");  // division slash
  EXPECT_EQ(block_path_without_model(u"m\uFF0Fx"), u"m\uFF0Fx");  // full-width solidus
}

TEST(BlockName, CopiesNonAsciiAndControlCodeUnits) {
  const ustring path = u"m\u00F6del/G\u00E4in\t\U0001F600";
  EXPECT_EQ(block_name(path), u"G\u00E4in\t\U0001F600");
  EXPECT_EQ(block_path_without_model(path), u"G\u00E4in\t\U0001F600");
}

// ---- escape_xml ---------------------------------------------------------

// The plainest possible statement of the escaping rule, one code unit at a
// time, to hold the real one against.
ustring reference_escape(const ustring& text) {
  ustring out;
  for (char16_t c : text) {
    switch (c) {
      case u'&':
        out += u"&amp;";
        break;
      case u'\'':
        out += u"&apos;";
        break;
      case u'"':
        out += u"&quot;";
        break;
      case u'>':
        out += u"&gt;";
        break;
      case u'<':
        out += u"&lt;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

TEST(EscapeXml, EscapesTheExampleSentence) {
  EXPECT_EQ(escape_xml(u"a<b & 'c' > x"), u"a&lt;b &amp; &apos;c&apos; &gt; x");
}

TEST(EscapeXml, EscapesEachOfTheFiveCharacters) {
  EXPECT_EQ(escape_xml(u"&"), u"&amp;");
  EXPECT_EQ(escape_xml(u"'"), u"&apos;");
  EXPECT_EQ(escape_xml(u"\""), u"&quot;");
  EXPECT_EQ(escape_xml(u">"), u"&gt;");
  EXPECT_EQ(escape_xml(u"<"), u"&lt;");
  EXPECT_EQ(escape_xml(u"<<>>"), u"&lt;&lt;&gt;&gt;");
}

TEST(EscapeXml, EscapesAnExistingEntityAgain) {
  EXPECT_EQ(escape_xml(u"&amp;"), u"&amp;amp;");
  EXPECT_EQ(escape_xml(escape_xml(u"<")), u"&amp;lt;");
}

TEST(EscapeXml, EmptyTextStaysEmpty) {
  EXPECT_EQ(escape_xml(u""), u"");
}

TEST(EscapeXml, TextWithoutSpecialCharactersComesBackEqual) {
  const ustring plain = u"The quick brown fox, 42 times; (a+b)*c = d/e [ok] {x} #1 @ % ~ ` ? !";
  EXPECT_EQ(escape_xml(plain), plain);
}

TEST(EscapeXml, CopiesControlCharactersAndNulUnchanged) {
  const ustring text(u"\0\x01\t\n\r\x1F\x7F", 7);
  EXPECT_EQ(escape_xml(text), text);
  EXPECT_EQ(escape_xml(ustring(u"<\0>", 3)), ustring(u"&lt;\0&gt;", 9));
}

TEST(EscapeXml, CopiesLoneAndPairedSurrogatesUnchanged) {
  const ustring text = {0xD83D, 0xDE00, u'&', 0xD800, u'x', 0xDFFF, 0xDC00, 0xDBFF};
  const ustring expected = {0xD83D, 0xDE00, u'&', u'a',   u'm',   u'p',
                            u';',   0xD800, u'x', 0xDFFF, 0xDC00, 0xDBFF};
  EXPECT_EQ(escape_xml(text), expected);
}

TEST(EscapeXml, LeavesWideCodeUnitsWhoseLowByteIsSpecialAlone) {
  // Each of these has the low byte of one of the five characters; only the
  // whole code unit counts.
  const ustring text = {0x0126, 0x0127, 0x0122, 0x013E, 0x013C, 0x263C, 0xFF1C, 0xFF06, 0x2026};
  EXPECT_EQ(escape_xml(text), text);
}

TEST(EscapeXml, FindsSpecialCharactersAtBothEndsOfLongText) {
  ustring text(10000, u'x');
  text.front() = u'<';
  text.back() = u'&';
  text[4999] = u'"';
  EXPECT_EQ(escape_xml(text), reference_escape(text));
}

TEST(EscapeXml, AgreesWithThePlainRuleOnGeneratedTexts) {
  // Code units drawn from classes the scan must tell apart: the five special
  // characters, their neighbours in ASCII, control characters, surrogates and
  // wide code units that share a low byte with a special one.
  const std::vector<char16_t> special = {u'&', u'\'', u'"', u'>', u'<'};
  const std::vector<char16_t> tricky = {u'%',   u'(',   u'=',   u'?',   u';',   u'#',
                                        0x0000, 0x0009, 0x001F, 0x007F, 0x0080, 0x0126,
                                        0x3C3C, 0xFF1C, 0xD800, 0xDBFF, 0xDC00, 0xDFFF};
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> kind(0, 9);
    std::uniform_int_distribution<std::size_t> length(0, seed % 10 == 0 ? 5000 : 200);
    std::uniform_int_distribution<unsigned> any(0, 0xFFFF);
    std::uniform_int_distribution<unsigned> ascii(0x20, 0x7E);
    const std::size_t n = length(rng);
    ustring text;
    for (std::size_t i = 0; i < n; ++i) {
      const int k = kind(rng);
      if (k == 0) {
        text += special[rng() % special.size()];
      } else if (k <= 2) {
        text += tricky[rng() % tricky.size()];
      } else if (k <= 4) {
        text += static_cast<char16_t>(any(rng));
      } else {
        text += static_cast<char16_t>(ascii(rng));
      }
    }
    ASSERT_EQ(escape_xml(text), reference_escape(text)) << "seed " << seed << ": " << show(text);
  }
}

TEST(EscapeXml, LeavesItsArgumentUnchanged) {
  const ustring original = u"<a href='x'>&</a>";
  ustring text = original;
  (void)escape_xml(text);
  EXPECT_EQ(text, original);
}

TEST(EscapeXml, ConcurrentFirstCallsAllGetTheFullTable) {
  // Each test runs in its own process, so these threads race to build the
  // replacement table; every one must see all five entries.
  const ustring text = u"<'&\">";
  const ustring expected = u"&lt;&apos;&amp;&quot;&gt;";
  std::array<ustring, 4> results;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([&, i] { results[i] = escape_xml(text); });
  }
  for (auto& t : threads) t.join();
  for (const ustring& r : results) EXPECT_EQ(r, expected);
}

}  // namespace
