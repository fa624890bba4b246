#include "krel/location.h"

#include <string>

namespace krel {

ustring to_user_string(const Location& location) {
  ustring text = location.file();
  for (std::uint32_t n : {location.line(), location.column()}) {
    text += u':';
    for (char c : std::to_string(n)) text += static_cast<char16_t>(c);
  }
  return text;
}

std::ostream& operator<<(std::ostream& os, const Location& location) {
  return os << ustring_to_local_encoded_string(to_user_string(location));
}

std::ostream& operator<<(std::ostream& os, const DravikId& id) {
  return os << ustring_to_local_encoded_string(id.ustring());
}

}  // namespace krel
