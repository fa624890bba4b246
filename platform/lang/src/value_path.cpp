#include "lang/core/value_path.h"

#include <ostream>

#include "path_text.h"

namespace lang::core {

ustring to_user_string(const ValueTail& tail) {
  ustring text = tail.name().string();
  if (tail.cellIndex()) {
    text += u'{';
    detail::append_one_based(text, tail.cellIndex()->index());
    text += u'}';
  }
  return text;
}

ustring to_user_string(const ValuePath& path) {
  ustring text = to_user_string(path.head());
  if (!text.empty()) text += u'.';
  text += to_user_string(path.tail());
  return text;
}

std::ostream& operator<<(std::ostream& os, const ValueTail& tail) {
  return os << krel::ustring_to_local_encoded_string(to_user_string(tail));
}

std::ostream& operator<<(std::ostream& os, const ValuePath& path) {
  return os << krel::ustring_to_local_encoded_string(to_user_string(path));
}

}  // namespace lang::core
