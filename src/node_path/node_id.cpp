#include "ui/core/node_id.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <new>
#include <ostream>

#include "../common/hash_impl.h"
#include "krel/ustring.h"
#include "node_sep_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {

ustring::const_iterator find_node_sep(ustring::const_iterator first,
                                      ustring::const_iterator last) noexcept {
  const char16_t* const p = std::to_address(first);
  return first + (detail::find_node_sep(p, std::to_address(last)) - p);
}

ustring::const_iterator find_node_sep(const ustring& text) noexcept {
  return find_node_sep(text.cbegin(), text.cend());
}

ustring clean_white_space(const ustring& text) {
  ustring cleaned = text;
  detail::clean_spaces(cleaned.data(), cleaned.data() + cleaned.size());
  return cleaned;
}

bool is_node_sep_escaped(const ustring& text) noexcept {
  return find_node_sep(text) == text.cend();
}

bool is_node_id_head_char(const ustring& text) noexcept {
  return text.empty() || !is_node_sep(text.front());
}

bool is_node_id_tail_char(const ustring& text) noexcept {
  return text.empty() || !is_node_sep(text.back());
}

bool is_node_id(const ustring& text) noexcept {
  return !text.empty() && is_node_id_head_char(text) && is_node_id_tail_char(text) &&
         is_node_sep_escaped(text);
}

bool is_node_path(const ustring& text) noexcept {
  return detail::node_path_ends_ok(text.data(), text.size());
}

namespace detail {

std::variant<ustring, ErrorId> NodeIdCheck::operator()(const ustring& text) const {
  if (!is_node_id(text)) return ErrorId::InvalidNodeId;
  return clean_white_space(text);
}

}  // namespace detail

namespace {

ustring stored_or_throw(const ustring& text) {
  auto checked = detail::NodeIdCheck{}(text);
  if (auto* stored = std::get_if<ustring>(&checked)) return std::move(*stored);
  // The message carries the text as the caller gave it, before cleaning.
  detail::throw_error(ErrorId::InvalidNodeId, text);
}

}  // namespace

NodeId::NodeId(const ui::core::ustring& text) : rep_(krel::Cow<Rep>::make(stored_or_throw(text))) {
  assert(invariant_() && "NodeIdCheck accepted an invalid identifier");
}

NodeId::NodeId(Checked, ui::core::ustring&& stored)
    : rep_(krel::Cow<Rep>::make(std::move(stored))) {
  assert(invariant_() && "NodeIdCheck accepted an invalid identifier");
}

NodeId::NodeId(Checked, const char16_t* first, const char16_t* last, bool may_hold_space)
    : rep_(krel::Cow<Rep>::make(first, last)) {
  if (may_hold_space) {
    // The record is new and this handle its only holder, so it is written in
    // place before anyone else can see it.
    ui::core::ustring& text = rep_.write().text;
    detail::clean_spaces(text.data(), text.data() + text.size());
  }
  assert(invariant_() && "the parser gives only checked identifiers");
}

std::optional<NodeId> NodeId::make(const ui::core::ustring& text) {
  auto checked = detail::NodeIdCheck{}(text);
  auto* stored = std::get_if<ui::core::ustring>(&checked);
  if (stored == nullptr) return std::nullopt;
  return NodeId(Checked{}, std::move(*stored));
}

const ui::core::ustring& NodeId::moved_from_text() noexcept {
  static const ui::core::ustring empty;
  return empty;
}

bool NodeId::invariant_() const noexcept {
  return is_node_id(rep_.read().text);
}

std::size_t hash_value(const NodeId& id) noexcept {
  return detail::hash_units(id.ustring().data(), id.ustring().size());
}

std::ostream& operator<<(std::ostream& os, const NodeId& id) {
  return os << krel::ustring_to_local_encoded_string(id.ustring());
}

}  // namespace ui::core
