// resource_core/base_msg_id.h - the identifier of a catalogue message
//
// A message is named by its catalogue (such as
// "kalder:common:ui:core:kernel:path") and its key inside that catalogue (such
// as "InvalidNodePath"), and carries the arguments its text refers to. The two
// names stay separate fields; the full identifier "catalogue:key" is only ever
// built for display.

#ifndef RESOURCE_CORE_BASE_MSG_ID_H
#define RESOURCE_CORE_BASE_MSG_ID_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace resource_core {

/// Ownership: a plain value. Threads: like an int.
struct BaseMsgID {
  /// Alternative 0 is an unsigned count, 1 a signed number, 2 a UTF-16 text,
  /// 3 a floating-point number.
  using Argument = std::variant<std::uint64_t, std::int64_t, std::u16string, double>;

  std::vector<Argument> arguments;
  std::string catalogue;
  std::string key;

  friend bool operator==(const BaseMsgID&, const BaseMsgID&) = default;
};

}  // namespace resource_core

#endif  // RESOURCE_CORE_BASE_MSG_ID_H
