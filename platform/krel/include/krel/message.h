// krel/message.h - messages and the exception that carries them
//
// A Message wraps a message identifier (catalogue, key, arguments); its wording
// comes from the message catalogue when someone asks for it. MessageException
// is the exception every library of the tool throws for bad input: catch it,
// read `message().id()` to react to a specific failure, or `what()` for a
// UTF-8 text that begins with the full identifier.
//
//   try { ... } catch (const krel::MessageException& e) {
//     if (e.message().id().key == "InvalidNodePath") ...
//     std::cerr << e.what();  // "kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' is
//     ..."
//   }

#ifndef KREL_MESSAGE_H
#define KREL_MESSAGE_H

#include <exception>
#include <memory>
#include <string>

#include "krel/ustring.h"
#include "resource_core/base_msg_id.h"

namespace krel {

/// Ownership: a handle to an immutable identifier; copies share it, so copying a
/// message (as throwing and catching do) never allocates and never throws.
/// Threads: copies may be used on any threads at once.
class Message {
 public:
  explicit Message(const resource_core::BaseMsgID& id)
      : id_(std::make_shared<const resource_core::BaseMsgID>(id)) {}
  explicit Message(resource_core::BaseMsgID&& id)
      : id_(std::make_shared<const resource_core::BaseMsgID>(std::move(id))) {}

  [[nodiscard]] const resource_core::BaseMsgID& id() const noexcept { return *id_; }

  /// Writes the catalogue text for the id, in the language of the C library's
  /// messages category (setlocale; std::locale::global with a named locale
  /// sets it too), with the arguments filled in.
  void formattedMessage_(ustring& out) const;

  /// "catalogue:key".
  [[nodiscard]] std::string identifier() const;

 private:
  std::shared_ptr<const resource_core::BaseMsgID> id_;
};

/// Ownership: copies share the message and its text; copying never throws.
class MessageException : public std::exception {
 public:
  /// Formats the text once, in the C library's messages locale of the moment
  /// of the throw.
  explicit MessageException(const Message& message);

  [[nodiscard]] const Message& message() const noexcept { return state_->message; }

  /// "catalogue:key: text" as UTF-8.
  [[nodiscard]] const char* what() const noexcept override { return state_->what.c_str(); }

 private:
  struct State {
    Message message;
    std::string what;
  };
  std::shared_ptr<const State> state_;
};

}  // namespace krel

#endif  // KREL_MESSAGE_H
