#include "ui/core/object_path_name.h"

#include <algorithm>
#include <cassert>
#include <ostream>
#include <string_view>
#include <variant>

#include "krel/ustring.h"
#include "slash_runs_impl.h"
#include "ui/core/detail/errors.h"
#include "ui/core/node_id.h"

namespace ui::core {
namespace {

// The name rule on the code units of `text`.
bool meets_name_rule(std::u16string_view text) noexcept {
  const std::size_t n = text.size();
  if (n == 0 || text.front() == u'/' || text.back() == u'/') return false;
  // The first unit is not "/", so the search for runs starts at position 1.
  std::size_t i = text.find(u'/', 1);
  while (i != std::u16string_view::npos) {
    const std::size_t j = detail::slash_run_end(text, i);
    if ((j - i) % 2 != 0) return false;
    i = text.find(u'/', j);
  }
  return true;
}

// The one parser behind the constructor, the check object and make(): the
// stored form of a name, or why the text is refused.
std::variant<krel::BasicTableString<char16_t>, ErrorId> check_name(const ustring& text) {
  if (!meets_name_rule(text)) return ErrorId::InvalidObjectPathName;
  // Cleaning replaces white space one for one and never touches "/", so the
  // cleaned text meets the rule as well.
  return krel::BasicTableString<char16_t>(clean_white_space(text));
}

}  // namespace

namespace detail {

krel::BasicTableString<char16_t> ObjectPathNameCheck::operator()(const ustring& text) const {
  auto checked = check_name(text);
  if (auto* stored = std::get_if<krel::BasicTableString<char16_t>>(&checked)) {
    return std::move(*stored);
  }
  throw_message(invalid_object_path_name(text));
}

}  // namespace detail

ObjectPathName::ObjectPathName(const ustring& text) : text_(detail::ObjectPathNameCheck{}(text)) {
  assert(is_valid() && "a name holds checked, cleaned text");
}

std::optional<ObjectPathName> ObjectPathName::make(const ustring& text) {
  auto checked = check_name(text);
  const auto* stored = std::get_if<krel::BasicTableString<char16_t>>(&checked);
  if (stored == nullptr) return std::nullopt;
  // The name is built from the cleaned text, which runs the check once more;
  // that second check always passes.
  return ObjectPathName(ustring(*stored));
}

bool ObjectPathName::is_valid() const noexcept {
  return meets_name_rule(text_.view()) && std::none_of(text_.begin(), text_.end(), [](char16_t c) {
           return c != u' ' && krel::is_posix_space(c);
         });
}

std::ostream& operator<<(std::ostream& os, const ObjectPathName& name) {
  return os << krel::ustring_to_utf8_string(ustring(name.text()));
}

}  // namespace ui::core
