// The object path rules on the runs of "/" of common/slash_runs_impl.h
// (private to src/object_path): where the separators of a path are, and how
// many there are.
//
// A name keeps a literal "/" doubled, so both the name rule and the cutting of
// a path into segments read "/" in maximal runs: an even run is escaped slashes
// (or the "//" that opens a subscript), an odd run holds a separator.

#ifndef UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H
#define UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "../common/slash_runs_impl.h"

namespace ui::core::detail {

/// The separators of object path text, first to last, as the grammar in
/// ui/core/object_path.h places them.
class SeparatorScanner {
 public:
  SeparatorScanner(const char16_t* begin, const char16_t* end) noexcept
      : end_(end), runs_(begin, end) {}

  /// The next separator, or null when there is none left. With a separator,
  /// `reaches_end` is set to whether its run reaches the end of the text.
  [[nodiscard]] const char16_t* next(bool& reaches_end) noexcept {
    while (const std::optional<SlashRun> run = runs_.next()) {
      // The run that reaches the end of the text has its separator at its
      // first "/" whatever its length.
      if (run->last == end_) {
        reaches_end = true;
        return run->first;
      }
      // Pairs are taken from the right: the separator of an odd run is its
      // first "/", so in "a///1" the pair after it opens the subscript "//1".
      // An even run belongs to a segment: it is the literal "/" of a name.
      if (run->is_odd()) {
        reaches_end = false;
        return run->first;
      }
    }
    return nullptr;
  }

 private:
  const char16_t* end_;
  SlashRuns runs_;
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
/// visiting the runs one by one (it sizes the parse's block before the parse): a run of "/" has odd
/// length exactly when its first unit and the first unit after it lie at positions of different
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
    std::uint64_t slashes = unit_bits<FastScan, SlashUnit>(begin, chunk, n);
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
