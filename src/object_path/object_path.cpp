#include "ui/core/object_path.h"

#include <optional>
#include <ostream>
#include <string_view>

#include "krel/ustring.h"
#include "slash_runs_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// The end of the segment that starts at p: the position of the "/" that
// separates it from the next segment, or the text's length. Runs of "/" are
// read as the grammar in the header says: an even run that does not reach the
// end belongs to the segment.
std::size_t segment_end(std::u16string_view text, std::size_t p) noexcept {
  const std::size_t n = text.size();
  std::size_t q = p;
  for (;;) {
    const std::size_t i = text.find(u'/', q);
    if (i == std::u16string_view::npos) return n;
    if (i + 1 == n) return i;
    const std::size_t j = detail::slash_run_end(text, i);
    if (j == n || (j - i) % 2 != 0) return i;
    q = j;
  }
}

// The loop shared by the partial parsers: cuts segments, turns each into an
// element with `make`, and stops at the first segment that gives none. With
// `forbid_adjacent_subscripts`, a subscript right after a subscript throws
// InvalidObjectPath with the whole text.
template <class Make>
std::pair<ObjectPath, ustring> parse_partial(const ustring& text, Make make,
                                             bool forbid_adjacent_subscripts) {
  ObjectPath path;
  const std::u16string_view view(text);
  std::size_t p = 0;
  while (p < view.size()) {
    const std::size_t e = segment_end(view, p);
    std::optional<ObjectPathElement> element = make(ustring(view.substr(p, e - p)));
    if (!element) return {std::move(path), ustring(view.substr(p))};
    if (forbid_adjacent_subscripts && element->id() == ObjectPathElement::subscript_kind &&
        !path.empty() && path.back().id() == ObjectPathElement::subscript_kind) {
      detail::throw_message(detail::invalid_object_path(text));
    }
    path.push_back(*element);
    // Exactly one "/" is consumed as the separator.
    p = e + 1;
  }
  return {std::move(path), ustring()};
}

std::optional<ObjectPathElement> make_name_element(const ustring& segment) {
  std::optional<ObjectPathName> name = ObjectPathName::make(segment);
  if (!name) return std::nullopt;
  return ObjectPathElement(std::move(*name));
}

}  // namespace

ObjectPath& ObjectPath::operator/=(const ObjectPath& other) {
  elements_.append(other.elements_);
  return *this;
}

ObjectPath::operator ustring() const {
  ustring text;
  bool first = true;
  for (const ObjectPathElement& e : *this) {
    if (!first) text += u'/';
    first = false;
    text += to_string(e);
  }
  return text;
}

ObjectPath operator/(const ObjectPath& a, const ObjectPath& b) {
  ObjectPath joined = a;  // shares a's block until the append below copies it
  joined /= b;
  return joined;
}

std::ostream& operator<<(std::ostream& os, const ObjectPath& path) {
  return os << krel::ustring_to_local_encoded_string(ustring(path));
}

std::pair<ObjectPath, ustring> to_partial_path(const ustring& text) {
  return parse_partial(text, make_element, true);
}

ObjectPath to_object_path(const ustring& text) {
  auto [path, rest] = to_partial_path(text);
  if (!rest.empty()) detail::throw_message(detail::invalid_object_path(text));
  return path;
}

std::pair<ObjectPath, ustring> to_partial_name_path(const ustring& text) {
  return parse_partial(text, make_name_element, false);
}

ObjectPath to_name_path(const ustring& text) {
  auto [path, rest] = to_partial_name_path(text);
  if (!rest.empty()) detail::throw_message(detail::invalid_node_path(text));
  return path;
}

}  // namespace ui::core
