/// \file ui/core/detail/errors.h
/// Building and throwing the kernel's messages; internal to the kernel.
///
/// Internal to the kernel: do not include this file directly. The table of
/// messages lists, for each ErrorId, its area, its key and the kinds of its
/// arguments in order. One throw helper builds the identifier of a message,
/// wraps it in a krel::Message and throws it as krel::MessageException; the
/// arguments are checked against the table when the call is compiled:
///
/// ```
/// detail::throw_error(ErrorId::InvalidNodePath, text);
/// detail::MsgId msg = detail::make_error(ErrorId::SubscriptOutOfRange, text, size);
/// ```

#ifndef UI_CORE_DETAIL_ERRORS_H
#define UI_CORE_DETAIL_ERRORS_H

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "krel/array_size.h"
#include "krel/detail/checked_message.h"
#include "krel/message.h"
#include "resource_core/base_msg_id.h"
#include "ui/core/errors.h"

namespace ui::core::detail {

/// A message identifier: catalogue, key and the message's arguments.
using MsgId = resource_core::BaseMsgID;

/// What a message argument is. A count is stored as an unsigned integer; a
/// text as UTF-16, and a krel::ArraySize given for a text as its user text
/// (such as "2x3").
enum class ArgKind { count, text };

/// One row of the message table: see ErrorInfo for the first four, and
/// `kinds` for the arguments, of which the first `arguments` are used.
struct ErrorRow {
  ErrorId id;                    ///< The identifier the row describes.
  std::string_view area;         ///< The catalogue's last part ("path").
  std::string_view key;          ///< The message key ("InvalidNodePath").
  bool thrown;                   ///< False for a message that is only looked up.
  std::size_t arguments;         ///< How many arguments the message carries.
  std::array<ArgKind, 2> kinds;  ///< The kinds of those arguments, in order.
};

/// A row of a message with arguments of the given kinds.
template <ArgKind... kinds>
consteval ErrorRow error_row(ErrorId id, std::string_view area, std::string_view key,
                             bool thrown = true) {
  static_assert(sizeof...(kinds) <= 2, "a message has at most two arguments");
  return ErrorRow{id, area, key, thrown, sizeof...(kinds), {kinds...}};
}

/// The message table, in the order of ErrorId. error_table() gives it to
/// callers outside the kernel.
inline constexpr std::array<ErrorRow, 14> error_rows{{
    error_row<ArgKind::text>(ErrorId::InvalidAccess, "access", "InvalidAccess"),
    error_row<>(ErrorId::UnitConversionUnknown, "units", "UnitConversionUnknown", false),
    error_row<ArgKind::text>(ErrorId::CannotCreateSource, "source", "CannotCreateSource"),
    error_row<ArgKind::count, ArgKind::text>(ErrorId::InvalidArrayArguments, "data_struct",
                                             "InvalidArrayArguments"),
    error_row<ArgKind::text>(ErrorId::InvalidNodeId, "path", "InvalidNodeId"),
    error_row<ArgKind::text>(ErrorId::InvalidNodePath, "path", "InvalidNodePath"),
    error_row<ArgKind::text>(ErrorId::InvalidNodePath1, "path", "InvalidNodePath1"),
    error_row<ArgKind::text>(ErrorId::InvalidObjectPath, "path", "InvalidObjectPath"),
    error_row<ArgKind::text>(ErrorId::InvalidObjectPathName, "path", "InvalidObjectPathName"),
    error_row<>(ErrorId::InvalidObjectPathSubscript, "path", "InvalidObjectPathSubscript"),
    error_row<ArgKind::text>(ErrorId::InvalidObjectPathSubscriptString, "path",
                             "InvalidObjectPathSubscriptString"),
    error_row<ArgKind::text>(ErrorId::NonScalarPath, "path", "NonScalarPath"),
    error_row<ArgKind::text, ArgKind::text>(ErrorId::InsufficientSubscriptDimensions, "path",
                                            "InsufficientSubscriptDimensions"),
    error_row<ArgKind::text, ArgKind::text>(ErrorId::SubscriptOutOfRange, "path",
                                            "SubscriptOutOfRange"),
}};

static_assert(krel::detail::rows_in_identifier_order(error_rows),
              "the message table must list ErrorId in order");

/// True when a C++ type gives a count argument (an unsigned integer).
template <class Arg>
inline constexpr bool is_count_arg =
    std::unsigned_integral<Arg> && !std::same_as<Arg, bool> && !std::same_as<Arg, char16_t>;
/// True when a C++ type gives a text argument (text, or an ArraySize).
template <class Arg>
inline constexpr bool is_text_arg =
    std::convertible_to<const Arg&, const ustring&> || std::same_as<Arg, krel::ArraySize>;

/// The message table as krel's checked messages read it.
struct KernelMessages {
  /// The identifiers the table describes.
  using Id = ErrorId;
  /// The table, row i for the ErrorId of value i.
  static constexpr const auto& rows = error_rows;

  /// Whether an argument of C++ type Arg may be given where the table says
  /// `kind`.
  template <class Arg>
  static constexpr bool fits(ArgKind kind) {
    return kind == ArgKind::count ? is_count_arg<Arg> : is_text_arg<Arg>;
  }

  /// The identifier of `id`'s message with no arguments, room reserved for
  /// exactly the arguments the message carries.
  [[nodiscard]] static MsgId message_id(ErrorId id);

  /// Appends one argument to a message; arguments are appended in order, and
  /// each text is stored as a fresh copy.
  /// @{
  static void append_argument(MsgId& msg, std::uint64_t count);
  static void append_argument(MsgId& msg, const ustring& text);
  static void append_argument(MsgId& msg, const krel::ArraySize& size);
  /// @}
};

/// The identifier of `id`'s message carrying `args`, for a caller that
/// reports it without throwing or throws it later.
template <class... Args>
[[nodiscard]] MsgId make_error(krel::detail::CheckedId<KernelMessages, Args...> id,
                               const Args&... args) {
  return krel::detail::make_checked<KernelMessages, Args...>(id, args...);
}

/// Throws krel::MessageException carrying `id`'s message with `args`.
template <class... Args>
[[noreturn]] void throw_error(krel::detail::CheckedId<KernelMessages, Args...> id,
                              const Args&... args) {
  krel::detail::throw_checked<KernelMessages, Args...>(id, args...);
}

}  // namespace ui::core::detail

#endif  // UI_CORE_DETAIL_ERRORS_H
