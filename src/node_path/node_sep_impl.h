// The separator scan of node paths over code units (private to src/node_path).

#ifndef UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H
#define UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H

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

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_NODE_PATH_NODE_SEP_IMPL_H
