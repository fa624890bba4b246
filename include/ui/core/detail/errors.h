// ui/core/detail/errors.h - building and throwing the kernel's messages
//
// Internal to the kernel: do not include this file directly. There is one
// routine per message that returns its filled identifier, and one throw helper
// that wraps an identifier in a krel::Message and throws it as
// krel::MessageException:
//
//   detail::throw_message(detail::invalid_node_path(text));

#ifndef UI_CORE_DETAIL_ERRORS_H
#define UI_CORE_DETAIL_ERRORS_H

#include <cstdint>

#include "krel/array_size.h"
#include "krel/message.h"
#include "resource_core/base_msg_id.h"
#include "ui/core/errors.h"

namespace ui::core::detail {

using MsgId = resource_core::BaseMsgID;

/// Throws krel::MessageException carrying `id`.
[[noreturn]] void throw_message(MsgId id);

/// The identifier of `id`'s message with no arguments, room reserved for
/// exactly the arguments the message carries. The routines below fill it.
[[nodiscard]] MsgId message_id(ErrorId id);

// One routine per message. Each text argument is stored as a fresh copy.
[[nodiscard]] MsgId invalid_access(const ustring& text);
[[nodiscard]] MsgId unit_conversion_unknown();
[[nodiscard]] MsgId cannot_create_source(const ustring& kind);
[[nodiscard]] MsgId invalid_array_arguments(std::uint64_t count, const krel::ArraySize& size);
[[nodiscard]] MsgId invalid_node_id(const ustring& text);
[[nodiscard]] MsgId invalid_node_path(const ustring& text);
[[nodiscard]] MsgId invalid_node_path1(const ustring& path_text);
[[nodiscard]] MsgId invalid_object_path(const ustring& text);
[[nodiscard]] MsgId invalid_object_path_name(const ustring& text);
[[nodiscard]] MsgId invalid_object_path_subscript();
[[nodiscard]] MsgId invalid_object_path_subscript_string(const ustring& text);
[[nodiscard]] MsgId non_scalar_path(const ustring& path_text);
[[nodiscard]] MsgId insufficient_subscript_dimensions(const ustring& subscript_text,
                                                      const krel::ArraySize& size);
[[nodiscard]] MsgId subscript_out_of_range(const ustring& subscript_text,
                                           const krel::ArraySize& size);

}  // namespace ui::core::detail

#endif  // UI_CORE_DETAIL_ERRORS_H
