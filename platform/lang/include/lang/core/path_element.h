// lang/core/path_element.h - the parts of a language path: names and indices
//
// A path of the modelling language walks down a tree of components. Each step
// names a member (PathElementName) and picks one element of it by a 0-based,
// column-major linear index into the member's array size (PathElementIndex);
// the two together are a ContainerPathElement. A scalar member has the size
// 1x1 and the index 0.
//
//   lang::core::ContainerPathElement frame(lang::core::PathElementName(u"Frame"),
//                                          lang::core::PathElementIndex(1, krel::ArraySize{2, 3}));
//   lang::core::to_user_string(frame);  // u"Frame(2,1)"

#ifndef LANG_CORE_PATH_ELEMENT_H
#define LANG_CORE_PATH_ELEMENT_H

#include <cstddef>
#include <iosfwd>

#include "krel/array_size.h"
#include "krel/ustring.h"

namespace lang::core {

using ustring = krel::ustring;

/// The catalogue of this library's messages, and the key thrown for an empty
/// name (it carries no arguments).
inline constexpr const char* path_catalogue = "lang:core:path";
inline constexpr const char* empty_path_element_name_key = "EmptyPathElementName";

/// The name of one step of a path. Any non-empty text is a name: the modelling
/// language's own rules for identifiers are checked where names are declared,
/// not here.
/// Ownership: a plain value holding its own copy of the text. Threads: like an int.
class PathElementName {
 public:
  /// Throws krel::MessageException (catalogue path_catalogue, key
  /// empty_path_element_name_key) for the empty text.
  explicit PathElementName(const ustring& text);

  [[nodiscard]] const ustring& string() const noexcept { return text_; }

  friend bool operator==(const PathElementName&, const PathElementName&) = default;

 private:
  ustring text_;
};

/// A 0-based linear index into an array of the given size, in column-major
/// order (the first dimension varies fastest). The index is not checked
/// against the size: an index at or past the element count is kept as given.
/// Ownership: a plain value. Threads: like an int.
class PathElementIndex {
 public:
  PathElementIndex(std::size_t index, const krel::ArraySize& size) : index_(index), size_(size) {}

  [[nodiscard]] std::size_t index() const noexcept { return index_; }
  [[nodiscard]] const krel::ArraySize& size() const noexcept { return size_; }

  /// Equal when the indices are equal and the sizes compare equal (so the
  /// sizes {1} and {1, 1} make no difference).
  friend bool operator==(const PathElementIndex& a, const PathElementIndex& b) noexcept {
    return a.index_ == b.index_ && a.size_ == b.size_;
  }

 private:
  std::size_t index_;
  krel::ArraySize size_;
};

/// One step of a container path: a member's name and the element picked in it.
/// Ownership: a plain value. Threads: like an int.
class ContainerPathElement {
 public:
  ContainerPathElement(const PathElementName& name, const PathElementIndex& index)
      : name_(name), index_(index) {}

  [[nodiscard]] const PathElementName& name() const noexcept { return name_; }
  [[nodiscard]] const PathElementIndex& objIndex() const noexcept { return index_; }

  friend bool operator==(const ContainerPathElement&, const ContainerPathElement&) = default;

 private:
  PathElementName name_;
  PathElementIndex index_;
};

/// True when the index's size is the scalar size 1x1 (any number of ones).
[[nodiscard]] bool is_scalar(const PathElementIndex& index) noexcept;

/// The 1-based subscripts of an index, one per stored dimension of its size,
/// first dimension first: quotient and remainder by the column-major strides,
/// from the last dimension down. The last dimension is not bounded, so an
/// index past the element count gives a last subscript beyond the last
/// dimension. A dimension whose stride is 0 (it follows a zero-length one) is
/// skipped and keeps the subscript 1; what is left of the index goes to the
/// dimensions before it. Each subscript is written in decimal, so a value of
/// 2^64 is written as such rather than wrapping.
[[nodiscard]] ustring subscript_text(const PathElementIndex& index);

/// The name, followed by the element's 1-based subscripts in parentheses when
/// its size is not 1x1: u"Frame(2,1)", u"mass".
[[nodiscard]] ustring to_user_string(const ContainerPathElement& element);

std::ostream& operator<<(std::ostream& os, const PathElementName& name);
std::ostream& operator<<(std::ostream& os, const ContainerPathElement& element);

}  // namespace lang::core

#endif  // LANG_CORE_PATH_ELEMENT_H
