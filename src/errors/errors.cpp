#include "ui/core/errors.h"

#include <array>
#include <cassert>

#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

constexpr std::string_view catalogue_family = "kalder:common:ui:core:kernel:";

constexpr std::array<ErrorInfo, 14> table{{
    {ErrorId::InvalidAccess, "access", "InvalidAccess", 1, true},
    {ErrorId::UnitConversionUnknown, "units", "UnitConversionUnknown", 0, false},
    {ErrorId::CannotCreateSource, "source", "CannotCreateSource", 1, true},
    {ErrorId::InvalidArrayArguments, "data_struct", "InvalidArrayArguments", 2, true},
    {ErrorId::InvalidNodeId, "path", "InvalidNodeId", 1, true},
    {ErrorId::InvalidNodePath, "path", "InvalidNodePath", 1, true},
    {ErrorId::InvalidNodePath1, "path", "InvalidNodePath1", 1, true},
    {ErrorId::InvalidObjectPath, "path", "InvalidObjectPath", 1, true},
    {ErrorId::InvalidObjectPathName, "path", "InvalidObjectPathName", 1, true},
    {ErrorId::InvalidObjectPathSubscript, "path", "InvalidObjectPathSubscript", 0, true},
    {ErrorId::InvalidObjectPathSubscriptString, "path", "InvalidObjectPathSubscriptString", 1,
     true},
    {ErrorId::NonScalarPath, "path", "NonScalarPath", 1, true},
    {ErrorId::InsufficientSubscriptDimensions, "path", "InsufficientSubscriptDimensions", 2, true},
    {ErrorId::SubscriptOutOfRange, "path", "SubscriptOutOfRange", 2, true},
}};

constexpr bool table_in_enum_order() {
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (static_cast<std::size_t>(table[i].id) != i) return false;
  }
  return true;
}
static_assert(table_in_enum_order(), "the message table must list ErrorId in order");

}  // namespace

std::span<const ErrorInfo> error_table() noexcept {
  return table;
}

const ErrorInfo& error_info(ErrorId id) noexcept {
  return table[static_cast<std::size_t>(id)];
}

std::string error_catalogue(ErrorId id) {
  std::string name(catalogue_family);
  name += error_info(id).area;
  return name;
}

bool is_error(const krel::MessageException& e, ErrorId id) noexcept {
  const auto& msg = e.message().id();
  const ErrorInfo& info = error_info(id);
  return msg.key == info.key &&
         msg.catalogue.size() == catalogue_family.size() + info.area.size() &&
         msg.catalogue.starts_with(catalogue_family) && msg.catalogue.ends_with(info.area);
}

namespace detail {
namespace {

MsgId with_text(ErrorId id, const ustring& text) {
  MsgId msg = message_id(id);
  msg.arguments.emplace_back(std::in_place_index<2>, text);
  return msg;
}

MsgId with_texts(ErrorId id, const ustring& first, const ustring& second) {
  MsgId msg = message_id(id);
  msg.arguments.emplace_back(std::in_place_index<2>, first);
  msg.arguments.emplace_back(std::in_place_index<2>, second);
  return msg;
}

}  // namespace

void throw_message(MsgId id) {
  // The identifier, message and exception are built in that order; if building
  // one fails, those built before it are destroyed as the failure unwinds.
  krel::Message message(std::move(id));
  throw krel::MessageException(message);
}

MsgId message_id(ErrorId id) {
  MsgId msg;
  const ErrorInfo& info = error_info(id);
  msg.arguments.reserve(info.arguments);
  msg.catalogue = error_catalogue(id);
  msg.key = std::string(info.key);
  return msg;
}

MsgId invalid_access(const ustring& text) {
  return with_text(ErrorId::InvalidAccess, text);
}
MsgId unit_conversion_unknown() {
  return message_id(ErrorId::UnitConversionUnknown);
}
MsgId cannot_create_source(const ustring& kind) {
  return with_text(ErrorId::CannotCreateSource, kind);
}
MsgId invalid_array_arguments(std::uint64_t count, const krel::ArraySize& size) {
  MsgId msg = message_id(ErrorId::InvalidArrayArguments);
  msg.arguments.emplace_back(std::in_place_index<0>, count);
  msg.arguments.emplace_back(std::in_place_index<2>, krel::to_user_string(size));
  return msg;
}
MsgId invalid_node_id(const ustring& text) {
  return with_text(ErrorId::InvalidNodeId, text);
}
MsgId invalid_node_path(const ustring& text) {
  return with_text(ErrorId::InvalidNodePath, text);
}
MsgId invalid_node_path1(const ustring& path_text) {
  return with_text(ErrorId::InvalidNodePath1, path_text);
}
MsgId invalid_object_path(const ustring& text) {
  return with_text(ErrorId::InvalidObjectPath, text);
}
MsgId invalid_object_path_name(const ustring& text) {
  return with_text(ErrorId::InvalidObjectPathName, text);
}
MsgId invalid_object_path_subscript() {
  return message_id(ErrorId::InvalidObjectPathSubscript);
}
MsgId invalid_object_path_subscript_string(const ustring& text) {
  return with_text(ErrorId::InvalidObjectPathSubscriptString, text);
}
MsgId non_scalar_path(const ustring& path_text) {
  return with_text(ErrorId::NonScalarPath, path_text);
}
MsgId insufficient_subscript_dimensions(const ustring& subscript_text,
                                        const krel::ArraySize& size) {
  return with_texts(ErrorId::InsufficientSubscriptDimensions, subscript_text,
                    krel::to_user_string(size));
}
MsgId subscript_out_of_range(const ustring& subscript_text, const krel::ArraySize& size) {
  return with_texts(ErrorId::SubscriptOutOfRange, subscript_text, krel::to_user_string(size));
}

}  // namespace detail
}  // namespace ui::core
