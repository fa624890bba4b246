// lang/core/container_path.h - paths of the modelling language to a component
//
// A ContainerPath is the sequence of steps from the model's root down to one
// component: each step names a member and the element picked in it. Its user
// text joins the steps with ".", showing the 1-based subscripts of every step
// that is not scalar:
//
//   lang::core::ContainerPath path;
//   path.push_back({lang::core::PathElementName(u"Body"), lang::core::PathElementIndex(0, {1})});
//   path.push_back({lang::core::PathElementName(u"Frame"), lang::core::PathElementIndex(1, {2,
//   3})}); lang::core::to_user_string(path);  // u"Body.Frame(2,1)"

#ifndef LANG_CORE_CONTAINER_PATH_H
#define LANG_CORE_CONTAINER_PATH_H

#include <cstddef>
#include <iosfwd>
#include <vector>

#include "lang/core/path_element.h"

namespace lang::core {

/// Ownership: a plain value owning its elements. Threads: like a std::vector.
class ContainerPath {
 public:
  using const_iterator = std::vector<ContainerPathElement>::const_iterator;

  /// The empty path: the model's root.
  ContainerPath() = default;

  void push_back(const ContainerPathElement& element) { elements_.push_back(element); }

  [[nodiscard]] const_iterator begin() const noexcept { return elements_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return elements_.end(); }
  [[nodiscard]] bool empty() const noexcept { return elements_.empty(); }
  [[nodiscard]] std::size_t size() const noexcept { return elements_.size(); }

  /// Element-wise equality (see PathElementIndex for how sizes compare).
  friend bool operator==(const ContainerPath&, const ContainerPath&) = default;

 private:
  std::vector<ContainerPathElement> elements_;
};

/// The elements' texts (see to_user_string of an element) joined by ".";
/// the empty path gives the empty text.
[[nodiscard]] ustring to_user_string(const ContainerPath& path);

/// The user text in the local narrow encoding.
std::ostream& operator<<(std::ostream& os, const ContainerPath& path);

}  // namespace lang::core

#endif  // LANG_CORE_CONTAINER_PATH_H
