// The code-unit loops of object path parsing (private to src/object_path):
// finding the next "/", and copying a name with its white space cleaned (the
// marking of where "/" is, which node paths share, is in common/scan_impl.h).
// Each comes in a portable version and, where the target has SSE2, one that
// takes eight code units at a time; the tests run both and compare them.
//
// Segments of path text are short (a name has a dozen code units or so), so
// the SSE2 versions (and slash_bits) finish a range that does not fill a whole step with one
// more step that overlaps what was already done, instead of a loop over single
// code units. That step stays inside memory that may be read: the scans are
// told where the readable text begins, and the copy rewrites units it has
// already written with the same values.

#ifndef UI_CORE_SRC_OBJECT_PATH_OBJECT_PATH_SCAN_IMPL_H
#define UI_CORE_SRC_OBJECT_PATH_OBJECT_PATH_SCAN_IMPL_H

#include <cstddef>
#include <cstdint>

#include "../common/scan_impl.h"

namespace ui::core::detail {

/// The code units that a name stores as a space: the POSIX white space \t,
/// \n, \v, \f, \r and the space itself (which stays what it is).
[[nodiscard]] constexpr char16_t cleaned_unit(char16_t c) noexcept {
  return static_cast<unsigned>(c) - u'\t' <= unsigned{u'\r' - u'\t'} ? u' ' : c;
}

/// The first "/" in [p, end), or `end`. Portable. `floor` is unused; it is
/// there so that both versions have one signature.
[[nodiscard]] inline const char16_t* find_slash_portable(const char16_t* /*floor*/,
                                                         const char16_t* p,
                                                         const char16_t* end) noexcept {
  return find_unit_portable(p, end, u'/');
}

/// Writes the n code units at `src` to `out`, white space cleaned. Portable.
inline void copy_cleaned_portable(const char16_t* src, std::size_t n, char16_t* out) noexcept {
  for (std::size_t i = 0; i < n; ++i) out[i] = cleaned_unit(src[i]);
}

#if UI_CORE_HAVE_SSE2

/// The first "/" in [p, end), or `end`, eight code units per step. Reads only
/// code units in [floor, end), where floor <= p; when at least eight of them
/// lie there, the last step ends at `end` and ignores the units before p.
[[nodiscard]] inline const char16_t* find_slash_sse2(const char16_t* floor, const char16_t* p,
                                                     const char16_t* end) noexcept {
  const __m128i slash = _mm_set1_epi16(static_cast<short>(u'/'));
  while (end - p >= 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(units, slash)));
    // Two mask bits per code unit.
    if (mask != 0) return p + (__builtin_ctz(mask) >> 1);
    p += 8;
  }
  if (p == end) return end;
  if (end - floor < 8) return find_unit_portable(p, end, u'/');
  const char16_t* const last = end - 8;  // before p: those units are dropped from the mask
  const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(last));
  const auto mask =
      static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(units, slash))) >> (2 * (p - last));
  return mask != 0 ? p + (__builtin_ctz(mask) >> 1) : end;
}

/// Eight code units, white space cleaned.
[[nodiscard]] inline __m128i cleaned_units_sse2(__m128i units) noexcept {
  // \t..\r are the units whose distance above \t, taken unsigned, is at most 4.
  const __m128i above_tab = _mm_sub_epi16(units, _mm_set1_epi16(static_cast<short>(u'\t')));
  const __m128i blank =
      _mm_cmpeq_epi16(_mm_subs_epu16(above_tab, _mm_set1_epi16(4)), _mm_setzero_si128());
  return _mm_or_si128(_mm_andnot_si128(blank, units),
                      _mm_and_si128(blank, _mm_set1_epi16(static_cast<short>(u' '))));
}

/// The same as copy_cleaned_portable, eight code units per step. Writes only
/// out[0, n).
inline void copy_cleaned_sse2(const char16_t* src, std::size_t n, char16_t* out) noexcept {
  if (n < 8) {
    copy_cleaned_portable(src, n, out);
    return;
  }
  std::size_t i = 0;
  for (; n - i >= 8; i += 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), cleaned_units_sse2(units));
  }
  if (i != n) {
    // The last eight units, overlapping units already written.
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + n - 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + n - 8), cleaned_units_sse2(units));
  }
}

#endif

/// The first "/" in [p, end), reading no code unit before `floor` (<= p):
/// the fastest version the target has.
[[nodiscard]] inline const char16_t* find_slash(const char16_t* floor, const char16_t* p,
                                                const char16_t* end) noexcept {
#if UI_CORE_HAVE_SSE2
  return find_slash_sse2(floor, p, end);
#else
  return find_slash_portable(floor, p, end);
#endif
}

/// The n code units at `src`, white space cleaned, written to `out`: the
/// fastest version the target has. `src` and `out` do not overlap.
inline void copy_cleaned(const char16_t* src, std::size_t n, char16_t* out) noexcept {
#if UI_CORE_HAVE_SSE2
  copy_cleaned_sse2(src, n, out);
#else
  copy_cleaned_portable(src, n, out);
#endif
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_OBJECT_PATH_OBJECT_PATH_SCAN_IMPL_H
