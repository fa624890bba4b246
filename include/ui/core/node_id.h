// ui/core/node_id.h - node identifiers and the separator of node paths
//
// A node path is text whose components are node identifiers joined by "/".
// A "/" that belongs to an identifier is written doubled, so "//" inside a text
// is an escaped separator and never splits. The scans here consume pairs from
// the left: in "a///b" the first two slashes are one escaped "/" and the third
// is the separator. NodeId is the checked identifier that node paths hold.
//
//   ui::core::is_node_id(u"a//b");   // true: one identifier holding an escaped "/"
//   ui::core::is_node_path(u"a/b");  // true: two identifiers
//   ui::core::find_node_sep(text) - text.begin();  // 3 for text u"a///b"
//   ui::core::NodeId id(u"Body//Frame");  // stored as given, escape kept
//   ui::core::NodeId bad(u"a/b");         // throws InvalidNodeId with "a/b"

/// \file
/// Node identifiers and the separator of node paths.
/// The comment at the top of the header's source has an overview with examples.

#ifndef UI_CORE_NODE_ID_H
#define UI_CORE_NODE_ID_H

#include <cstddef>
#include <iosfwd>
#include <new>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

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

class NodeId;

namespace detail {

struct NodeIdBlock;
struct NodePathParser;

/// Builds the identifiers of one parsed path with their records in one
/// allocation, for texts already known to be identifiers. Internal to the
/// node path parser.
class NodeIdBatch {
 public:
  /// Room for `capacity` identifiers, after room for one record of
  /// `front_size` bytes that the caller may place in the block (front()).
  NodeIdBatch(std::size_t capacity, std::size_t front_size);
  ~NodeIdBatch();
  NodeIdBatch(const NodeIdBatch&) = delete;
  NodeIdBatch& operator=(const NodeIdBatch&) = delete;

  /// Appends to `ids`, which must have the room reserved, the identifier of
  /// the text [first, last), which must satisfy is_node_id; its white space
  /// is cleaned here unless `may_hold_space` is false. At most `capacity`
  /// calls.
  void add_to(std::vector<NodeId>& ids, const char16_t* first, const char16_t* last,
              bool may_hold_space);

  /// The block, and the room for the front record in it. A record placed
  /// there must take its reference with take_front_reference() and give it
  /// back through NodeIdBlock's release when it is destroyed.
  /// @{
  [[nodiscard]] NodeIdBlock* block() const noexcept { return block_; }
  [[nodiscard]] void* front() const noexcept;
  /// @}
  /// Hands the reference kept for the front record to the record placed at
  /// front(). The count was set for it when the block was made, so this
  /// touches no shared state.
  void take_front_reference() noexcept { front_taken_ = true; }

 private:
  NodeIdBlock* block_;
  std::size_t used_ = 0;
  bool front_taken_ = false;
};

/// The check behind NodeId: the text to store (`clean_white_space` of a valid
/// identifier text), or ErrorId::InvalidNodeId when `is_node_id` is false.
struct NodeIdCheck {
  /// The cleaned text of an identifier, or InvalidNodeId; throws no message.
  [[nodiscard]] std::variant<ustring, ErrorId> operator()(const ustring& text) const;
};

}  // namespace detail

/// A checked node identifier: one component of a node path.
///
/// Invariant: the text is non-empty, its first and last characters are not "/",
/// and every "/" in it is half of an escaped pair "//" (`is_node_id` holds).
/// White space was replaced by spaces when the identifier was built; escapes
/// stay doubled exactly as given.
///
/// Ownership: a handle; copies share one immutable record that the last copy
/// frees. Moving copies the handle, so a moved-from NodeId keeps its text.
/// Threads: copies may be used and destroyed on any threads at once; a single
/// object is like an int (many readers, or one writer).
class NodeId {
  struct Rep;

 public:
  /// Checks the text and stores it with white space cleaned. Throws
  /// InvalidNodeId carrying `text` as given (before cleaning) when
  /// `is_node_id(text)` is false.
  explicit NodeId(const ui::core::ustring& text);

  /// Only the node path parser can make one of these, and with it a NodeId
  /// that takes over a record it has built.
  class BatchKey {
    friend class detail::NodeIdBatch;
    BatchKey() {}
  };
  /// Takes over `adopted`, a record the node path parser has built and checked.
  NodeId(BatchKey, Rep* adopted) noexcept : rep_(adopted) {}

  /// The non-throwing twin: accepts exactly the texts the constructor accepts.
  [[nodiscard]] static std::optional<NodeId> make(const ui::core::ustring& text);

  // Copying is the only transfer: a move would leave a handle without a
  // record, which is not a valid identifier. A copy costs one atomic increment.
  /// Shares the other identifier's record; never throws.
  /// @{
  NodeId(const NodeId&) noexcept = default;
  NodeId& operator=(const NodeId&) noexcept = default;
  /// @}

  /// The stored text, escapes kept.
  [[nodiscard]] const ui::core::ustring& ustring() const noexcept { return rep_.read().text; }

  /// True when both refer to one record (one was copied from the other).
  [[nodiscard]] bool shares_record_with(const NodeId& other) const noexcept {
    return rep_.shares_with(other.rep_);
  }

  /// Equal when both share one record, or else when their texts hold the same
  /// code units (case-sensitive, escapes compared as stored).
  friend bool operator==(const NodeId& a, const NodeId& b) noexcept {
    return a.rep_.shares_with(b.rep_) || a.rep_.read().text == b.rep_.read().text;
  }

 private:
  friend class detail::NodeIdBatch;
  friend struct detail::NodeIdBlock;
  friend struct detail::NodePathParser;

  struct Rep {
    krel::RefCount<> count;
    ui::core::ustring text;
    /// The block this record shares with the other identifiers of one parsed
    /// path, or null for a record allocated on its own.
    detail::NodeIdBlock* block = nullptr;

    explicit Rep(ui::core::ustring&& t) noexcept : text(std::move(t)) {}
    /// The text of [first, last), copied once.
    Rep(const char16_t* first, const char16_t* last) : text(first, last) {}
    /// A copy is always a record of its own.
    Rep(const Rep& other) : text(other.text) {}

    /// Destroys the record and frees its storage: its own allocation, or its
    /// share of a block.
    static void operator delete(Rep* rep, std::destroying_delete_t) noexcept;
    /// A record of its own is allocated and, if its construction fails, freed
    /// as any object is.
    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void* p) noexcept { ::operator delete(p); }
  };

  struct Checked {};  // selects the constructor for text that already passed the check
  NodeId(Checked, ui::core::ustring&& stored);

  [[nodiscard]] bool invariant_() const noexcept;

  krel::Cow<Rep> rep_;
};

/// Writes the text in the narrow encoding of the current locale.
std::ostream& operator<<(std::ostream& os, const NodeId& id);

}  // namespace ui::core

#endif  // UI_CORE_NODE_ID_H
