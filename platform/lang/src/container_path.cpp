#include "lang/core/container_path.h"

#include <ostream>

namespace lang::core {

ustring to_user_string(const ContainerPath& path) {
  ustring text;
  for (const ContainerPathElement& element : path) {
    if (!text.empty()) text += u'.';
    text += to_user_string(element);
  }
  return text;
}

std::ostream& operator<<(std::ostream& os, const ContainerPath& path) {
  return os << krel::ustring_to_local_encoded_string(to_user_string(path));
}

}  // namespace lang::core
