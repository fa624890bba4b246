// The code-unit scans in both versions, the SIMD one (where the target has
// SSE2) and the portable one, held against each other and against
// escape_xml's table, over every code unit and over random texts.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "common/scan_impl.h"
#include "text/xml_scan_impl.h"
#include "ui/core/text_utils.h"

namespace {

using ui::core::ustring;
namespace detail = ui::core::detail;

using Finder = const char16_t* (*)(const char16_t*, const char16_t*);
using Masker = unsigned (*)(const char16_t*);

// Both twins of the scan primitive, the portable one first.
template <class Set>
std::vector<Masker> maskers() {
  std::vector<Masker> maskers{&detail::PortableScan::mask16<Set>};
#if UI_CORE_HAVE_SSE2
  maskers.push_back(&detail::Sse2Scan::mask16<Set>);
#endif
  return maskers;
}

// A finder that is given no readable unit before its start.
template <class Scan, class Set>
const char16_t* find_from_start(const char16_t* p, const char16_t* end) {
  return detail::find_first<Scan, Set>(p, p, end);
}

template <class Set>
std::vector<Finder> finders() {
  std::vector<Finder> finders{&find_from_start<detail::PortableScan, Set>};
#if UI_CORE_HAVE_SSE2
  finders.push_back(&find_from_start<detail::Sse2Scan, Set>);
#endif
  return finders;
}

TEST(XmlScan, SpecialExactlyWhereEscapeXmlReplaces) {
  for (std::uint32_t u = 0; u <= 0xFFFF; ++u) {
    const auto c = static_cast<char16_t>(u);
    const bool replaced = ui::core::escape_xml(ustring(1, c)) != ustring(1, c);
    ASSERT_EQ(detail::is_xml_special(c), replaced) << "code unit " << u;
  }
}

// Every code unit at every position of a block sets exactly its own bit in
// every version when it is special, and no bit otherwise.
TEST(XmlScan, EveryVersionMasksEveryCodeUnitAtEveryPosition) {
  for (Masker mask : maskers<detail::XmlSpecials>()) {
    for (std::uint32_t u = 0; u <= 0xFFFF; ++u) {
      const auto c = static_cast<char16_t>(u);
      const std::size_t k = u % detail::xml_block;
      ustring block(detail::xml_block, u'a');
      block[k] = c;
      const unsigned expected = detail::is_xml_special(c) ? 1u << k : 0u;
      ASSERT_EQ(mask(block.data()), expected) << "code unit " << u;
    }
  }
}

TEST(XmlScan, VersionsAgreeOnRandomBlocks) {
  std::mt19937 rng(7);
  const char16_t alphabet[] = {u'a',      u'&',      u'<',      u'>',      u'"',      u'\'',
                               u' ',      u'\u00e9', u'\uff1c', u'\u2726', u'\u0126', u'\u2600',
                               u'\u003c', u'\u0000', u'\uffff', u'\u8026'};
  for (int round = 0; round < 100000; ++round) {
    ustring block(detail::xml_block, u'x');
    for (char16_t& c : block) c = alphabet[rng() % std::size(alphabet)];
    const unsigned expected = detail::PortableScan::mask16<detail::XmlSpecials>(block.data());
    for (Masker mask : maskers<detail::XmlSpecials>()) ASSERT_EQ(mask(block.data()), expected);
  }
}

// escape_xml over texts of every length around the block size, with specials
// at random places, gives what the per-unit table gives.
TEST(XmlScan, EscapeXmlMatchesThePerUnitRuleAcrossBlockBoundaries) {
  std::mt19937 rng(11);
  const char16_t alphabet[] = {u'a', u'&', u'<', u'>', u'"', u'\'', u'\u00e9', u'\u2726'};
  for (std::size_t length = 0; length < 70; ++length) {
    for (int round = 0; round < 50; ++round) {
      ustring text(length, u'x');
      for (char16_t& c : text) c = rng() % 5 == 0 ? alphabet[rng() % std::size(alphabet)] : u'b';
      ustring expected;
      for (char16_t c : text) expected += ui::core::escape_xml(ustring(1, c));
      ASSERT_EQ(ui::core::escape_xml(text), expected);
    }
  }
}

TEST(UnitScan, EveryVersionFindsTheSlashAtEveryPosition) {
  for (Finder find : finders<detail::SlashUnit>()) {
    for (std::size_t length = 0; length < 40; ++length) {
      for (std::size_t k = 0; k <= length; ++k) {
        ustring text(length, u'a');
        // A code unit whose low byte is "/" must not be taken for one.
        for (std::size_t i = 0; i < length; ++i) text[i] = i % 2 == 0 ? u'\u012f' : u'\u2f00';
        if (k < length) text[k] = u'/';
        const char16_t* hit = find(text.data(), text.data() + length);
        ASSERT_EQ(static_cast<std::size_t>(hit - text.data()), k);
      }
    }
  }
}

}  // namespace

namespace {

// Every code unit at every position of a text longer than two blocks is found
// by every version exactly when it is POSIX white space.
TEST(SpaceScan, EveryVersionFindsEveryCodeUnitAtEveryPosition) {
  for (Finder find : finders<detail::SpaceUnits>()) {
    for (std::uint32_t u = 0; u <= 0xFFFF; ++u) {
      const auto c = static_cast<char16_t>(u);
      const bool space =
          c == u' ' || c == u'\t' || c == u'\n' || c == u'\v' || c == u'\f' || c == u'\r';
      const std::size_t k = u % 37;
      ustring text(37, u'a');
      text[k] = c;
      const char16_t* hit = find(text.data(), text.data() + text.size());
      ASSERT_EQ(static_cast<std::size_t>(hit - text.data()), space ? k : text.size()) << u;
    }
  }
}

TEST(SpaceScan, CleanSpacesReplacesEachWhiteSpaceUnitByOneSpace) {
  ustring text = u"a\tb\nc\vd\fe\rf g\u00a0h\u2028i\u0009\u000d";
  text += ustring(40, u'x') + u"\t";
  ustring expected = u"a b c d e f g\u00a0h\u2028i  ";
  expected += ustring(40, u'x') + u" ";
  detail::clean_spaces(text.data(), text.data() + text.size());
  EXPECT_EQ(text, expected);
}

}  // namespace
