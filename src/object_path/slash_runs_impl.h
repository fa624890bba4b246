// Runs of "/" in object path text (private to src/object_path).
//
// A name keeps a literal "/" doubled, so both the name rule and the cutting of
// a path into segments read "/" in maximal runs: an even run is escaped slashes
// (or the "//" that opens a subscript), an odd run holds a separator.

#ifndef UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H
#define UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H

#include <cstddef>
#include <string_view>

namespace ui::core::detail {

/// The first position after the run of "/" that starts at `i`.
[[nodiscard]] inline std::size_t slash_run_end(std::u16string_view text, std::size_t i) noexcept {
  while (i < text.size() && text[i] == u'/') ++i;
  return i;
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_OBJECT_PATH_SLASH_RUNS_IMPL_H
