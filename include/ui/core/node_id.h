/// \file ui/core/node_id.h
/// Node identifiers and the separator of node paths.
///
/// A node path is text whose components are node identifiers joined by "/".
/// A "/" that belongs to an identifier is written doubled, so "//" inside a text
/// is an escaped separator and never splits. The scans here consume pairs from
/// the left: in "a///b" the first two slashes are one escaped "/" and the third
/// is the separator. NodeId is the checked identifier that node paths hold.
///
/// ```
/// ui::core::is_node_id(u"a//b");   // true: one identifier holding an escaped "/"
/// ui::core::is_node_path(u"a/b");  // true: two identifiers
/// ui::core::find_node_sep(text) - text.begin();  // 3 for text u"a///b"
/// ui::core::NodeId id(u"Body//Frame");  // stored as given, escape kept
/// ui::core::NodeId bad(u"a/b");         // throws InvalidNodeId with "a/b"
/// ```

#ifndef UI_CORE_NODE_ID_H
#define UI_CORE_NODE_ID_H

#include <compare>
#include <cstddef>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <optional>
#include <utility>
#include <variant>

#include "krel/cow.h"
#include "ui/core/errors.h"

namespace ui::core {

/// True exactly for U+002F "/"; a backslash is neither separator nor escape.
[[nodiscard]] constexpr bool is_node_sep(const char16_t& c) noexcept {
  return c == u'/';
}

/// The first unescaped separator in [first, last), or `last` if there is none.
/// Pairs of separators are escapes, taken from the left.
[[nodiscard]] ustring::const_iterator find_node_sep(ustring::const_iterator first,
                                                    ustring::const_iterator last) noexcept;

/// The same over the whole text; `text.end()` if there is none.
[[nodiscard]] ustring::const_iterator find_node_sep(const ustring& text) noexcept;

/// A copy with each POSIX white-space character (space, `\t`, `\n`, `\v`, `\f`,
/// `\r`) replaced by a space. The length never changes; nothing is trimmed.
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

namespace detail {

struct NodePathParser;

/// The check behind NodeId: the text to store (`clean_white_space` of a valid
/// identifier text), or ErrorId::InvalidNodeId when `is_node_id` is false.
struct NodeIdCheck {
  /// The cleaned text of an identifier, or InvalidNodeId; throws no message.
  [[nodiscard]] std::variant<ustring, ErrorId> operator()(const ustring& text) const;
};

}  // namespace detail

/// A checked node identifier: one component of a node path.
///
/// Invariant (of every NodeId not moved from): the text is non-empty, its first
/// and last characters are not "/", and every "/" in it is half of an escaped
/// pair "//" (`is_node_id` holds).
/// White space was replaced by spaces when the identifier was built; escapes
/// stay doubled exactly as given.
///
/// Ownership: a handle; copies share one immutable record that the last copy
/// frees, together with everything allocated for it. A move hands the record
/// over without touching its count; the moved-from NodeId holds no identifier
/// until it is assigned to: its text reads as empty, and it compares equal
/// only to another moved-from NodeId.
/// Threads: copies may be used and destroyed on any threads at once; a single
/// object is like an int (many readers, or one writer).
class NodeId {
  struct Rep;

 public:
  /// Checks the text and stores it with white space cleaned. Throws
  /// InvalidNodeId carrying `text` as given (before cleaning) when
  /// `is_node_id(text)` is false.
  explicit NodeId(const ui::core::ustring& text);

  /// The non-throwing twin: accepts exactly the texts the constructor accepts.
  [[nodiscard]] static std::optional<NodeId> make(const ui::core::ustring& text);

  /// A copy shares the other identifier's record (one atomic increment); a
  /// move takes it over. Neither throws.
  /// @{
  NodeId(const NodeId&) noexcept = default;
  NodeId& operator=(const NodeId&) noexcept = default;
  NodeId(NodeId&&) noexcept = default;
  NodeId& operator=(NodeId&&) noexcept = default;
  /// @}

  /// The stored text, escapes kept; empty only for a moved-from NodeId.
  [[nodiscard]] const ui::core::ustring& ustring() const noexcept {
    const Rep* rep = rep_.get();
    return rep != nullptr ? rep->text : moved_from_text();
  }

  /// True when both refer to one record (one was copied from the other).
  [[nodiscard]] bool shares_record_with(const NodeId& other) const noexcept {
    return rep_.shares_with(other.rep_);
  }

  /// Equal when both share one record, or else when their texts hold the same
  /// code units (case-sensitive, escapes compared as stored).
  friend bool operator==(const NodeId& a, const NodeId& b) noexcept {
    return a.rep_.shares_with(b.rep_) || same_units(a.ustring(), b.ustring());
  }

  /// The texts in lexicographic order of their code units as unsigned 16-bit
  /// numbers, a prefix first; equal exactly when `==` says so.
  friend std::strong_ordering operator<=>(const NodeId& a, const NodeId& b) noexcept {
    if (a.rep_.shares_with(b.rep_)) return std::strong_ordering::equal;
    return a.ustring().compare(b.ustring()) <=> 0;
  }

 private:
  friend struct detail::NodePathParser;

  struct Rep {
    krel::RefCount<> count;
    ui::core::ustring text;

    explicit Rep(ui::core::ustring&& t) noexcept : text(std::move(t)) {}
    /// The text of [first, last), copied once.
    Rep(const char16_t* first, const char16_t* last) : text(first, last) {}
    /// A copy is always a record of its own.
    Rep(const Rep& other) : text(other.text) {}
  };

  struct Checked {};  // selects the constructors for text that already passed the check
  NodeId(Checked, ui::core::ustring&& stored);
  /// The identifier of [first, last), which is_node_id accepts; its white space
  /// is cleaned unless `may_hold_space` is false.
  NodeId(Checked, const char16_t* first, const char16_t* last, bool may_hold_space);

  /// Equality of two texts, the test behind `==` (also of whole node paths):
  /// lengths first, then all code units at once.
  [[nodiscard]] static bool same_units(const ui::core::ustring& a,
                                       const ui::core::ustring& b) noexcept {
    return a.size() == b.size() &&
           std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
  }

  /// The text of a moved-from NodeId: empty.
  [[nodiscard]] static const ui::core::ustring& moved_from_text() noexcept;

  [[nodiscard]] bool invariant_() const noexcept;

  krel::Cow<Rep> rep_;
};

/// A hash of the text, consistent with `==`: equal identifiers hash equal. Also
/// what boost::hash finds.
[[nodiscard]] std::size_t hash_value(const NodeId& id) noexcept;

/// Writes the text in the narrow encoding of the current locale.
std::ostream& operator<<(std::ostream& os, const NodeId& id);

}  // namespace ui::core

/// Lets identifiers key unordered containers, with the hash of hash_value.
template <>
struct std::hash<ui::core::NodeId> {
  /// ui::core::hash_value(id).
  std::size_t operator()(const ui::core::NodeId& id) const noexcept {
    return ui::core::hash_value(id);
  }
};

#endif  // UI_CORE_NODE_ID_H
