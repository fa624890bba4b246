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
#include <type_traits>

#include "krel/array_size.h"
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

/// True when row i of the table describes the ErrorId of value i.
consteval bool error_rows_in_enum_order() {
  for (std::size_t i = 0; i < error_rows.size(); ++i) {
    if (static_cast<std::size_t>(error_rows[i].id) != i) return false;
  }
  return true;
}
static_assert(error_rows_in_enum_order(), "the message table must list ErrorId in order");

/// True when a C++ type gives a count argument (an unsigned integer).
template <class Arg>
inline constexpr bool is_count_arg =
    std::unsigned_integral<Arg> && !std::same_as<Arg, bool> && !std::same_as<Arg, char16_t>;
/// True when a C++ type gives a text argument (text, or an ArraySize).
template <class Arg>
inline constexpr bool is_text_arg =
    std::convertible_to<const Arg&, const ustring&> || std::same_as<Arg, krel::ArraySize>;

/// Never defined, and not constexpr: reached while checking a call exactly
/// when the arguments do not match the table, which makes the call fail to
/// compile with this name in the error.
void arguments_do_not_match_the_message_table();

/// An ErrorId whose row has arguments of exactly the kinds of Args, in order.
/// It is made only while compiling, from an ErrorId written at the call.
template <class... Args>
class CheckedErrorId {
 public:
  /// Checks `error`'s row against Args. Implicit, so that a call reads
  /// throw_error(ErrorId::InvalidNodePath, text).
  consteval CheckedErrorId(ErrorId error) : id_(error) {
    const ErrorRow& row = error_rows[static_cast<std::size_t>(error)];
    constexpr std::array<bool, sizeof...(Args)> counts{is_count_arg<Args>...};
    constexpr std::array<bool, sizeof...(Args)> texts{is_text_arg<Args>...};
    if (row.arguments != sizeof...(Args)) arguments_do_not_match_the_message_table();
    for (std::size_t i = 0; i < sizeof...(Args); ++i) {
      const bool fits = row.kinds[i] == ArgKind::count ? counts[i] : texts[i];
      if (!fits) arguments_do_not_match_the_message_table();
    }
  }
  /// The identifier that was checked.
  [[nodiscard]] constexpr ErrorId id() const noexcept { return id_; }

 private:
  ErrorId id_;
};

/// The identifier of `id`'s message with no arguments, room reserved for
/// exactly the arguments the message carries.
[[nodiscard]] MsgId message_id(ErrorId id);

/// Appends one argument to a message; arguments are appended in order, and
/// each text is stored as a fresh copy.
/// @{
void append_argument(MsgId& msg, std::uint64_t count);
void append_argument(MsgId& msg, const ustring& text);
void append_argument(MsgId& msg, const krel::ArraySize& size);
/// @}

/// Throws krel::MessageException carrying `id`.
[[noreturn]] void throw_message(MsgId id);

/// The identifier of `id`'s message carrying `args`, for a caller that
/// reports it without throwing or throws it later.
template <class... Args>
[[nodiscard]] MsgId make_error(std::type_identity_t<CheckedErrorId<std::decay_t<Args>...>> id,
                               const Args&... args) {
  MsgId msg = message_id(id.id());
  (append_argument(msg, args), ...);
  return msg;
}

/// Throws krel::MessageException carrying `id`'s message with `args`.
template <class... Args>
[[noreturn]] void throw_error(std::type_identity_t<CheckedErrorId<std::decay_t<Args>...>> id,
                              const Args&... args) {
  throw_message(make_error<Args...>(id, args...));
}

}  // namespace ui::core::detail

#endif  // UI_CORE_DETAIL_ERRORS_H
