// Finding the code units that XML escaping replaces (private to src/text).
//
// The replacements themselves live in escape_xml's table; these scans only
// say which code units of a block of sixteen are to be replaced. Every key of
// that table is checked against is_xml_special when the table is built, and the
// tests compare both twins of the scan with the table over every code unit.

#ifndef UI_CORE_SRC_TEXT_XML_SCAN_IMPL_H
#define UI_CORE_SRC_TEXT_XML_SCAN_IMPL_H

#include <cstddef>

#include "../common/scan_impl.h"

namespace ui::core::detail {

/// True for & ' " < and >.
[[nodiscard]] constexpr bool is_xml_special(char16_t c) noexcept {
  return c == u'&' || c == u'\'' || c == u'"' || c == u'<' || c == u'>';
}

/// The code units of is_xml_special, as a set for the scans of
/// common/scan_impl.h.
struct XmlSpecials {
  [[nodiscard]] static constexpr bool contains(char16_t c) noexcept { return is_xml_special(c); }
#if UI_CORE_HAVE_SSE2
  /// On sixteen units narrowed to bytes (see Sse2Scan::mask16): & and ' are
  /// found as (b | 1) == 0x27, < and > as (b | 2) == 0x3E, and " directly:
  /// three compares for five keys.
  [[nodiscard]] static __m128i byte_lanes(__m128i bytes) noexcept {
    const auto same = [](__m128i a, char b) { return _mm_cmpeq_epi8(a, _mm_set1_epi8(b)); };
    return _mm_or_si128(_mm_or_si128(same(_mm_or_si128(bytes, _mm_set1_epi8(1)), 0x27),
                                     same(_mm_or_si128(bytes, _mm_set1_epi8(2)), 0x3E)),
                        same(bytes, 0x22));
  }
#endif
};

/// How many code units the block scans look at in one step.
inline constexpr std::size_t xml_block = 16;

/// Bit i set when code unit p[i] of the xml_block units at p is special.
[[nodiscard]] inline unsigned xml_special_mask(const char16_t* p) noexcept {
  return FastScan::mask16<XmlSpecials>(p);
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_TEXT_XML_SCAN_IMPL_H
