// The separator scan of node paths over code units (private to src/node_path).

#ifndef UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H
#define UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "../common/scan_impl.h"

namespace ui::core::detail {

/// The first unescaped "/" in [p, end), or `end`. The scan jumps from one "/"
/// to the next; a "/" followed by another is an escaped pair, consumed from
/// the left, and the scan resumes after it.
[[nodiscard]] inline const char16_t* find_node_sep(const char16_t* p,
                                                   const char16_t* end) noexcept {
  for (;;) {
    p = find_unit(p, end, u'/');
    if (p == end) return end;
    if (end - p == 1 || p[1] != u'/') return p;
    p += 2;
  }
}

/// Calls `visit(sep)` for each unescaped "/" in [begin, end), first to last,
/// until it returns false; returns false exactly when a call did. The same
/// separators as find_node_sep from `begin` and then from the unit after each
/// one found, but the text is read 64 code units at a time into a word with
/// one bit per "/", so the cost does not grow with the number of separators.
/// Before the separators of each stretch of up to 64 units, `look(chunk,
/// count)` is called on it, for a caller that has more to learn from the text
/// while those units are at hand.
template <class Visit, class Look>
[[gnu::always_inline]] inline bool for_each_node_sep(const char16_t* begin, const char16_t* end,
                                                     Visit&& visit, Look&& look) {
  // A "/" before this position is the second of an escaped pair.
  const char16_t* paired_until = begin;
  for (const char16_t* chunk = begin; chunk != end;) {
    const auto count = static_cast<std::size_t>(std::min<std::ptrdiff_t>(end - chunk, 64));
    look(chunk, count);
    for (std::uint64_t bits = slash_bits(begin, chunk, count); bits != 0; bits &= bits - 1) {
      const char16_t* const p = chunk + __builtin_ctzll(bits);
      if (p < paired_until) continue;
      if (end - p > 1 && p[1] == u'/') {
        paired_until = p + 2;
        continue;
      }
      if (!visit(p)) return false;
    }
    chunk += count;
  }
  return true;
}

/// The same without a look at the text.
template <class Visit>
[[gnu::always_inline]] inline bool for_each_node_sep(const char16_t* begin, const char16_t* end,
                                                     Visit&& visit) {
  return for_each_node_sep(begin, end, visit, [](const char16_t*, std::size_t) noexcept {});
}

/// The rule for a path text's ends, on its n code units at p: it does not
/// start with "/" and does not end with a single "/" (an escaped "//" at the
/// end is allowed). The empty text passes.
[[nodiscard]] inline bool node_path_ends_ok(const char16_t* p, std::size_t n) noexcept {
  if (n == 0) return true;
  if (p[0] == u'/') return false;
  if (n < 2 || p[n - 1] != u'/') return true;
  return p[n - 2] == u'/';
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H
