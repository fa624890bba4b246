// fuzz/enumerations.cpp - the user texts of Access and UnitConversionType
//
// Properties:
// - to_access accepts exactly "internal" and "external" (no case folding, no
//   trimming), and throws InvalidAccess carrying the text unchanged for any
//   other text; an accepted value's user text is the input;
// - to_unit_conversion_type never throws, answers absolute or relative exactly
//   for their user texts and unknown for everything else; a known value's
//   user text is the input.

#include <cstdint>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/enumerations.h"
#include "ui/core/errors.h"

namespace {

using fuzz::ustring;
using ui::core::Access;
using ui::core::UnitConversionType;

void check(const ustring& text) {
  std::optional<Access> access;
  const auto thrown = fuzz::message_thrown_by([&] { access = ui::core::to_access(text); }, text);
  const bool known_access = text == u"internal" || text == u"external";
  fuzz::require(access.has_value() == known_access,
                "to_access accepts exactly \"internal\" and \"external\"", text);
  if (thrown) {
    fuzz::require(ui::core::is_error(*thrown, ui::core::ErrorId::InvalidAccess) &&
                      fuzz::has_text_argument(*thrown, text),
                  "to_access refuses with InvalidAccess and the text unchanged", text);
  } else {
    fuzz::require(ui::core::to_user_string(*access) == text,
                  "an accepted Access has the input as its user text", text);
  }

  UnitConversionType type = UnitConversionType::unknown;
  fuzz::require_no_throw([&] { type = ui::core::to_unit_conversion_type(text); },
                         "to_unit_conversion_type never throws", text);
  const UnitConversionType expected = text == u"absolute"   ? UnitConversionType::absolute
                                      : text == u"relative" ? UnitConversionType::relative
                                                            : UnitConversionType::unknown;
  fuzz::require(type == expected,
                "to_unit_conversion_type knows exactly \"absolute\" and \"relative\"", text);
  if (type != UnitConversionType::unknown) {
    fuzz::require(ui::core::to_user_string(type) == text,
                  "a known UnitConversionType has the input as its user text", text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) check(text);
  return 0;
}
