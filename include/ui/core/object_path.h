/// \file ui/core/object_path.h
/// Paths of names and subscripts inside an object.
///
/// An ObjectPath is a sequence of ObjectPathElements that leads from an object
/// to a nested part of it, such as a field of a parameter and then one element
/// of an array. Its text form joins the elements' texts with one "/"; since a
/// subscript's own text begins with "//", a subscript after another element
/// shows three slashes:
///
/// ```
/// ui::core::ObjectPath p = ui::core::to_object_path(u"a///1, 2/b");
/// p.size();                 // 3: the name a, the subscript (1, 2), the name b
/// ui::core::ustring(p);     // u"a///1, 2/b"
/// ```
///
/// Grammar of path text. The text is cut into segments at separators; a run of
/// "/" that does not reach the end of the text is read thus:
///
/// ```
/// even length  part of the segment (an escaped "/" inside a name, or the
///              "//" that opens a subscript)
/// odd length   its first "/" ends the segment and is the separator, so after
///              "///" the next segment begins with "//" and is a subscript
/// ```
///
/// A "/" that is the last code unit, or starts a run that reaches the end,
/// ends the segment as well. Each segment must be a name or a subscript (see
/// make_element), and two subscripts may not follow one another. A single
/// trailing "/" is dropped ("a/" is [a]); a trailing "//" is not ("a//" leaves
/// "/" unparsed).
///
/// The partial parsers stop at the first segment that is not an element and
/// return the elements so far with the unparsed rest of the text; the complete
/// parsers throw when anything is left.

#ifndef UI_CORE_OBJECT_PATH_H
#define UI_CORE_OBJECT_PATH_H

#include <compare>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <utility>

#include "krel/shared_vector.h"
#include "ui/core/object_path_element.h"

namespace ui::core {

namespace detail {
struct ObjectPathBuilder;
}

/// A sequence of names and subscripts.
///
/// Invariant: every element is a valid name or subscript, checked when it was
/// made. The parsers never put two subscripts next to each other; push_back,
/// /= and / join without that check.
/// Ownership: a handle to a shared block of elements (krel::SharedVector);
/// copying copies one pointer, and a change copies the elements first when the
/// block is shared, so a copy never sees later changes to the original.
/// Threads: copies may be made, read and destroyed on any threads at once; a
/// single path is like an int (many readers, or one writer).
class ObjectPath {
 public:
  /// The member types of a standard container of elements; iterators are
  /// pointers to const elements.
  /// @{
  using value_type = ObjectPathElement;
  using size_type = std::size_t;
  using const_iterator = const ObjectPathElement*;
  using iterator = const_iterator;
  /// @}

  /// The empty path; allocates nothing.
  ObjectPath() noexcept = default;
  /// The path of these elements, in order.
  ObjectPath(std::initializer_list<ObjectPathElement> elements) : elements_(elements) {}

  /// The number of elements, and whether there are none.
  /// @{
  [[nodiscard]] size_type size() const noexcept { return elements_.size(); }
  [[nodiscard]] bool empty() const noexcept { return elements_.empty(); }
  /// @}
  /// The first element and one past the last.
  /// @{
  [[nodiscard]] const_iterator begin() const noexcept { return elements_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return elements_.end(); }
  /// @}
  /// Element i, for i < size().
  [[nodiscard]] const ObjectPathElement& operator[](size_type i) const noexcept {
    return elements_[i];
  }
  /// Element i; throws std::out_of_range when i >= size().
  [[nodiscard]] const ObjectPathElement& at(size_type i) const { return elements_.at(i); }
  /// The first and the last element; the path must not be empty.
  /// @{
  [[nodiscard]] const ObjectPathElement& front() const noexcept { return elements_.front(); }
  [[nodiscard]] const ObjectPathElement& back() const noexcept { return elements_.back(); }
  /// @}

  /// Appends a copy of `e` (which may be an element of this path).
  void push_back(const ObjectPathElement& e) { elements_.push_back(e); }

  /// Appends copies of other's elements (other may be this path). Appending an
  /// empty path changes nothing.
  ObjectPath& operator/=(const ObjectPath& other);

  /// The text form: each element's to_string joined by "/"; "" for the empty
  /// path.
  operator ustring() const;

  /// True when both share one block of elements.
  [[nodiscard]] bool shares_storage_with(const ObjectPath& other) const noexcept {
    return elements_.shares_with(other.elements_);
  }

  /// The same elements in the same order (the elements' `==`).
  friend bool operator==(const ObjectPath& a, const ObjectPath& b) {
    return a.elements_.shares_with(b.elements_) || a.elements_ == b.elements_;
  }

  /// Lexicographic order of the elements by compare() (every subscript before
  /// every name), a prefix first; equivalent exactly when `==` says equal, so
  /// paths can key a std::map.
  friend std::weak_ordering operator<=>(const ObjectPath& a, const ObjectPath& b);

 private:
  // The parsers, which reserve the block once before they fill it.
  friend struct detail::ObjectPathBuilder;

  krel::SharedVector<ObjectPathElement> elements_;
};

/// a's elements, then b's; a is not changed.
[[nodiscard]] ObjectPath operator/(const ObjectPath& a, const ObjectPath& b);

/// The elements' hash_value combined in order with boost::hash_combine (the
/// value boost::hash_range gives), consistent with `==`. Also what boost::hash
/// finds.
[[nodiscard]] std::size_t hash_value(const ObjectPath& path);

/// Writes the text form in the local encoding.
std::ostream& operator<<(std::ostream& os, const ObjectPath& path);

/// The path of a whole text. Throws InvalidObjectPath with the text when a
/// segment is neither a name nor a subscript, or when two subscripts follow
/// one another.
[[nodiscard]] ObjectPath to_object_path(const ustring& text);

/// The elements up to the first segment that is neither a name nor a
/// subscript, and the rest of the text from that segment on ("" when all of it
/// parsed). Throws InvalidObjectPath with the whole text only when two
/// subscripts follow one another.
[[nodiscard]] std::pair<ObjectPath, ustring> to_partial_path(const ustring& text);

/// The path of a whole text of names only. Throws InvalidNodePath with the
/// whole text when a segment is not a name; that this is the node path message
/// and not InvalidObjectPath is deliberate.
[[nodiscard]] ObjectPath to_name_path(const ustring& text);

/// The names up to the first segment that is not a name (a subscript segment
/// stops the parse like any other), and the rest of the text from that segment
/// on. Never throws for bad text.
[[nodiscard]] std::pair<ObjectPath, ustring> to_partial_name_path(const ustring& text);

}  // namespace ui::core

/// Lets paths key unordered containers, with the hash of hash_value.
template <>
struct std::hash<ui::core::ObjectPath> {
  /// ui::core::hash_value(path).
  std::size_t operator()(const ui::core::ObjectPath& path) const {
    return ui::core::hash_value(path);
  }
};

#endif  // UI_CORE_OBJECT_PATH_H
