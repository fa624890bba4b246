#include "ui/core/object_path.h"

#include <algorithm>
#include <cassert>
#include <optional>
#include <ostream>

#include "../common/hash_impl.h"
#include "krel/ustring.h"
#include "object_path_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {

namespace detail {

// The parsers' access to a path's block of elements.
struct ObjectPathBuilder {
  static void reserve(ObjectPath& path, std::size_t n) { path.elements_.reserve(n); }
  static void push_back(ObjectPath& path, ObjectPathElement&& e) {
    path.elements_.push_back(std::move(e));
  }
};

}  // namespace detail

namespace {

// Which elements a parse accepts.
enum class Accept { names_and_subscripts, names };

// The loop shared by the parsers: turns each segment into an element, and
// stops at the first segment that gives none. Returns the position of that
// segment, or the text's length when all of it parsed. With
// names_and_subscripts, a subscript right after a subscript throws
// InvalidObjectPath with the whole text.
//
// A segment that is not empty and does not begin with "/" always meets the
// name rule: the separators leave only even runs of "/" inside a segment, none
// at its end. So a name is not checked again, only copied.
template <Accept accept>
std::size_t parse_into(ObjectPath& path, const ustring& text) {
  const char16_t* const begin = text.data();
  const char16_t* const end = begin + text.size();
  if (begin == end) return 0;
  // The block of elements is allocated once: one segment more than there are
  // separators, at most (a separator at the very end starts none).
  detail::ObjectPathBuilder::reserve(path, detail::count_separators(begin, end) + 1);
  detail::SeparatorScanner separators(begin, end);
  bool after_subscript = false;
  const char16_t* p = begin;
  for (;;) {
    bool reaches_end = false;
    const char16_t* const separator = separators.next(reaches_end);
    const bool last = separator == nullptr;
    const char16_t* const e = last ? end : separator;
    const auto n = static_cast<std::size_t>(e - p);
    if (n == 0) break;  // neither a name nor a subscript
    if (*p != u'/') {
      assert(detail::meets_name_rule(p, n) && "the separators leave valid names");
      detail::ObjectPathBuilder::push_back(path,
                                           ObjectPathElement(detail::make_checked_name(p, n)));
      after_subscript = false;
    } else {
      if constexpr (accept == Accept::names) break;
      std::optional<ObjectPathSubscript> subscript = detail::parse_subscript(p, n);
      if (!subscript) break;
      if (after_subscript) detail::throw_error(ErrorId::InvalidObjectPath, text);
      detail::ObjectPathBuilder::push_back(path, ObjectPathElement(std::move(*subscript)));
      after_subscript = true;
    }
    if (last) return text.size();
    // Exactly one "/" is consumed as the separator.
    p = e + 1;
    if (reaches_end) {
      // After the first "/" of a run that reaches the end, what is left is
      // nothing (a single trailing "/" is dropped) or only "/": an empty
      // segment, which stops the parse.
      break;
    }
  }
  return static_cast<std::size_t>(p - begin);
}

template <Accept accept>
std::pair<ObjectPath, ustring> parse_partial(const ustring& text) {
  ObjectPath path;
  const std::size_t stop = parse_into<accept>(path, text);
  return {std::move(path), text.substr(stop)};
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

std::weak_ordering operator<=>(const ObjectPath& a, const ObjectPath& b) {
  if (a.shares_storage_with(b)) return std::weak_ordering::equivalent;
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i != n; ++i) {
    if (const int c = compare(a[i], b[i]); c != 0) {
      return c == 1 ? std::weak_ordering::less : std::weak_ordering::greater;
    }
  }
  return a.size() <=> b.size();
}

std::size_t hash_value(const ObjectPath& path) {
  return detail::combine_all(path.begin(), path.end(),
                             [](const ObjectPathElement& e) { return hash_value(e); });
}

std::ostream& operator<<(std::ostream& os, const ObjectPath& path) {
  return os << krel::ustring_to_local_encoded_string(ustring(path));
}

std::pair<ObjectPath, ustring> to_partial_path(const ustring& text) {
  return parse_partial<Accept::names_and_subscripts>(text);
}

ObjectPath to_object_path(const ustring& text) {
  ObjectPath path;
  if (parse_into<Accept::names_and_subscripts>(path, text) != text.size()) {
    detail::throw_error(ErrorId::InvalidObjectPath, text);
  }
  return path;
}

std::pair<ObjectPath, ustring> to_partial_name_path(const ustring& text) {
  return parse_partial<Accept::names>(text);
}

ObjectPath to_name_path(const ustring& text) {
  ObjectPath path;
  if (parse_into<Accept::names>(path, text) != text.size()) {
    detail::throw_error(ErrorId::InvalidNodePath, text);
  }
  return path;
}

}  // namespace ui::core
