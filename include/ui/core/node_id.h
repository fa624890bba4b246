// ui/core/node_id.h - node identifiers and the separator of node paths
//
// A node path is text whose components are node identifiers joined by "/".
// A "/" that belongs to an identifier is written doubled, so "//" inside a text
// is an escaped separator and never splits. The scans here consume pairs from
// the left: in "a///b" the first two slashes are one escaped "/" and the third
// is the separator.
//
//   ui::core::is_node_id(u"a//b");   // true: one identifier holding an escaped "/"
//   ui::core::is_node_path(u"a/b");  // true: two identifiers
//   ui::core::find_node_sep(u"a///b") - text.begin();  // 3

#ifndef UI_CORE_NODE_ID_H
#define UI_CORE_NODE_ID_H

#include <iosfwd>

#include "ui/core/errors.h"

namespace ui::core {

/// True exactly for U+002F "/"; a backslash is neither separator nor escape.
[[nodiscard]] constexpr bool is_node_sep(const char16_t& c) noexcept { return c == u'/'; }

/// The first unescaped separator in [first, last), or `last` if there is none.
/// Pairs of separators are escapes, taken from the left.
[[nodiscard]] ustring::const_iterator find_node_sep(ustring::const_iterator first,
                                                    ustring::const_iterator last) noexcept;

/// The same over the whole text; `text.end()` if there is none.
[[nodiscard]] ustring::const_iterator find_node_sep(const ustring& text) noexcept;

/// A copy with each POSIX white-space character (space, \t, \n, \v, \f, \r)
/// replaced by a space. The length never changes; nothing is trimmed.
[[nodiscard]] ustring clean_white_space(const ustring& text);

/// True when the text holds no unescaped separator (so also for the empty text).
[[nodiscard]] bool is_node_sep_escaped(const ustring& text) noexcept;

/// True when the first character is not "/" (the empty text's terminator counts
/// as its first character).
[[nodiscard]] bool is_node_id_head_char(const ustring& text) noexcept;

/// True when the last character is not "/". Meant for non-empty text; the empty
/// text, having no last character, gives true.
[[nodiscard]] bool is_node_id_tail_char(const ustring& text) noexcept;

/// A valid identifier: non-empty, neither first nor last character "/", and no
/// unescaped separator.
[[nodiscard]] bool is_node_id(const ustring& text) noexcept;

/// A valid path text: it does not start with "/", and it does not end with a
/// single "/" (an escaped "//" at the end is allowed). The empty text is a
/// path. Nothing else is examined; the identifiers are checked when the path
/// is built.
[[nodiscard]] bool is_node_path(const ustring& text) noexcept;

}  // namespace ui::core

#endif  // UI_CORE_NODE_ID_H
