// The separator scan of node paths over code units (private to src/node_path).

#ifndef UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H
#define UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H

#include <cstddef>

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
