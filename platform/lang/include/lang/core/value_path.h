// lang/core/value_path.h - paths of the modelling language to a value
//
// A ValuePath names one value: the component that holds it (a ContainerPath,
// the head) and the value's own name (the tail), optionally with a cell index
// that picks one cell of an array value. In the user text the tail follows the
// head after a ".", and a cell index shows in braces as its 1-based linear
// position (the 0-based index plus one), whatever the value's size:
//
//   lang::core::ValuePath value(head, lang::core::ValueTail(lang::core::PathElementName(u"mass"),
//                                                           std::nullopt));
//   lang::core::to_user_string(value);  // u"Body.Frame(2,1).mass"
//   // with the cell index PathElementIndex(2, {5}) instead:     u"Body.Frame(2,1).mass{3}"

#ifndef LANG_CORE_VALUE_PATH_H
#define LANG_CORE_VALUE_PATH_H

#include <iosfwd>
#include <optional>

#include "lang/core/container_path.h"
#include "lang/core/path_element.h"

namespace lang::core {

/// The last step of a value path: a value's name and, when one cell of an
/// array value is meant, that cell's index.
/// Ownership: a plain value. Threads: like an int.
class ValueTail {
 public:
  ValueTail(const PathElementName& name, const std::optional<PathElementIndex>& cell_index)
      : name_(name), cell_index_(cell_index) {}

  [[nodiscard]] const PathElementName& name() const noexcept { return name_; }
  [[nodiscard]] const std::optional<PathElementIndex>& cellIndex() const noexcept {
    return cell_index_;
  }

  friend bool operator==(const ValueTail&, const ValueTail&) = default;

 private:
  PathElementName name_;
  std::optional<PathElementIndex> cell_index_;
};

/// Ownership: a plain value owning its head and tail. Threads: like a std::vector.
class ValuePath {
 public:
  ValuePath(const ContainerPath& head, const ValueTail& tail) : head_(head), tail_(tail) {}

  [[nodiscard]] const ContainerPath& head() const noexcept { return head_; }
  [[nodiscard]] const ValueTail& tail() const noexcept { return tail_; }

  friend bool operator==(const ValuePath&, const ValuePath&) = default;

 private:
  ContainerPath head_;
  ValueTail tail_;
};

/// The tail's name, then "{n}" when it has a cell index, n being that index
/// plus one in decimal: u"b", u"b{3}".
[[nodiscard]] ustring to_user_string(const ValueTail& tail);

/// The head's text and the tail's text joined by "." (no "." for an empty
/// head): u"a.b{3}", u"mass".
[[nodiscard]] ustring to_user_string(const ValuePath& path);

std::ostream& operator<<(std::ostream& os, const ValueTail& tail);
std::ostream& operator<<(std::ostream& os, const ValuePath& path);

}  // namespace lang::core

#endif  // LANG_CORE_VALUE_PATH_H
