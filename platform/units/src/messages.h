// messages.h - the messages of the units library (private to src/)
//
// Every failure of the library is a krel::MessageException of the catalogue
// "units2:core". One routine per message builds its identifier; throw_message
// throws it.

#ifndef UNITS2_CORE_SRC_MESSAGES_H
#define UNITS2_CORE_SRC_MESSAGES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "krel/message.h"
#include "krel/ustring.h"
#include "resource_core/base_msg_id.h"

namespace units2::core::detail {

using MsgId = resource_core::BaseMsgID;

inline constexpr std::string_view catalogue = "units2:core";

[[noreturn]] void throw_message(MsgId id);

[[nodiscard]] MsgId invalid_unit_id(std::string_view text);
[[nodiscard]] MsgId invalid_expression();
[[nodiscard]] MsgId syntax_error(const krel::ustring& text, std::uint64_t position);
[[nodiscard]] MsgId unknown_unit(const krel::ustring& text, std::string_view id);
[[nodiscard]] MsgId ambiguous_unit(const krel::ustring& text, std::string_view spelling,
                                   std::string_view readings);
[[nodiscard]] MsgId offset_unit_not_alone(const krel::ustring& text, std::string_view id);
[[nodiscard]] MsgId not_commensurate(const krel::ustring& from, const krel::ustring& to);
[[nodiscard]] MsgId inexact_conversion(const krel::ustring& from, const krel::ustring& to,
                                       std::string_view factor);
[[nodiscard]] MsgId invalid_conversion_mode(std::int64_t mode);
[[nodiscard]] MsgId factor_too_large();
[[nodiscard]] MsgId non_finite_exponent();
[[nodiscard]] MsgId non_finite_conversion_value();
[[nodiscard]] MsgId invalid_database(std::string_view source, std::uint64_t line,
                                     std::string_view reason);

}  // namespace units2::core::detail

#endif  // UNITS2_CORE_SRC_MESSAGES_H
