// Scans over UTF-16 code units (private to the library's sources).
//
// The kernel's hot loops look for a few ASCII code units in long runs of
// ordinary text: "/" in paths, white space to clean in names, the five XML
// specials in text to escape. Each of those is a set of code units (SlashUnit,
// SpaceUnits here, XmlSpecials in text/xml_scan_impl.h) with one test of a
// single unit and, where the target has SSE2, one test of eight units at once
// (`lanes`) or, for a set of units from 0x01 to 0xFE, of sixteen units narrowed
// to bytes (`byte_lanes`).
// Every scan is built on one primitive, the mask of the members of a set among
// sixteen code units, which comes in two twins: Sse2Scan and PortableScan.
// FastScan names the one the target uses; the tests run both on every code
// unit at every position, so the portable twin is never left untested.
//
//   const char16_t* slash = find_first<FastScan, SlashUnit>(begin, p, end);
//   std::uint64_t spaces = unit_bits<FastScan, SpaceUnits>(begin, p, 64);

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

/// The library's white space: the POSIX "space" code units, space, \t, \n,
/// \v, \f and \r. Names and identifiers store each of them as a space, and
/// subscripts allow them around their values. Every other test of white space
/// in the library (SpaceUnits, cleaned_unit) is written from this one.
[[nodiscard]] constexpr bool is_space_unit(char16_t c) noexcept {
  // \t..\r are the units whose distance above \t, taken unsigned, is at most 4.
  return c == u' ' || static_cast<unsigned>(c) - u'\t' <= unsigned{u'\r' - u'\t'};
}

/// The code unit that names and identifiers store for `c`: a space for white
/// space, `c` itself otherwise.
[[nodiscard]] constexpr char16_t cleaned_unit(char16_t c) noexcept {
  return is_space_unit(c) ? u' ' : c;
}

/// "/", the separator of node and object paths.
struct SlashUnit {
  [[nodiscard]] static constexpr bool contains(char16_t c) noexcept { return c == u'/'; }
#if UI_CORE_HAVE_SSE2
  /// All ones in the 16-bit lanes of `units` that hold a member, 0 elsewhere.
  [[nodiscard]] static __m128i lanes(__m128i units) noexcept {
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(u'/')));
  }
#endif
};

/// The white space of is_space_unit.
struct SpaceUnits {
  [[nodiscard]] static constexpr bool contains(char16_t c) noexcept { return is_space_unit(c); }
#if UI_CORE_HAVE_SSE2
  /// The same tests on sixteen units narrowed to bytes (see Sse2Scan::mask16).
  [[nodiscard]] static __m128i byte_lanes(__m128i bytes) noexcept {
    const __m128i above_tab = _mm_sub_epi8(bytes, _mm_set1_epi8('\t'));
    const __m128i control =
        _mm_cmpeq_epi8(_mm_subs_epu8(above_tab, _mm_set1_epi8(4)), _mm_setzero_si128());
    return _mm_or_si128(control, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' ')));
  }
  /// All ones in the 16-bit lanes of `units` that hold white space (for the
  /// copy that cleans it).
  [[nodiscard]] static __m128i lanes(__m128i units) noexcept {
    // The same two tests as is_space_unit, on eight units: the distance above
    // \t saturates to 0 exactly for \t..\r.
    const __m128i above_tab = _mm_sub_epi16(units, _mm_set1_epi16(static_cast<short>(u'\t')));
    const __m128i control =
        _mm_cmpeq_epi16(_mm_subs_epu16(above_tab, _mm_set1_epi16(4)), _mm_setzero_si128());
    return _mm_or_si128(control, _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(u' '))));
  }
#endif
};

/// The scans one code unit at a time, for every target.
struct PortableScan {
  /// Bit k set where p[k] is a member of Set, for k < n <= 16. Reads only
  /// [p, p + n); `floor` is there so that both twins have one signature.
  template <class Set>
  [[nodiscard]] static unsigned tail_mask(const char16_t* /*floor*/, const char16_t* p,
                                          std::size_t n) noexcept {
    unsigned mask = 0;
    for (std::size_t k = 0; k < n; ++k) mask |= unsigned{Set::contains(p[k])} << k;
    return mask;
  }

  /// Bit k set where p[k] is a member of Set, for k < 16.
  template <class Set>
  [[nodiscard]] static unsigned mask16(const char16_t* p) noexcept {
    return tail_mask<Set>(p, p, 16);
  }

  /// Writes the n code units at `src` to `out`, white space cleaned. `src`
  /// and `out` are the same or do not overlap.
  static void copy_cleaned(const char16_t* src, std::size_t n, char16_t* out) noexcept {
    for (std::size_t i = 0; i < n; ++i) out[i] = cleaned_unit(src[i]);
  }
};

#if UI_CORE_HAVE_SSE2
/// The same scans, eight or sixteen code units per step.
///
/// Segments of path text are short (a name has a dozen code units or so), so
/// a range that does not fill a whole step is finished with one more step that
/// overlaps what was already done, instead of a loop over single code units.
/// That step stays inside memory that may be read: the scans are told where
/// the readable text begins (`floor`), and the copy rewrites units it has
/// already written with the same values.
struct Sse2Scan {
  template <class Set>
  [[nodiscard]] static unsigned mask16(const char16_t* p) noexcept {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
    if constexpr (requires(__m128i bytes) { Set::byte_lanes(bytes); }) {
      // A set of units from 0x01 to 0xFE is tested on bytes, sixteen at once:
      // narrowing with unsigned saturation keeps 0x00..0xFF and makes every
      // other unit 0xFF (0x0100..0x7FFF) or 0x00 (0x8000 and above), neither
      // of which is a member.
      return static_cast<unsigned>(_mm_movemask_epi8(Set::byte_lanes(_mm_packus_epi16(low, high))));
    } else {
      // Packing turns each all-ones or all-zeros 16-bit lane into one byte.
      return static_cast<unsigned>(
          _mm_movemask_epi8(_mm_packs_epi16(Set::lanes(low), Set::lanes(high))));
    }
  }

  /// Reads only code units in [floor, p + n), where floor <= p and n <= 16.
  template <class Set>
  [[nodiscard]] static unsigned tail_mask(const char16_t* floor, const char16_t* p,
                                          std::size_t n) noexcept {
    const char16_t* const stop = p + n;
    if (stop - floor < 16) return PortableScan::tail_mask<Set>(floor, p, n);
    // The sixteen units that end at `stop`; those before p are dropped.
    return mask16<Set>(stop - 16) >> (16 - n);
  }

  static void copy_cleaned(const char16_t* src, std::size_t n, char16_t* out) noexcept {
    if (n < 8) {
      PortableScan::copy_cleaned(src, n, out);
      return;
    }
    std::size_t i = 0;
    for (; n - i >= 8; i += 8) store_cleaned(src + i, out + i);
    // The last eight units, overlapping units already written.
    if (i != n) store_cleaned(src + n - 8, out + n - 8);
  }

 private:
  static void store_cleaned(const char16_t* src, char16_t* out) noexcept {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
    // White space becomes a space; the space itself is rewritten unchanged.
    const __m128i space = SpaceUnits::lanes(units);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_or_si128(_mm_andnot_si128(space, units),
                                  _mm_and_si128(space, _mm_set1_epi16(static_cast<short>(u' ')))));
  }
};

/// The scans the library runs: the one place that picks a twin.
using FastScan = Sse2Scan;
#else
using FastScan = PortableScan;
#endif

/// The first member of Set in [p, end), or `end`, reading no code unit before
/// `floor` (<= p).
template <class Scan, class Set>
[[nodiscard]] inline const char16_t* find_first(const char16_t* floor, const char16_t* p,
                                                const char16_t* end) noexcept {
  for (; end - p >= 16; p += 16) {
    if (const unsigned mask = Scan::template mask16<Set>(p); mask != 0) {
      return p + __builtin_ctz(mask);
    }
  }
  if (p == end) return end;
  const unsigned mask = Scan::template tail_mask<Set>(floor, p, static_cast<std::size_t>(end - p));
  return mask != 0 ? p + __builtin_ctz(mask) : end;
}

/// Bit k set where p[k] is a member of Set, for k < count <= 64; the bits from
/// count up are 0. Reads no code unit before `floor` (<= p).
template <class Scan, class Set>
[[nodiscard]] inline std::uint64_t unit_bits(const char16_t* floor, const char16_t* p,
                                             std::size_t count) noexcept {
  std::uint64_t bits = 0;
  std::size_t k = 0;
  for (; count - k >= 16; k += 16) bits |= std::uint64_t{Scan::template mask16<Set>(p + k)} << k;
  if (k == count) return bits;
  return bits | (std::uint64_t{Scan::template tail_mask<Set>(floor, p + k, count - k)} << k);
}

/// The first white-space code unit in [p, end), or `end`.
[[nodiscard]] inline const char16_t* find_space(const char16_t* p, const char16_t* end) noexcept {
  return find_first<FastScan, SpaceUnits>(p, p, end);
}

/// The n code units at `src`, white space cleaned, written to `out`. `src` and
/// `out` are the same or do not overlap.
inline void copy_cleaned(const char16_t* src, std::size_t n, char16_t* out) noexcept {
  FastScan::copy_cleaned(src, n, out);
}

/// Replaces each white-space code unit of [p, end) by a space, in place.
inline void clean_spaces(char16_t* p, char16_t* end) noexcept {
  char16_t* const first = const_cast<char16_t*>(find_space(p, end));
  copy_cleaned(first, static_cast<std::size_t>(end - first), first);
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_COMMON_SCAN_IMPL_H
