// Scans over UTF-16 code units (private to the library's sources).
//
// The kernel's hot loops look for a few ASCII code units in long runs of
// ordinary text: "/" in paths, white space to clean in names, the five XML
// specials in text to escape. On x86-64 (where SSE2 is always present) they
// compare 8 or 16 code units at a time, or mark where "/" is in 64 of them
// with one bit per unit; every other target gets the portable loops. Both versions are always
// compiled where SSE2 exists, and the tests run both, so the portable path is
// never left untested.

#ifndef UI_CORE_SRC_COMMON_SCAN_IMPL_H
#define UI_CORE_SRC_COMMON_SCAN_IMPL_H

#include <cstddef>
#include <cstdint>

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

/// Bit k set where p[k] is "/", for k < count <= 64; the bits from count up
/// are 0. Portable. `floor` is unused; it is there so that both versions have
/// one signature.
[[nodiscard]] inline std::uint64_t slash_bits_portable(const char16_t* /*floor*/, const char16_t* p,
                                                       std::size_t count) noexcept {
  std::uint64_t bits = 0;
  for (std::size_t k = 0; k < count; ++k) bits |= std::uint64_t{p[k] == u'/'} << k;
  return bits;
}

#if UI_CORE_HAVE_SSE2
/// One bit per code unit of the sixteen at p: set where the unit is "/".
[[nodiscard]] inline unsigned slash_mask16_sse2(const char16_t* p) noexcept {
  const __m128i slash = _mm_set1_epi16(static_cast<short>(u'/'));
  const __m128i low = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), slash);
  const __m128i high =
      _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8)), slash);
  // Packing turns each all-ones or all-zeros 16-bit lane into one byte.
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}

/// The same as slash_bits_portable, sixteen code units per step. Reads only
/// code units in [floor, p + count), where floor <= p.
[[nodiscard]] inline std::uint64_t slash_bits_sse2(const char16_t* floor, const char16_t* p,
                                                   std::size_t count) noexcept {
  std::uint64_t bits = 0;
  std::size_t k = 0;
  for (; count - k >= 16; k += 16) bits |= std::uint64_t{slash_mask16_sse2(p + k)} << k;
  const std::size_t rest = count - k;
  if (rest == 0) return bits;
  const char16_t* const stop = p + count;
  if (stop - floor < 16) return bits | (slash_bits_portable(floor, p + k, rest) << k);
  // The sixteen units that end at `stop`; those before p + k are dropped.
  return bits | (std::uint64_t{slash_mask16_sse2(stop - 16) >> (16 - rest)} << k);
}

#endif

/// Bit k set where p[k] is "/", for k < count <= 64, reading no code unit
/// before `floor` (<= p): the fastest version the target has.
[[nodiscard]] inline std::uint64_t slash_bits(const char16_t* floor, const char16_t* p,
                                              std::size_t count) noexcept {
#if UI_CORE_HAVE_SSE2
  return slash_bits_sse2(floor, p, count);
#else
  return slash_bits_portable(floor, p, count);
#endif
}

/// True for the POSIX white-space code units: space, \t, \n, \v, \f, \r.
[[nodiscard]] constexpr bool is_space_unit(char16_t c) noexcept {
  return c == u' ' || (c >= u'\t' && c <= u'\r');
}

/// The first white-space code unit in [p, end), or `end`. Portable.
[[nodiscard]] inline const char16_t* find_space_portable(const char16_t* p,
                                                         const char16_t* end) noexcept {
  for (; p != end; ++p) {
    if (is_space_unit(*p)) return p;
  }
  return end;
}

#if UI_CORE_HAVE_SSE2
/// The same, sixteen code units per step: narrowed to bytes with unsigned
/// saturation (code units above 0xFF become 0xFF or 0x00, neither of them
/// white space), then b == 0x20, or b - 9 (wrapping) at most 4.
[[nodiscard]] inline const char16_t* find_space_sse2(const char16_t* p,
                                                     const char16_t* end) noexcept {
  while (end - p >= 16) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
    const __m128i bytes = _mm_packus_epi16(lo, hi);
    const __m128i shifted = _mm_sub_epi8(bytes, _mm_set1_epi8(9));
    const __m128i hits =
        _mm_or_si128(_mm_cmpeq_epi8(_mm_min_epu8(shifted, _mm_set1_epi8(4)), shifted),
                     _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x20)));
    const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(hits));
    if (mask != 0) return p + __builtin_ctz(mask);
    p += 16;
  }
  return find_space_portable(p, end);
}
#endif

/// The first white-space code unit in [p, end), or `end`: the fastest version
/// the target has.
[[nodiscard]] inline const char16_t* find_space(const char16_t* p, const char16_t* end) noexcept {
#if UI_CORE_HAVE_SSE2
  return find_space_sse2(p, end);
#else
  return find_space_portable(p, end);
#endif
}

/// Replaces each white-space code unit of [p, end) by a space, in place.
inline void clean_spaces(char16_t* p, char16_t* end) noexcept {
  for (p = const_cast<char16_t*>(find_space(p, end)); p != end; ++p) {
    if (is_space_unit(*p)) *p = u' ';
  }
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_COMMON_SCAN_IMPL_H
