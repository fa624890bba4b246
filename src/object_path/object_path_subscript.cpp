#include "ui/core/object_path_subscript.h"

#include <algorithm>
#include <cassert>
#include <ostream>
#include <string>
#include <type_traits>

#include "krel/ustring.h"
#include "object_path_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// krel::ArraySize stores size_t; the values are handed over as they are.
static_assert(std::is_same_v<unsigned long, std::size_t>);

krel::ArraySize to_array_size(const std::vector<unsigned long>& values) {
  return krel::ArraySize(values.data(), values.size());
}

// True when some stored value is 0: the product of the values is 0 exactly
// then, so this is the invariant's test without the product.
bool has_zero(const krel::ArraySize& values) noexcept {
  return std::find(values.begin(), values.end(), std::size_t{0}) != values.end();
}

}  // namespace

ObjectPathSubscript::ObjectPathSubscript()
    : rep_(krel::Cow<detail::ObjectPathSubscriptRep>::make(std::size_t{1}, krel::ArraySize(1, 1))) {
}

ObjectPathSubscript::ObjectPathSubscript(unsigned long count, krel::ArraySize subscripts)
    : rep_([&] {
        if (has_zero(subscripts)) {
          detail::throw_error(ErrorId::InvalidObjectPathSubscript);
        }
        return krel::Cow<detail::ObjectPathSubscriptRep>::make(count, std::move(subscripts));
      }()) {
  assert(is_valid() && "no subscript value is 0");
}

ObjectPathSubscript::ObjectPathSubscript(const std::vector<unsigned long>& values)
    : ObjectPathSubscript(values.size(), to_array_size(values)) {}

ObjectPathSubscript::ObjectPathSubscript(const ustring& text)
    : ObjectPathSubscript([&] {
        std::optional<ObjectPathSubscript> parsed =
            detail::parse_subscript(text.data(), text.size());
        if (!parsed) detail::throw_error(ErrorId::InvalidObjectPathSubscriptString, text);
        return std::move(*parsed);
      }()) {}

std::optional<ObjectPathSubscript> ObjectPathSubscript::make(const ustring& text) {
  return detail::parse_subscript(text.data(), text.size());
}

ObjectPathSubscript::operator std::vector<unsigned long>() const {
  const detail::ObjectPathSubscriptRep& rep = rep_.read();
  std::vector<unsigned long> values;
  values.reserve(rep.size);
  for (std::size_t k = 0; k < rep.size; ++k) values.push_back(rep.subscripts(k));
  return values;
}

ObjectPathSubscript::operator ustring() const {
  ustring text = u"//";
  bool first = true;
  for (unsigned long value : static_cast<std::vector<unsigned long>>(*this)) {
    if (!first) text += u", ";
    first = false;
    for (char c : std::to_string(value)) text += static_cast<char16_t>(c);
  }
  return text;
}

bool ObjectPathSubscript::equivalent(const ObjectPathSubscript& other) const noexcept {
  return subscripts() == other.subscripts();
}

bool ObjectPathSubscript::is_valid() const noexcept {
  return rep_.read().subscripts.numElements() != 0;
}

std::ostream& operator<<(std::ostream& os, const ObjectPathSubscript& subscript) {
  return os << krel::ustring_to_local_encoded_string(ustring(subscript));
}

}  // namespace ui::core
