#include "ui/core/errors.h"

#include <array>
#include <cassert>

#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

constexpr std::string_view catalogue_family = "kalder:common:ui:core:kernel:";

// The public rows of the message table.
constexpr std::array<ErrorInfo, detail::error_rows.size()> table = [] {
  std::array<ErrorInfo, detail::error_rows.size()> infos{};
  for (std::size_t i = 0; i < infos.size(); ++i) {
    const detail::ErrorRow& row = detail::error_rows[i];
    infos[i] = ErrorInfo{row.id, row.area, row.key, row.arguments, row.thrown};
  }
  return infos;
}();

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

MsgId KernelMessages::message_id(ErrorId id) {
  MsgId msg;
  const ErrorInfo& info = error_info(id);
  msg.arguments.reserve(info.arguments);
  msg.catalogue = error_catalogue(id);
  msg.key = std::string(info.key);
  return msg;
}

void KernelMessages::append_argument(MsgId& msg, std::uint64_t count) {
  msg.arguments.emplace_back(std::in_place_type<std::uint64_t>, count);
}

void KernelMessages::append_argument(MsgId& msg, const ustring& text) {
  msg.arguments.emplace_back(std::in_place_type<std::u16string>, text);
}

void KernelMessages::append_argument(MsgId& msg, const krel::ArraySize& size) {
  append_argument(msg, krel::to_user_string(size));
}

}  // namespace detail
}  // namespace ui::core
