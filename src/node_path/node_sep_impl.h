// The separator scan of node paths over code units (private to src/node_path).

#ifndef UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H
#define UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H

#include <cstddef>
#include <optional>

#include "../common/slash_runs_impl.h"

namespace ui::core::detail {

/// The separator of a run of "/" in a node path, or null when it has none.
/// Pairs are taken from the left, so in "a///b" the first two slashes are one
/// literal "/" and the third is the separator; an even run is all pairs.
[[nodiscard]] inline const char16_t* node_sep_of(const SlashRun& run) noexcept {
  return run.is_odd() ? run.last - 1 : nullptr;
}

/// Calls `visit(sep)` for each unescaped "/" in [begin, end), first to last,
/// until it returns false; returns false exactly when a call did. Before the
/// separators of each stretch of up to 64 units, `look(chunk, count)` is
/// called on it, for a caller that has more to learn from the text while
/// those units are at hand.
template <class Visit, class Look>
[[gnu::always_inline]] inline bool for_each_node_sep(const char16_t* begin, const char16_t* end,
                                                     Visit&& visit, Look&& look) {
  SlashRuns runs(begin, end);
  while (const std::optional<SlashRun> run = runs.next(look)) {
    if (const char16_t* const sep = node_sep_of(*run); sep != nullptr && !visit(sep)) return false;
  }
  return true;
}

/// The same without a look at the text.
template <class Visit>
[[gnu::always_inline]] inline bool for_each_node_sep(const char16_t* begin, const char16_t* end,
                                                     Visit&& visit) {
  return for_each_node_sep(begin, end, visit, [](const char16_t*, std::size_t) noexcept {});
}

/// The first unescaped "/" in [p, end), or `end`.
[[nodiscard]] inline const char16_t* find_node_sep(const char16_t* p,
                                                   const char16_t* end) noexcept {
  const char16_t* found = end;
  for_each_node_sep(p, end, [&found](const char16_t* sep) noexcept {
    found = sep;
    return false;
  });
  return found;
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
