/// \file ui/core/errors.h
/// The messages the kernel reports failures with.
///
/// Every failure of the kernel is a krel::MessageException whose message
/// identifier has a catalogue `"kalder:common:ui:core:kernel:<area>"` and a key
/// from the table below. Callers that react to one failure compare the
/// identifier, not the wording, which depends on the locale:
///
/// ```
/// try {
///   ui::core::NodePath1 path(text);
/// } catch (const krel::MessageException& e) {
///   if (ui::core::is_error(e, ui::core::ErrorId::InvalidNodePath)) ...
/// }
/// ```

#ifndef UI_CORE_ERRORS_H
#define UI_CORE_ERRORS_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "krel/message.h"
#include "krel/ustring.h"

namespace ui::core {

/// UTF-16 text, the form of every text the kernel takes and gives.
using ustring = krel::ustring;

/// Every message the kernel builds. All but UnitConversionUnknown are thrown;
/// that one is only looked up for display.
enum class ErrorId {
  InvalidAccess,
  UnitConversionUnknown,
  CannotCreateSource,
  InvalidArrayArguments,
  InvalidNodeId,
  InvalidNodePath,
  InvalidNodePath1,
  InvalidObjectPath,
  InvalidObjectPathName,
  InvalidObjectPathSubscript,
  InvalidObjectPathSubscriptString,
  NonScalarPath,
  InsufficientSubscriptDimensions,
  SubscriptOutOfRange,
};

/// One row of the message table.
struct ErrorInfo {
  /// the message this row describes
  ErrorId id;
  std::string_view area;  ///< "access", "units", "source", "data_struct" or "path"
  std::string_view key;   ///< the key inside the catalogue, such as "InvalidNodeId"
  std::size_t arguments;  ///< how many arguments the message carries
  bool thrown;            ///< false only for UnitConversionUnknown
};

/// The whole table, in the order of ErrorId.
[[nodiscard]] std::span<const ErrorInfo> error_table() noexcept;

/// The row of one message.
[[nodiscard]] const ErrorInfo& error_info(ErrorId id) noexcept;

/// The full catalogue name, "kalder:common:ui:core:kernel:" followed by the area.
[[nodiscard]] std::string error_catalogue(ErrorId id);

/// True when the exception carries the identifier of `id`.
[[nodiscard]] bool is_error(const krel::MessageException& e, ErrorId id) noexcept;

}  // namespace ui::core

#endif  // UI_CORE_ERRORS_H
