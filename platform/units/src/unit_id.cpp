#include "units2/core/unit_id.h"

#include <boost/container_hash/hash.hpp>
#include <cassert>

#include "messages.h"

namespace units2::core {
namespace detail {
namespace {

constexpr bool is_letter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

}  // namespace

bool is_unit_id_text(std::string_view text) noexcept {
  if (text.empty() || !(is_letter(text.front()) || text.front() == '_')) return false;
  for (char c : text) {
    if (!is_letter(c) && !is_digit(c) && c != '_') return false;
  }
  return true;
}

std::string CheckUnitId::operator()(const std::string& text) const {
  if (!is_unit_id_text(text)) throw_error(MessageId::InvalidUnitId, text);
  return text;
}

}  // namespace detail

UnitId::UnitId(const char* data, std::size_t size) : text_(data, size) {
  assert(invariant() && "UnitId built from text that is not a unit name; check it first");
}

std::optional<UnitId> UnitId::make(std::string_view text) {
  if (!detail::is_unit_id_text(text)) return std::nullopt;
  return UnitId(text);
}

bool UnitId::invariant() const noexcept {
  return detail::is_unit_id_text(view());
}

std::size_t hash_value(const UnitId& id) noexcept {
  return boost::hash_range(id.data(), id.data() + id.size());
}

}  // namespace units2::core
