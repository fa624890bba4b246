// Finding the code units that XML escaping replaces (private to src/text).
//
// The replacements themselves live in escape_xml's table; these scans only
// say which code units of a block of sixteen are to be replaced. Every key of that table is checked
// against is_xml_special when the table is built, and the tests compare both scans with the table
// over every code unit.

#ifndef UI_CORE_SRC_TEXT_XML_SCAN_IMPL_H
#define UI_CORE_SRC_TEXT_XML_SCAN_IMPL_H

#include <cstddef>

#include "../common/scan_impl.h"

namespace ui::core::detail {

/// True for & ' " < and >.
[[nodiscard]] constexpr bool is_xml_special(char16_t c) noexcept {
  return c == u'&' || c == u'\'' || c == u'"' || c == u'<' || c == u'>';
}

/// How many code units the block scans look at in one step.
inline constexpr std::size_t xml_block = 16;

/// Bit i set when code unit p[i] of the xml_block units at p is special.
/// Portable.
[[nodiscard]] inline unsigned xml_special_mask_portable(const char16_t* p) noexcept {
  unsigned mask = 0;
  for (std::size_t i = 0; i < xml_block; ++i) {
    mask |= static_cast<unsigned>(is_xml_special(p[i])) << i;
  }
  return mask;
}

#if UI_CORE_HAVE_SSE2
/// The same with SSE2. The units are narrowed to bytes with unsigned
/// saturation (everything above 0xFF becomes 0xFF or 0x00, neither of them
/// special), then & and ' are found as (b | 1) == 0x27, < and > as
/// (b | 2) == 0x3E, and " directly: three compares for five keys.
[[nodiscard]] inline unsigned xml_special_mask_sse2(const char16_t* p) noexcept {
  const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
  const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
  const __m128i bytes = _mm_packus_epi16(lo, hi);
  const __m128i hits = _mm_or_si128(
      _mm_or_si128(_mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(1)), _mm_set1_epi8(0x27)),
                   _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(2)), _mm_set1_epi8(0x3E))),
      _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x22)));
  return static_cast<unsigned>(_mm_movemask_epi8(hits));
}
#endif

/// The mask of the xml_block units at p: the fastest version the target has.
[[nodiscard]] inline unsigned xml_special_mask(const char16_t* p) noexcept {
#if UI_CORE_HAVE_SSE2
  return xml_special_mask_sse2(p);
#else
  return xml_special_mask_portable(p);
#endif
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_TEXT_XML_SCAN_IMPL_H
