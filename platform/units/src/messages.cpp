#include "messages.h"

#include <utility>

namespace units2::core::detail {

MsgId Messages::message_id(MessageId id) {
  const MessageRow& row = messages[static_cast<std::size_t>(id)];
  MsgId msg;
  msg.catalogue = std::string(catalogue);
  msg.key = std::string(row.key);
  msg.arguments.reserve(row.arguments);
  return msg;
}

void Messages::append_argument(MsgId& msg, std::uint64_t count) {
  msg.arguments.emplace_back(std::in_place_type<std::uint64_t>, count);
}

void Messages::append_argument(MsgId& msg, std::int64_t value) {
  msg.arguments.emplace_back(std::in_place_type<std::int64_t>, value);
}

void Messages::append_argument(MsgId& msg, const krel::ustring& text) {
  msg.arguments.emplace_back(std::in_place_type<std::u16string>, text);
}

void Messages::append_argument(MsgId& msg, std::string_view utf8) {
  append_argument(msg, krel::utf8_string_to_ustring(utf8));
}

}  // namespace units2::core::detail
