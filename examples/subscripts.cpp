// subscripts: 1-based subscripts to 0-based linear indices and back.
//
// Users write an element of an array as a subscript such as //2, 3; the
// modelling language stores the same element as a 0-based, column-major
// linear index together with the array's size. sub_to_ind goes one way (and
// refuses a subscript outside the array with a message), sub_to_maybe_ind is
// its non-throwing twin, and ind_to_sub goes back.

#include <cstddef>
#include <iostream>
#include <string>
#include <vector>

#include "krel/array_size.h"
#include "krel/message.h"
#include "krel/ustring.h"
#include "lang/core/path_element.h"
#include "ui/core/errors.h"
#include "ui/core/indexing.h"
#include "ui/core/object_path_subscript.h"

namespace {

std::string utf8(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

}  // namespace

int main() {
  const krel::ArraySize size{3, 4};
  std::cout << "array size: " << utf8(krel::to_user_string(size)) << '\n';

  // Every element of the 3x4 array: the subscript, its index, and back.
  for (unsigned long col = 1; col <= 4; ++col) {
    for (unsigned long row = 1; row <= 3; ++row) {
      const ui::core::ObjectPathSubscript sub({row, col});
      const lang::core::PathElementIndex index = ui::core::sub_to_ind(sub, size);
      const ui::core::ObjectPathSubscript again = ui::core::ind_to_sub(index);
      // Column-major: the row varies fastest.
      const std::size_t expected = (row - 1) + (col - 1) * 3;
      if (index.index() != expected ||
          std::vector<unsigned long>(again) != std::vector<unsigned long>(sub)) {
        std::cout << utf8(sub) << " -> " << index.index() << " -> " << utf8(again) << '\n';
        return 1;
      }
    }
  }
  std::cout << "all 12 subscripts map to their column-major index and back\n";

  const ui::core::ObjectPathSubscript sub(u"//2, 3");
  const lang::core::PathElementIndex index = ui::core::sub_to_ind(sub, size);
  std::cout << utf8(sub) << " -> index " << index.index() << '\n';
  std::cout << "index 11 -> " << utf8(ui::core::ind_to_sub(lang::core::PathElementIndex(11, size)))
            << '\n';

  // Row 4 does not exist in a 3x4 array.
  const ui::core::ObjectPathSubscript outside(u"//4, 1");
  std::cout << utf8(outside) << " -> "
            << (ui::core::sub_to_maybe_ind(outside, size) ? "an index" : "no index") << '\n';
  try {
    (void)ui::core::sub_to_ind(outside, size);
    return 1;
  } catch (const krel::MessageException& e) {
    if (!ui::core::is_error(e, ui::core::ErrorId::SubscriptOutOfRange)) throw;
    std::cout << "refused: " << e.what() << '\n';
  }
  return 0;
}
