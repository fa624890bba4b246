// path_text.h - number formatting shared by the user texts of paths
//
// Private to the language path library.

#ifndef LANG_CORE_SRC_PATH_TEXT_H
#define LANG_CORE_SRC_PATH_TEXT_H

#include <cstddef>
#include <string>

#include "krel/ustring.h"

namespace lang::core::detail {

/// Appends n + 1 in decimal. Done on the digits, so the largest size_t gives
/// 18446744073709551616 instead of wrapping to 0.
inline void append_one_based(krel::ustring& text, std::size_t n) {
  std::string digits = std::to_string(n);
  std::size_t i = digits.size();
  while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
  if (i == 0) {
    digits.insert(digits.begin(), '1');
  } else {
    ++digits[i - 1];
  }
  for (char c : digits) text += static_cast<char16_t>(c);
}

}  // namespace lang::core::detail

#endif  // LANG_CORE_SRC_PATH_TEXT_H
