/// \file ui/core/detail/errors.h
/// Building and throwing the kernel's messages; internal to the kernel.
///
/// Internal to the kernel: do not include this file directly. There is one
/// routine per message that returns its filled identifier, and one throw helper
/// that wraps an identifier in a krel::Message and throws it as
/// krel::MessageException:
///
/// ```
/// detail::throw_message(detail::invalid_node_path(text));
/// ```

#ifndef UI_CORE_DETAIL_ERRORS_H
#define UI_CORE_DETAIL_ERRORS_H

#include <cstdint>

#include "krel/array_size.h"
#include "krel/message.h"
#include "resource_core/base_msg_id.h"
#include "ui/core/errors.h"

namespace ui::core::detail {

/// A message identifier: catalogue, key and the message's arguments.
using MsgId = resource_core::BaseMsgID;

/// Throws krel::MessageException carrying `id`.
[[noreturn]] void throw_message(MsgId id);

/// The identifier of `id`'s message with no arguments, room reserved for
/// exactly the arguments the message carries. The routines below fill it.
[[nodiscard]] MsgId message_id(ErrorId id);

// One routine per message. Each text argument is stored as a fresh copy.
/// InvalidAccess, carrying the refused `text`.
[[nodiscard]] MsgId invalid_access(const ustring& text);
/// UnitConversionUnknown, which has no arguments.
[[nodiscard]] MsgId unit_conversion_unknown();
/// CannotCreateSource, carrying the `kind` of key, such as "krel::Location".
[[nodiscard]] MsgId cannot_create_source(const ustring& kind);
/// InvalidArrayArguments, carrying the element `count` and the user text of `size`.
[[nodiscard]] MsgId invalid_array_arguments(std::uint64_t count, const krel::ArraySize& size);
/// InvalidNodeId, carrying the refused `text`.
[[nodiscard]] MsgId invalid_node_id(const ustring& text);
/// InvalidNodePath, carrying the refused `text`.
[[nodiscard]] MsgId invalid_node_path(const ustring& text);
/// InvalidNodePath1, carrying the text form of the empty path.
[[nodiscard]] MsgId invalid_node_path1(const ustring& path_text);
/// InvalidObjectPath, carrying the refused `text`.
[[nodiscard]] MsgId invalid_object_path(const ustring& text);
/// InvalidObjectPathName, carrying the refused `text`.
[[nodiscard]] MsgId invalid_object_path_name(const ustring& text);
/// InvalidObjectPathSubscript, which has no arguments.
[[nodiscard]] MsgId invalid_object_path_subscript();
/// InvalidObjectPathSubscriptString, carrying the refused `text`.
[[nodiscard]] MsgId invalid_object_path_subscript_string(const ustring& text);
/// NonScalarPath, carrying the user text of the path that holds a step that is not scalar.
[[nodiscard]] MsgId non_scalar_path(const ustring& path_text);
/// InsufficientSubscriptDimensions, carrying the subscript's text and the user text of
/// `size`.
[[nodiscard]] MsgId insufficient_subscript_dimensions(const ustring& subscript_text,
                                                      const krel::ArraySize& size);
/// SubscriptOutOfRange, carrying the subscript's text and the user text of `size`.
[[nodiscard]] MsgId subscript_out_of_range(const ustring& subscript_text,
                                           const krel::ArraySize& size);

}  // namespace ui::core::detail

#endif  // UI_CORE_DETAIL_ERRORS_H
