// The code-unit loops of object path parsing (private to src/object_path):
// marking where "/" is, finding the next "/", and copying a name with its
// white space cleaned. Each comes in a portable version and, where the target
// has SSE2, one that takes eight or sixteen code units at a time; the tests run
// both and compare them.
//
// Segments of path text are short (a name has a dozen code units or so), so
// the SSE2 versions finish a range that does not fill a whole step with one
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

/// Bit k set where p[k] is "/", for k < count <= 64; the bits from count up
/// are 0. Portable. `floor` is unused; it is there so that both versions have
/// one signature.
[[nodiscard]] inline std::uint64_t slash_bits_portable(const char16_t* /*floor*/, const char16_t* p,
                                                       std::size_t count) noexcept {
  std::uint64_t bits = 0;
  for (std::size_t k = 0; k < count; ++k) bits |= std::uint64_t{p[k] == u'/'} << k;
  return bits;
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
