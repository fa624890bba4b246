#include "ui/core/object_path_name.h"

#include <algorithm>
#include <cassert>
#include <ostream>

#include "krel/ustring.h"
#include "object_path_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// The one parser behind the constructor, the check object and make(): the
// stored form of a valid name, made from the text in one copy.
krel::BasicTableString<char16_t> checked_or_throw(const ustring& text) {
  if (!detail::meets_name_rule(text.data(), text.size())) {
    // The message carries the text as the caller gave it, before cleaning.
    detail::throw_error(ErrorId::InvalidObjectPathName, text);
  }
  // Cleaning replaces white space one for one and never touches "/", so the
  // cleaned text meets the rule as well.
  return detail::cleaned_name_text(text.data(), text.size());
}

}  // namespace

namespace detail {

krel::BasicTableString<char16_t> ObjectPathNameCheck::operator()(const ustring& text) const {
  return checked_or_throw(text);
}

}  // namespace detail

ObjectPathName::ObjectPathName(const ustring& text) : text_(checked_or_throw(text)) {
  assert(is_valid() && "a name holds checked, cleaned text");
}

std::optional<ObjectPathName> ObjectPathName::make(const ustring& text) {
  if (!detail::meets_name_rule(text.data(), text.size())) return std::nullopt;
  return detail::make_checked_name(text.data(), text.size());
}

bool ObjectPathName::is_valid() const noexcept {
  return detail::meets_name_rule(text_.data(), text_.size()) &&
         std::none_of(text_.begin(), text_.end(),
                      [](char16_t c) { return c != u' ' && krel::is_posix_space(c); });
}

std::ostream& operator<<(std::ostream& os, const ObjectPathName& name) {
  return os << krel::ustring_to_utf8_string(ustring(name.text()));
}

}  // namespace ui::core
