// delta_unit: the unit to show when a value is converted without its offset.
//
// A temperature in degC has an offset from the kelvin scale; a temperature
// difference does not, and is shown in the delta unit deltadegC. The kernel
// picks the unit "delta<id>" only when it exists and really is the same unit
// without the offset (K has its twin deltaK too); any other expression, such
// as m/s, is shown as it is.

#include <iostream>
#include <string>

#include "krel/ustring.h"
#include "ui/core/unit_conversion.h"
#include "units2/core/expr.h"

namespace {

std::string utf8(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

}  // namespace

int main() {
  for (const char16_t* text : {u"degC", u"degF", u"K", u"m/s"}) {
    const units2::core::Expr expr{krel::ustring(text)};
    std::cout << utf8(text) << ": affine display "
              << utf8(ui::core::ps2dravik_nonaffine_unit_conversion(expr, false))
              << ", non-affine display "
              << utf8(ui::core::ps2dravik_nonaffine_unit_conversion(expr, true)) << '\n';
  }
  return 0;
}
