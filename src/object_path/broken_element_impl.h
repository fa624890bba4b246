// Breaking an object path element on purpose (private; only the tests include
// this file).
//
// No operation of the library makes a broken element, one whose kind index is
// neither 0 nor 1, yet the element's operations promise what happens to one:
// copies and moves throw std::logic_error("bad visit"), and looking inside
// throws std::logic_error("invalid visit"). This is the one way to make such
// an element, so that those promises can be checked.

#ifndef UI_CORE_SRC_OBJECT_PATH_BROKEN_ELEMENT_IMPL_H
#define UI_CORE_SRC_OBJECT_PATH_BROKEN_ELEMENT_IMPL_H

#include <cassert>
#include <cstddef>

#include "ui/core/object_path_element.h"

namespace ui::core::detail {

struct ObjectPathElementAccess {
  // Breaks `e`: releases the value it holds and sets its kind index to `kind`,
  // which must be neither 0 nor 1. The element then holds nothing; destroying
  // or assigning to it is still safe.
  static void set_kind_for_testing(ObjectPathElement& e, std::size_t kind) noexcept {
    assert(kind != ObjectPathElement::subscript_kind && kind != ObjectPathElement::name_kind &&
           "only a broken kind index may be set");
    e.destroy_value();
    e.kind_ = kind;
  }
};

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_OBJECT_PATH_BROKEN_ELEMENT_IMPL_H
