/// \file ui/core/node_path.h
/// Paths that name nodes of a model tree.
///
/// NodePath is a sequence of NodeIds written with "/" between them; NodePath1 is
/// a NodePath that is never empty. Every element is a valid NodeId, so code that
/// receives a path never re-checks its elements.
///
/// Grammar of the text form, checked in two steps:
///
/// ```
/// path = "" | id *("/" id)     where an id is a NodeId text ("//" is an
///                              escaped "/" inside it, pairs taken from the left)
/// ```
///
/// First `is_node_path` looks at the ends only (no leading "/", no single
/// trailing "/"), and refuses with InvalidNodePath; then the text is split at
/// each unescaped "/" and every piece becomes a NodeId, which refuses with
/// InvalidNodeId and the piece.
///
/// ```
/// ui::core::NodePath1 p(u"Body//Frame/mass");  // ids "Body//Frame", "mass"
/// p.ustring();                                 // u"Body//Frame/mass"
/// ui::core::relpath(p, ui::core::NodePath(u"Body//Frame"));  // holds "mass"
/// ui::core::NodePath(u"/mass");                // throws InvalidNodePath
/// ui::core::NodePath(u"a///b");                // throws InvalidNodeId with "a//"
/// ```

#ifndef UI_CORE_NODE_PATH_H
#define UI_CORE_NODE_PATH_H

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <vector>

#include "krel/cow.h"
#include "ui/core/errors.h"
#include "ui/core/node_id.h"

namespace ui::core {

namespace detail {
struct NodePathParser;
}

/// The sequence of identifiers and its text form, shared by NodePath and
/// NodePath1.
///
/// Invariant: every element is a valid NodeId, so its text is never checked
/// again.
///
/// Ownership: a handle; copies share one immutable record, and a change copies
/// first. Every non-const accessor (`ids()`, `begin()`, `end()`, `rbegin()`,
/// `rend()`, `front()`, `back()`, `push_back`) is a change: on a shared record
/// it copies the sequence into a record of its own first, so iterators taken
/// from a path before it was copied may point into the copy's record. Const
/// accessors never copy. Empty paths share one process-wide record and never
/// allocate.
/// Threads: copies may be used and destroyed on any threads at once; a single
/// object is like an int (many readers, or one writer).
class NodePathBase {
 public:
  /// The member types of a standard container of NodeIds, held in a
  /// std::vector.
  /// @{
  using value_type = NodeId;
  using size_type = std::size_t;
  using container_type = std::vector<NodeId>;
  using iterator = container_type::iterator;
  using const_iterator = container_type::const_iterator;
  using reverse_iterator = container_type::reverse_iterator;
  using const_reverse_iterator = container_type::const_reverse_iterator;
  /// @}

  /// The empty path.
  NodePathBase() noexcept = default;

  /// Parses a path text (see the grammar at the top of this file). Throws
  /// InvalidNodePath with `text` when `is_node_path(text)` is false, and
  /// InvalidNodeId with the piece when a piece is not an identifier.
  explicit NodePathBase(const ui::core::ustring& text);

  /// The path of these identifiers, in order.
  /// @{
  explicit NodePathBase(const std::vector<NodeId>& ids);
  explicit NodePathBase(std::vector<NodeId>&& ids);
  /// @}

  /// The path of one identifier.
  explicit NodePathBase(const NodeId& id);

  /// The identifiers, in order.
  [[nodiscard]] const std::vector<NodeId>& ids() const noexcept { return rep_.read().ids; }
  /// The identifiers, for changing; copies a shared record first.
  [[nodiscard]] std::vector<NodeId>& ids() { return rep_.write().ids; }

  /// Iterators over the identifiers, first to last or (rbegin, rend) last to
  /// first. The non-const ones are changes: they copy a shared record first.
  /// @{
  [[nodiscard]] const_iterator begin() const noexcept { return ids().begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return ids().end(); }
  [[nodiscard]] const_iterator cbegin() const noexcept { return ids().begin(); }
  [[nodiscard]] const_iterator cend() const noexcept { return ids().end(); }
  [[nodiscard]] const_reverse_iterator rbegin() const noexcept { return ids().rbegin(); }
  [[nodiscard]] const_reverse_iterator rend() const noexcept { return ids().rend(); }
  [[nodiscard]] iterator begin() { return ids().begin(); }
  [[nodiscard]] iterator end() { return ids().end(); }
  [[nodiscard]] reverse_iterator rbegin() { return ids().rbegin(); }
  [[nodiscard]] reverse_iterator rend() { return ids().rend(); }
  /// @}

  /// The first and last identifier. An empty path has neither and throws
  /// InvalidNodePath1 with the empty text (a NodePath1 is empty only after
  /// `ids()` was emptied or it was moved from). The non-const ones copy a
  /// shared record first.
  /// @{
  [[nodiscard]] const NodeId& front() const {
    check_not_empty_();
    return ids().front();
  }
  [[nodiscard]] const NodeId& back() const {
    check_not_empty_();
    return ids().back();
  }
  [[nodiscard]] NodeId& front() {
    check_not_empty_();
    return ids().front();
  }
  [[nodiscard]] NodeId& back() {
    check_not_empty_();
    return ids().back();
  }
  /// @}

  /// The number of identifiers, and whether there are none.
  /// @{
  [[nodiscard]] size_type size() const noexcept { return ids().size(); }
  [[nodiscard]] bool empty() const noexcept { return ids().empty(); }
  /// @}

  /// Appends one identifier. If growing fails, the path keeps its identifiers.
  void push_back(const NodeId& id) { ids().push_back(id); }

  /// The text form: the identifiers' texts joined by "/", escapes kept, so
  /// parsing it gives an equal path. The empty path gives the empty text.
  [[nodiscard]] ui::core::ustring ustring() const;

  /// True when both refer to one record. All empty paths built without a
  /// change share the process-wide empty record.
  [[nodiscard]] bool shares_storage_with(const NodePathBase& other) const noexcept {
    return rep_.shares_with(other.rep_);
  }

  /// Element-wise equality of identifiers (NodeId's `==`).
  friend bool operator==(const NodePathBase& a, const NodePathBase& b) noexcept;

  /// Lexicographic order of the identifiers (NodeId's `<=>`), a prefix first;
  /// equal exactly when `==` says so, so paths can key a std::map.
  friend std::strong_ordering operator<=>(const NodePathBase& a, const NodePathBase& b) noexcept;

 protected:
  /// Appends `other`'s identifiers: nothing when `other` is empty, a share of
  /// its record when this path is empty, otherwise one copy of this path's
  /// record if shared, and room for at least twice the identifiers whenever
  /// it grows, so that appending costs amortised constant time per identifier.
  /// On failure the path keeps its identifiers. `other` may be this path.
  void append_(const NodePathBase& other);

  /// Throws InvalidNodePath1 with the path's text form when it is empty.
  void check_not_empty_() const;

 private:
  friend struct detail::NodePathParser;

  struct Rep {
    krel::RefCount<> count;
    std::vector<NodeId> ids;

    /// The record that every empty path reads; built at compile time, never
    /// freed.
    constexpr explicit Rep(krel::SharedEmptyTag) noexcept : count(krel::shared_empty_tag) {}
    explicit Rep(std::vector<NodeId>&& v) noexcept : ids(std::move(v)) {}
    /// A copy is always a record of its own.
    Rep(const Rep& other) : ids(other.ids) {}
  };

  /// The handle of a new record holding `ids`, or of the shared empty record.
  [[nodiscard]] static krel::Cow<Rep> adopt_(std::vector<NodeId>&& ids);

  krel::Cow<Rep> rep_;
};

/// Writes the text form in the narrow encoding of the current locale.
std::ostream& operator<<(std::ostream& os, const NodePathBase& path);

/// A hash of the identifiers (their hash_value combined in order), consistent
/// with `==`. Also what boost::hash finds.
[[nodiscard]] std::size_t hash_value(const NodePathBase& path) noexcept;

/// A node path that may be empty, with concatenation.
///
/// Ownership and threads as NodePathBase: copies share one record, a change
/// copies first; copies may be used and destroyed on any threads at once.
class NodePath : public NodePathBase {
 public:
  /// The constructors of NodePathBase: from a text, from identifiers, or from
  /// one identifier, with the same messages.
  using NodePathBase::NodePathBase;

  /// The empty path.
  NodePath() noexcept = default;

  /// A path with `other`'s identifiers, sharing its record. Implicit: every
  /// node path, a NodePath1 included, is a valid NodePath, so a NodePath1 can
  /// be passed or assigned wherever a NodePath is wanted.
  NodePath(const NodePathBase& other) noexcept : NodePathBase(other) {}

  /// The non-throwing twin of the constructor from text: empty exactly when
  /// that constructor throws.
  [[nodiscard]] static std::optional<NodePath> make(const ui::core::ustring& text);

  /// Appends `other`'s identifiers in order (see NodePathBase::append_).
  NodePath& operator+=(const NodePathBase& other) {
    append_(other);
    return *this;
  }
};

/// `lhs`'s identifiers followed by `rhs`'s.
[[nodiscard]] inline NodePath operator+(NodePath lhs, const NodePathBase& rhs) {
  lhs += rhs;
  return lhs;
}

/// A node path that is never empty.
///
/// Invariant: at least one identifier. Every constructor and `+=` establishes
/// it and `check_()` verifies it. Two things can still empty one: editing
/// `ids()` directly, and moving from it. Every function that relies on the
/// identifier (`front()`, `back()`, `to_value_path`, ...) checks first and
/// throws InvalidNodePath1 instead.
///
/// Ownership and threads as NodePathBase. Moving hands the record over without
/// touching its count and leaves the moved-from path empty, like a moved-from
/// NodePath, until it is assigned to. There is no default constructor.
class NodePath1 : public NodePathBase {
 public:
  /// Parses as NodePath does, then throws InvalidNodePath1 with the empty text
  /// when the path is empty.
  explicit NodePath1(const ui::core::ustring& text);

  /// Takes over the record of `path` (no copy of its identifiers), then throws
  /// InvalidNodePath1 when it is empty.
  explicit NodePath1(NodePath path);

  /// The path of one identifier; never throws a message.
  explicit NodePath1(const NodeId& id) : NodePathBase(id) {}

  /// The path of these identifiers; throws InvalidNodePath1 when there are none.
  /// @{
  explicit NodePath1(const std::vector<NodeId>& ids);
  explicit NodePath1(std::vector<NodeId>&& ids);
  /// @}

  /// A copy shares the other path's record; a move takes it over. Neither
  /// throws.
  /// @{
  NodePath1(const NodePath1&) noexcept = default;
  NodePath1& operator=(const NodePath1&) noexcept = default;
  NodePath1(NodePath1&&) noexcept = default;
  NodePath1& operator=(NodePath1&&) noexcept = default;
  /// @}

  /// The non-throwing twin of the constructor from text: empty exactly when
  /// that constructor throws.
  [[nodiscard]] static std::optional<NodePath1> make(const ui::core::ustring& text);

  /// Appends `other`'s identifiers in order, then checks the invariant.
  NodePath1& operator+=(const NodePathBase& other);

  /// Throws InvalidNodePath1 with the path's text form unless it holds at least
  /// one identifier.
  void check_() const;
};

/// `lhs`'s identifiers followed by `rhs`'s; never empty, since `lhs` is not.
[[nodiscard]] inline NodePath1 operator+(NodePath1 lhs, const NodePathBase& rhs) {
  lhs += rhs;
  return lhs;
}

/// The rest of `path` after `base`, when `base` is a prefix of `path`; empty
/// (no value) otherwise. Identifiers match when they share a record or have the
/// same text. An empty base gives a copy of `path`; a base equal to `path`
/// gives the empty path. The result shares the identifiers' records. Never
/// throws a message: a mismatch is reported only through the empty result.
[[nodiscard]] std::optional<NodePath> relpath(const NodePathBase& path, const NodePathBase& base);

}  // namespace ui::core

/// Lets node paths key unordered containers, with the hash of hash_value.
template <>
struct std::hash<ui::core::NodePathBase> {
  /// ui::core::hash_value(path).
  std::size_t operator()(const ui::core::NodePathBase& path) const noexcept {
    return ui::core::hash_value(path);
  }
};
/// The hash of NodePathBase, for NodePath keys.
template <>
struct std::hash<ui::core::NodePath> : std::hash<ui::core::NodePathBase> {};
/// The hash of NodePathBase, for NodePath1 keys.
template <>
struct std::hash<ui::core::NodePath1> : std::hash<ui::core::NodePathBase> {};

#endif  // UI_CORE_NODE_PATH_H
