#include "ui/core/enumerations.h"

#include <array>
#include <cassert>
#include <ostream>

#include "krel/message.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// The user texts of the named enumerators, indexed by the enumerator's value.
constexpr std::array<const char16_t*, 2> access_texts{u"internal", u"external"};
constexpr std::array<const char16_t*, 2> unit_conversion_texts{u"absolute", u"relative"};

}  // namespace

ustring to_user_string(const Access& access) {
  const auto index = static_cast<std::uint32_t>(access);
  assert(index < access_texts.size() && "an Access must be internal or external");
  return ustring(access_texts[index]);
}

Access to_access(const ustring& text) {
  // ustring's == compares the length first, then every code unit, so a
  // prefix such as "intern" or a text with a blank around it never matches.
  if (text == access_texts[static_cast<std::uint32_t>(Access::internal)]) return Access::internal;
  if (text == access_texts[static_cast<std::uint32_t>(Access::external)]) return Access::external;
  detail::throw_error(ErrorId::InvalidAccess, text);
}

void printAccess(std::ostream& os, const Access& access, const std::string& label) {
  // Two separate insertions: a width set by the caller applies to the label
  // and is reset by that insertion, exactly as for any string.
  os << label;
  os << krel::ustring_to_local_encoded_string(to_user_string(access));
}

std::ostream& operator<<(std::ostream& os, const Access& access) {
  printAccess(os, access, "");
  return os;
}

ustring to_user_string(UnitConversionType type) {
  switch (type) {
    case UnitConversionType::absolute:
    case UnitConversionType::relative:
      return ustring(unit_conversion_texts[static_cast<std::size_t>(type)]);
    case UnitConversionType::unknown:
      break;
  }
  // The unknown kind has no fixed text: users read it in their own language,
  // so it is the catalogue's text for the C library's messages locale of this
  // moment.
  const krel::Message message(detail::make_error(ErrorId::UnitConversionUnknown));
  ustring text;
  message.formattedMessage_(text);
  return text;
}

UnitConversionType to_unit_conversion_type(const ustring& text) {
  // The reference texts come from to_user_string itself, so the parser can
  // never drift from what is printed.
  if (text == to_user_string(UnitConversionType::absolute)) return UnitConversionType::absolute;
  if (text == to_user_string(UnitConversionType::relative)) return UnitConversionType::relative;
  return UnitConversionType::unknown;
}

std::ostream& operator<<(std::ostream& os, UnitConversionType type) {
  return os << krel::ustring_to_local_encoded_string(to_user_string(type));
}

}  // namespace ui::core
