// The separator scan behind node path parsing, which reads 64 code units at a
// time, held against a scan of one code unit at a time; and
// the parser held against a reference parser built from the public character
// tests, on texts long enough that slash runs straddle the 64-unit words.

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "expect_error.h"
#include "krel/ustring.h"
#include "node_path/node_sep_impl.h"
#include "ui/core/node_path.h"

namespace {

using ui::core::ErrorId;
using ui::core::NodePath;
using ui::core::ustring;
namespace detail = ui::core::detail;

std::string utf8(const ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

// A text of `length` units over `alphabet`, "/" drawn about `slash_share` of
// the time.
ustring random_text(std::mt19937& rng, std::size_t length, const std::u16string& alphabet,
                    double slash_share) {
  std::bernoulli_distribution slash(slash_share);
  std::uniform_int_distribution<std::size_t> other(0, alphabet.size() - 1);
  ustring text;
  for (std::size_t i = 0; i < length; ++i) text += slash(rng) ? u'/' : alphabet[other(rng)];
  return text;
}

// The separators one code unit at a time: a "/" followed by another starts
// an escaped pair, which is skipped whole, and any other "/" is a separator.
std::vector<std::size_t> reference_separators(const ustring& text) {
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'/') continue;
    if (i + 1 < text.size() && text[i + 1] == u'/') {
      ++i;
    } else {
      found.push_back(i);
    }
  }
  return found;
}

std::vector<std::size_t> scanned_separators(const char16_t* begin, const char16_t* end) {
  std::vector<std::size_t> found;
  const bool finished = detail::for_each_node_sep(begin, end, [&](const char16_t* sep) {
    found.push_back(static_cast<std::size_t>(sep - begin));
    return true;
  });
  EXPECT_TRUE(finished);
  return found;
}

TEST(NodeSepScan, FindsWhatTheOneAtATimeScanFinds) {
  std::mt19937 rng(0x5ca9u);
  for (int round = 0; round < 4000; ++round) {
    const std::size_t length = std::uniform_int_distribution<std::size_t>(0, 300)(rng);
    const double share = round % 3 == 0 ? 0.7 : (round % 3 == 1 ? 0.3 : 0.05);
    const ustring text = random_text(rng, length, u"ab", share);
    ASSERT_EQ(scanned_separators(text.data(), text.data() + text.size()),
              reference_separators(text))
        << utf8(text);
  }
}

// Runs of "/" of every length ending at every position around the word
// boundaries at 64 and 128.
TEST(NodeSepScan, RunsAcrossWordBoundaries) {
  for (std::size_t run = 1; run <= 5; ++run) {
    for (std::size_t start = 56; start < 136; ++start) {
      for (const std::size_t length : {start + run, start + run + 1, std::size_t{200}}) {
        ustring text(length, u'x');
        for (std::size_t k = start; k < start + run && k < length; ++k) text[k] = u'/';
        ASSERT_EQ(scanned_separators(text.data(), text.data() + text.size()),
                  reference_separators(text))
            << "run " << run << " at " << start << " in " << length;
      }
    }
  }
}

// A sub-range of a longer text: the scan reads nothing before its start and
// treats a "/" after its end as absent.
TEST(NodeSepScan, StaysInsideItsRange) {
  std::mt19937 rng(0x7a9eu);
  for (int round = 0; round < 2000; ++round) {
    const ustring text = random_text(rng, 160, u"ab", 0.4);
    const std::size_t first = std::uniform_int_distribution<std::size_t>(0, 80)(rng);
    const std::size_t last = std::uniform_int_distribution<std::size_t>(first, 160)(rng);
    const ustring part = text.substr(first, last - first);
    ASSERT_EQ(scanned_separators(text.data() + first, text.data() + last),
              reference_separators(part))
        << utf8(text) << " [" << first << ", " << last << ")";
  }
}

TEST(NodeSepScan, StopsWhenTheVisitorSaysSo) {
  const ustring text = u"a/b/c/d";
  std::vector<std::size_t> seen;
  const bool finished =
      detail::for_each_node_sep(text.data(), text.data() + text.size(), [&](const char16_t* sep) {
        seen.push_back(static_cast<std::size_t>(sep - text.data()));
        return seen.size() < 2;
      });
  EXPECT_FALSE(finished);
  EXPECT_EQ(seen, (std::vector<std::size_t>{1, 3}));
}

// What parsing must give, worked out with the public character tests: the
// refusal of the ends, or the pieces between the separators, or the first
// piece that is not an identifier.
struct Expected {
  std::optional<ErrorId> error;
  ustring argument;
  std::vector<ustring> ids;  // cleaned
};

Expected expected_parse(const ustring& text) {
  Expected out;
  if (!ui::core::is_node_path(text)) {
    out.error = ErrorId::InvalidNodePath;
    out.argument = text;
    return out;
  }
  if (text.empty()) return out;
  auto first = text.cbegin();
  for (;;) {
    const auto sep = ui::core::find_node_sep(first, text.cend());
    const ustring piece(first, sep);
    if (!ui::core::is_node_id(piece)) {
      out.error = ErrorId::InvalidNodeId;
      out.argument = piece;
      out.ids.clear();
      return out;
    }
    out.ids.push_back(ui::core::clean_white_space(piece));
    if (sep == text.cend()) return out;
    first = sep + 1;
  }
}

TEST(NodePathScan, LongTextsParseOrFailAsTheReferenceSays) {
  std::mt19937 rng(0x9a7bu);
  int accepted = 0;
  for (int round = 0; round < 6000; ++round) {
    const std::size_t length = std::uniform_int_distribution<std::size_t>(0, 260)(rng);
    // Mostly well-formed texts: few slashes, so that many texts parse.
    const double share = round % 2 == 0 ? 0.04 : 0.15;
    const ustring text = random_text(rng, length, u"abc \t\u00e9", share);
    const Expected expected = expected_parse(text);
    if (expected.error) {
      ASSERT_TRUE(test_support::throws_error([&] { const NodePath p(text); }, *expected.error,
                                             {test_support::text_arg(expected.argument)}))
          << utf8(text);
      EXPECT_FALSE(NodePath::make(text).has_value()) << utf8(text);
      continue;
    }
    ++accepted;
    const NodePath p(text);
    std::vector<ustring> ids;
    for (const auto& id : p) ids.push_back(id.ustring());
    ASSERT_EQ(ids, expected.ids) << utf8(text);
    const auto made = NodePath::make(text);
    ASSERT_TRUE(made.has_value()) << utf8(text);
    EXPECT_EQ(*made, p);
  }
  // The generator is meant to give both outcomes often.
  EXPECT_GT(accepted, 600);
  EXPECT_LT(accepted, 5400);
}

// A single white-space unit anywhere in a long text is cleaned, whichever
// 64-unit stretch of the text it falls in.
TEST(NodePathScan, CleansALoneBlankInAnyStretch) {
  for (const char16_t blank : {u'\t', u'\n', u'\r'}) {
    for (std::size_t at = 0; at < 200; ++at) {
      ustring text(200, u'x');
      for (std::size_t k = 9; k < 190; k += 10) text[k] = u'/';
      if (text[at] == u'/') continue;
      text[at] = blank;
      const NodePath p(text);
      ustring expected = text;
      expected[at] = u' ';
      ASSERT_EQ(p.ustring(), expected) << "blank at " << at;
    }
  }
}

}  // namespace
