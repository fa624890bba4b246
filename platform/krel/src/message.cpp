#include "krel/message.h"

#include "krel/detail/checked_message.h"

#include "msgcat/catalogue.h"

namespace krel {

void Message::formattedMessage_(ustring& out) const {
  out = msgcat::format(*id_);
}

std::string Message::identifier() const {
  return id_->catalogue + ":" + id_->key;
}

MessageException::MessageException(const Message& message) {
  ustring text;
  message.formattedMessage_(text);
  state_ = std::make_shared<const State>(
      State{message, message.identifier() + ": " + ustring_to_utf8_string(text)});
}

namespace detail {

void throw_message(resource_core::BaseMsgID msg) {
  // The identifier, message and exception are built in that order; if building
  // one fails, those built before it are destroyed as the failure unwinds.
  throw MessageException(Message(std::move(msg)));
}

}  // namespace detail
}  // namespace krel
