// Runs of "/" in object path text (private to src/object_path).
//
// A name keeps a literal "/" doubled, so both the name rule and the cutting of
// a path into segments read "/" in maximal runs: an even run is escaped slashes
// (or the "//" that opens a subscript), an odd run holds a separator.

#ifndef UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H
#define UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "object_path_scan_impl.h"

namespace ui::core::detail {

/// The first position after the run of "/" that starts at `p`.
[[nodiscard]] inline const char16_t* slash_run_end(const char16_t* p,
                                                   const char16_t* end) noexcept {
  while (p != end && *p == u'/') ++p;
  return p;
}

/// The separators of path text, first to last, as the grammar in
/// ui/core/object_path.h places them: the first "/" of every maximal run of
/// odd length that does not reach the end of the text, and the first "/" of
/// the run that reaches the end, if there is one. An even run that does not
/// reach the end has none: it belongs to a segment.
///
/// The text is read 64 code units at a time into a word with one bit per unit,
/// and the runs are found in the words by bit arithmetic, so the cost per code
/// unit does not depend on where the "/" are.
class SeparatorScanner {
 public:
  SeparatorScanner(const char16_t* begin, const char16_t* end) noexcept
      : begin_(begin), end_(end), next_chunk_(begin), chunk_(begin) {}

  /// The next separator, or null when there is none left. With a separator,
  /// `reaches_end` is set to whether its run reaches the end of the text.
  [[nodiscard]] const char16_t* next(bool& reaches_end) noexcept {
    for (;;) {
      while (events_ != 0) {
        const int k = __builtin_ctzll(events_);
        events_ &= events_ - 1;
        const char16_t* const at = chunk_ + k;
        if ((starts_ >> k) & 1u) {
          run_start_ = at;
          continue;
        }
        // The run [run_start_, at) ends inside the text.
        const char16_t* const start = run_start_;
        run_start_ = nullptr;
        if ((at - start) % 2 != 0) {
          reaches_end = false;
          return start;
        }
      }
      if (!read_chunk()) {
        // A run still open has reached the end of the text.
        const char16_t* const start = run_start_;
        run_start_ = nullptr;
        if (start != nullptr) reaches_end = true;
        return start;
      }
    }
  }

 private:
  // Reads the next 64 code units (fewer at the end) into the bits of the run
  // starts and run ends among them; false when the text is all read.
  bool read_chunk() noexcept {
    if (next_chunk_ == end_) return false;
    const auto count = static_cast<std::size_t>(std::min<std::ptrdiff_t>(end_ - next_chunk_, 64));
    const std::uint64_t slashes = slash_bits(begin_, next_chunk_, count);
    // Bit k: whether the unit before unit k is "/".
    const std::uint64_t after_slash = (slashes << 1) | (last_was_slash_ ? 1u : 0u);
    const std::uint64_t in_text = count == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
    starts_ = slashes & ~after_slash;
    // A run that ends here ends at its first unit that is not "/"; a run that
    // reaches the end of the text has no such unit and stays open.
    events_ = starts_ | (~slashes & after_slash & in_text);
    last_was_slash_ = (slashes >> 63) != 0;  // read only when count is 64
    chunk_ = next_chunk_;
    next_chunk_ += count;
    return true;
  }

  const char16_t* begin_;
  const char16_t* end_;
  const char16_t* next_chunk_;
  const char16_t* chunk_;                // the first unit of the bits below
  std::uint64_t starts_ = 0;             // the run starts of the chunk
  std::uint64_t events_ = 0;             // the run starts and ends not yet read
  bool last_was_slash_ = false;          // the previous chunk's last unit
  const char16_t* run_start_ = nullptr;  // the start of the open run, if any
};

/// The number of set bits. Written out, because the baseline x86-64 target
/// has no population count instruction and the builtin becomes a call.
[[nodiscard]] constexpr std::size_t bit_count(std::uint64_t x) noexcept {
  x -= (x >> 1) & 0x5555555555555555;
  x = (x & 0x3333333333333333) + ((x >> 2) & 0x3333333333333333);
  x = (x + (x >> 4)) & 0x0f0f0f0f0f0f0f0f;
  return static_cast<std::size_t>((x * 0x0101010101010101) >> 56);
}

/// How many separators SeparatorScanner finds in [begin, end), counted without
/// visiting them one by one: a run of "/" has odd length exactly when its
/// first unit and the first unit after it lie at positions of different
/// parity, and adding a run's start bit to the word of "/" bits carries across
/// the run to the unit after it, so the ends of all runs that start at even
/// (or odd) positions come out of one addition.
[[nodiscard]] inline std::size_t count_separators(const char16_t* begin,
                                                  const char16_t* end) noexcept {
  constexpr std::uint64_t even = 0x5555555555555555;  // bits at even positions
  constexpr std::uint64_t odd = ~even;
  std::size_t count = 0;
  // A run that continues from one word into the next, and where it started.
  bool open = false;
  const char16_t* open_start = nullptr;
  for (const char16_t* chunk = begin; chunk != end;) {
    const auto n = static_cast<std::size_t>(std::min<std::ptrdiff_t>(end - chunk, 64));
    std::uint64_t slashes = slash_bits(begin, chunk, n);
    if (open) {
      const std::uint64_t rest = ~slashes;
      if (rest == 0) {  // the run fills this word as well
        chunk += n;
        continue;
      }
      // The run ends at the first unit that is not "/", or at the end of the
      // text (the bits past the text are 0).
      const int k = __builtin_ctzll(rest);
      if ((chunk + k - open_start) % 2 != 0) ++count;
      open = false;
      slashes &= ~((std::uint64_t{1} << k) - 1);  // k < 64 here
    }
    const std::uint64_t starts = slashes & ~(slashes << 1);
    // Unsigned addition wraps: a run that reaches bit 63 loses its carry and
    // gives no end here; it is followed into the next word below.
    const std::uint64_t even_start_ends = (slashes + (starts & even)) & ~slashes;
    const std::uint64_t odd_start_ends = (slashes + (starts & odd)) & ~slashes;
    // Every end belongs to one run, so the two sets of odd runs' ends are
    // disjoint.
    count += bit_count((even_start_ends & odd) | (odd_start_ends & even));
    if (n == 64 && (slashes >> 63) != 0) {
      open = true;
      // The run holding bit 63 starts after the highest unit that is not "/".
      const std::uint64_t others = ~slashes;
      open_start = chunk + (others == 0 ? 0 : 64 - __builtin_clzll(others));
    }
    chunk += n;
  }
  // The run that reaches the end of the text has a separator whatever its
  // length. One still open at the end of a full word was not counted; one
  // that ends inside the last word was counted above when it is odd, as if
  // the text went on.
  if (open) {
    ++count;
  } else if (begin != end && end[-1] == u'/') {
    const char16_t* start = end - 1;
    while (start != begin && start[-1] == u'/') --start;
    if ((end - start) % 2 == 0) ++count;
  }
  return count;
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H
