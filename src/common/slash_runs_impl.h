// Runs of "/" in path text (private to the library's sources).
//
// Node paths, object paths and block paths all keep a literal "/" doubled, so
// each of them reads "/" in maximal runs: an even run is all escaped pairs,
// and an odd run holds one separator. The paths differ only in which end of
// the run the pairs are taken from, and each caller states its rule where it
// applies it:
//
//   SlashRuns runs(begin, end);
//   while (const std::optional<SlashRun> run = runs.next()) {
//     if (run->is_odd()) ...  // run->first, or run->last - 1, is a separator
//   }

#ifndef UI_CORE_SRC_COMMON_SLASH_RUNS_IMPL_H
#define UI_CORE_SRC_COMMON_SLASH_RUNS_IMPL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "scan_impl.h"

namespace ui::core::detail {

/// A maximal run of "/": [first, last).
struct SlashRun {
  const char16_t* first;
  const char16_t* last;

  /// Whether the run holds a separator besides its pairs.
  [[nodiscard]] bool is_odd() const noexcept { return (last - first) % 2 != 0; }
};

/// The maximal runs of "/" in [begin, end), first to last.
///
/// The text is read 64 code units at a time into a word with one bit per unit,
/// and the runs are found in the words by bit arithmetic, so the cost per code
/// unit does not depend on where the "/" are. No code unit outside [begin,
/// end) is read.
class SlashRuns {
 public:
  SlashRuns(const char16_t* begin, const char16_t* end) noexcept
      : begin_(begin), end_(end), next_chunk_(begin), chunk_(begin) {}

  /// The next run, or nothing when none is left. Each stretch of up to 64 code
  /// units is passed to `look(chunk, count)` as it is read, before the runs
  /// that end in it, for a caller that has more to learn from the text while
  /// those units are at hand.
  template <class Look>
  [[nodiscard, gnu::always_inline]] std::optional<SlashRun> next(Look&& look) noexcept {
    for (;;) {
      while (events_ != 0) {
        const int k = __builtin_ctzll(events_);
        events_ &= events_ - 1;
        const char16_t* const at = chunk_ + k;
        if ((starts_ >> k) & 1u) {
          run_start_ = at;
          continue;
        }
        return take_run(at);
      }
      if (!read_chunk(look)) {
        // A run still open has reached the end of the text.
        if (run_start_ == nullptr) return std::nullopt;
        return take_run(end_);
      }
    }
  }

  /// The same without a look at the text.
  [[nodiscard, gnu::always_inline]] std::optional<SlashRun> next() noexcept {
    return next([](const char16_t*, std::size_t) noexcept {});
  }

 private:
  SlashRun take_run(const char16_t* last) noexcept {
    const SlashRun run{run_start_, last};
    run_start_ = nullptr;
    return run;
  }

  // Reads the next 64 code units (fewer at the end) into the bits of the run
  // starts and run ends among them; false when the text is all read.
  template <class Look>
  bool read_chunk(Look& look) {
    if (next_chunk_ == end_) return false;
    const auto count = static_cast<std::size_t>(std::min<std::ptrdiff_t>(end_ - next_chunk_, 64));
    look(static_cast<const char16_t*>(next_chunk_), count);
    const std::uint64_t slashes = unit_bits<FastScan, SlashUnit>(begin_, next_chunk_, count);
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

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_COMMON_SLASH_RUNS_IMPL_H
