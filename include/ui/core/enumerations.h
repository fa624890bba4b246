/// \file ui/core/enumerations.h
/// Access and UnitConversionType with their user texts.
///
/// Two small enumerations with a fixed text for users, a parser from that text
/// and narrow stream output. They react differently to text they do not know:
/// to_access refuses it with the InvalidAccess message, while
/// to_unit_conversion_type quietly answers UnitConversionType::unknown, whose
/// text is a translated catalogue message.
///
/// ```
/// ui::core::to_access(u"external");                 // Access::external
/// ui::core::to_access(u"External");                 // throws InvalidAccess
/// ui::core::to_unit_conversion_type(u"relative");   // UnitConversionType::relative
/// ui::core::to_unit_conversion_type(u"delta");      // UnitConversionType::unknown
/// std::cout << ui::core::UnitConversionType::unknown;  // "unknown" (or "unbekannt")
/// ```
///
/// Texts are matched exactly: case-sensitive, no trimming of blanks.
/// Threads: every function may be called from any thread; the stream functions
/// need the caller to serialise use of the stream.

#ifndef UI_CORE_ENUMERATIONS_H
#define UI_CORE_ENUMERATIONS_H

#include <cstdint>
#include <iosfwd>
#include <string>

#include "ui/core/errors.h"

namespace ui::core {

/// Whether a model item is visible only inside its component or also outside.
enum class Access : std::uint32_t { internal = 0, external = 1 };

/// The kind of a unit conversion. `unknown` stands for a text that names
/// neither kind.
enum class UnitConversionType : std::int32_t { absolute = 0, relative = 1, unknown = -1 };

/// "internal" or "external". Only the two enumerators are meaningful.
[[nodiscard]] ustring to_user_string(const Access& access);

/// The Access whose user text is exactly `text`. Any other text, including a
/// different case or surrounding blanks, throws InvalidAccess carrying `text`
/// unchanged.
[[nodiscard]] Access to_access(const ustring& text);

/// Writes `label`, then the user text of `access` in the local narrow
/// encoding, each as an ordinary formatted string insertion: a field width set
/// on the stream pads the label and is then used up, as for any string. No
/// separator and no line end are written.
void printAccess(std::ostream& os, const Access& access, const std::string& label);

/// printAccess with an empty label.
std::ostream& operator<<(std::ostream& os, const Access& access);

/// "absolute" or "relative"; for `unknown`, the text of the message
/// UnitConversionUnknown in the C library's messages locale ("unknown" in
/// English). Looking that text up is for display only and throws nothing.
[[nodiscard]] ustring to_user_string(UnitConversionType type);

/// The kind whose user text is exactly `text`, else `unknown`. Never throws
/// for any text.
[[nodiscard]] UnitConversionType to_unit_conversion_type(const ustring& text);

/// Writes the user text of `type` in the local narrow encoding, as a formatted
/// string insertion.
std::ostream& operator<<(std::ostream& os, UnitConversionType type);

}  // namespace ui::core

#endif  // UI_CORE_ENUMERATIONS_H
