// messages.h - the messages of the units library (private to src/)
//
// Every failure of the library is a krel::MessageException of the catalogue
// "units2:core". The table below lists each message's key and the kinds of its
// arguments in order; one throw helper builds the identifier and throws it,
// and the arguments are checked against the table when the call is compiled:
//
//   detail::throw_error(detail::MessageId::NotCommensurate, from_text, to_text);
//   detail::MsgId id = detail::make_error(detail::MessageId::InvalidExpression);

#ifndef UNITS2_CORE_SRC_MESSAGES_H
#define UNITS2_CORE_SRC_MESSAGES_H

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "krel/detail/checked_message.h"
#include "krel/message.h"
#include "krel/ustring.h"
#include "resource_core/base_msg_id.h"

namespace units2::core::detail {

using MsgId = resource_core::BaseMsgID;

inline constexpr std::string_view catalogue = "units2:core";

/// Every message of the library, in the order of `messages`.
enum class MessageId {
  InvalidUnitId,
  InvalidExpression,
  SyntaxError,
  UnknownUnit,
  AmbiguousUnit,
  OffsetUnitNotAlone,
  NotCommensurate,
  InexactConversion,
  InvalidConversionMode,
  FactorTooLarge,
  NonFiniteExponent,
  NonFiniteConversionValue,
  InvalidDatabase,
};

/// What a message argument is: a text (UTF-16, or UTF-8 that is widened), an
/// unsigned count, or a signed integer.
enum class ArgKind { text, count, integer };

/// One row of the message table: the key, and the kinds of the first
/// `arguments` arguments.
struct MessageRow {
  MessageId id;
  std::string_view key;
  std::size_t arguments;
  std::array<ArgKind, 3> kinds;
};

template <ArgKind... kinds>
consteval MessageRow message_row(MessageId id, std::string_view key) {
  static_assert(sizeof...(kinds) <= 3, "a message has at most three arguments");
  return MessageRow{id, key, sizeof...(kinds), {kinds...}};
}

inline constexpr std::array<MessageRow, 13> messages{{
    message_row<ArgKind::text>(MessageId::InvalidUnitId, "InvalidUnitId"),
    message_row<>(MessageId::InvalidExpression, "InvalidExpression"),
    message_row<ArgKind::text, ArgKind::count>(MessageId::SyntaxError, "SyntaxError"),
    message_row<ArgKind::text, ArgKind::text>(MessageId::UnknownUnit, "UnknownUnit"),
    message_row<ArgKind::text, ArgKind::text, ArgKind::text>(MessageId::AmbiguousUnit,
                                                             "AmbiguousUnit"),
    message_row<ArgKind::text, ArgKind::text>(MessageId::OffsetUnitNotAlone, "OffsetUnitNotAlone"),
    message_row<ArgKind::text, ArgKind::text>(MessageId::NotCommensurate, "NotCommensurate"),
    message_row<ArgKind::text, ArgKind::text, ArgKind::text>(MessageId::InexactConversion,
                                                             "InexactConversion"),
    message_row<ArgKind::integer>(MessageId::InvalidConversionMode, "InvalidConversionMode"),
    message_row<>(MessageId::FactorTooLarge, "FactorTooLarge"),
    message_row<>(MessageId::NonFiniteExponent, "NonFiniteExponent"),
    message_row<>(MessageId::NonFiniteConversionValue, "NonFiniteConversionValue"),
    message_row<ArgKind::text, ArgKind::count, ArgKind::text>(MessageId::InvalidDatabase,
                                                              "InvalidDatabase"),
}};

static_assert(krel::detail::rows_in_identifier_order(messages),
              "the message table must list MessageId in order");

/// The kind of argument a C++ type gives, or none.
template <class Arg>
inline constexpr bool is_count_arg = std::same_as<Arg, std::uint64_t>;
template <class Arg>
inline constexpr bool is_integer_arg = std::same_as<Arg, std::int64_t>;
template <class Arg>
inline constexpr bool is_text_arg = std::convertible_to<const Arg&, std::string_view> ||
                                    std::convertible_to<const Arg&, const krel::ustring&>;

/// The message table as krel's checked messages read it.
struct Messages {
  /// The identifiers the table describes.
  using Id = MessageId;
  /// The table, row i for the MessageId of value i.
  static constexpr const auto& rows = messages;

  /// Whether an argument of C++ type Arg may be given where the table says
  /// `kind`.
  template <class Arg>
  static constexpr bool fits(ArgKind kind) {
    switch (kind) {
      case ArgKind::count:
        return is_count_arg<Arg>;
      case ArgKind::integer:
        return is_integer_arg<Arg>;
      case ArgKind::text:
        return is_text_arg<Arg>;
    }
    return false;
  }

  /// The identifier of `id`'s message with no arguments.
  [[nodiscard]] static MsgId message_id(MessageId id);

  // The arguments of a message, appended in order.
  static void append_argument(MsgId& msg, std::uint64_t count);
  static void append_argument(MsgId& msg, std::int64_t value);
  static void append_argument(MsgId& msg, const krel::ustring& text);
  static void append_argument(MsgId& msg, std::string_view utf8);  // widened to UTF-16
};

/// The identifier of `id`'s message carrying `args`, for a caller that keeps
/// it or builds its own exception from it.
template <class... Args>
[[nodiscard]] MsgId make_error(krel::detail::CheckedId<Messages, Args...> id, const Args&... args) {
  return krel::detail::make_checked<Messages, Args...>(id, args...);
}

/// Throws krel::MessageException carrying `id`'s message with `args`.
template <class... Args>
[[noreturn]] void throw_error(krel::detail::CheckedId<Messages, Args...> id, const Args&... args) {
  krel::detail::throw_checked<Messages, Args...>(id, args...);
}

}  // namespace units2::core::detail

#endif  // UNITS2_CORE_SRC_MESSAGES_H
