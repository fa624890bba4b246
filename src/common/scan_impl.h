// Scans over UTF-16 code units (private to the library's sources).
//
// The kernel's hot loops look for a few ASCII code units in long runs of
// ordinary text: "/" in paths, the five XML specials in text to escape. On
// x86-64 (where SSE2 is always present) they compare 8 or 16 code units at a
// time; every other target gets the portable loops. Both versions are always
// compiled where SSE2 exists, and the tests run both, so the portable path is
// never left untested.

#ifndef UI_CORE_SRC_COMMON_SCAN_IMPL_H
#define UI_CORE_SRC_COMMON_SCAN_IMPL_H

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#define UI_CORE_HAVE_SSE2 1
#else
#define UI_CORE_HAVE_SSE2 0
#endif

namespace ui::core::detail {

/// The first `unit` in [p, end), or `end`. Portable.
[[nodiscard]] inline const char16_t* find_unit_portable(const char16_t* p, const char16_t* end,
                                                        char16_t unit) noexcept {
  for (; p != end; ++p) {
    if (*p == unit) return p;
  }
  return end;
}

#if UI_CORE_HAVE_SSE2
/// The same, eight code units per step.
[[nodiscard]] inline const char16_t* find_unit_sse2(const char16_t* p, const char16_t* end,
                                                    char16_t unit) noexcept {
  const __m128i key = _mm_set1_epi16(static_cast<short>(unit));
  while (end - p >= 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(units, key)));
    // Two mask bits per code unit.
    if (mask != 0) return p + (__builtin_ctz(mask) >> 1);
    p += 8;
  }
  return find_unit_portable(p, end, unit);
}
#endif

/// The first `unit` in [p, end), or `end`: the fastest version the target has.
[[nodiscard]] inline const char16_t* find_unit(const char16_t* p, const char16_t* end,
                                               char16_t unit) noexcept {
#if UI_CORE_HAVE_SSE2
  return find_unit_sse2(p, end, unit);
#else
  return find_unit_portable(p, end, unit);
#endif
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_COMMON_SCAN_IMPL_H
