#include "ui/core/object_path_subscript.h"

#include <cassert>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>

#include <boost/numeric/conversion/cast.hpp>

#include "krel/ustring.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// krel::ArraySize stores size_t; the values are handed over as they are.
static_assert(std::is_same_v<unsigned long, std::size_t>);

// Reads one trimmed piece as a decimal value of 1 or more; nothing for any
// other piece.
std::optional<unsigned long> parse_value(const std::string& piece) {
  if (piece.empty()) return std::nullopt;
  // Beyond this bound, value * 10 no longer fits in 64 bits.
  constexpr unsigned long bound = 0x1999999999999999UL;
  constexpr unsigned long max = std::numeric_limits<unsigned long>::max();
  unsigned long value = 0;
  for (char c : piece) {
    if (c < '0' || c > '9') return std::nullopt;
    if (value > bound) return std::nullopt;
    // A checked conversion: a digit is never negative, so it cannot throw.
    const unsigned long digit = boost::numeric_cast<unsigned long>(static_cast<int>(c - '0'));
    if (value * 10 > max - digit) return std::nullopt;
    value = value * 10 + digit;
  }
  if (value == 0) return std::nullopt;  // subscripts are 1-based
  return value;
}

// The one parser behind the text constructor and make(): the values of a
// subscript text, or nothing when the text does not parse.
std::optional<std::vector<unsigned long>> parse_subscript(const ustring& text) {
  if (text.size() < 2 || text[0] != u'/' || text[1] != u'/') return std::nullopt;
  if (!krel::is_ascii_string(text)) return std::nullopt;
  std::string narrow;
  narrow.reserve(text.size() - 2);
  for (std::size_t i = 2; i < text.size(); ++i) narrow += static_cast<char>(text[i]);
  // Empty pieces are kept, so "//1,,2", "//1," and "//" are refused below.
  std::vector<unsigned long> values;
  for (const std::string& piece : krel::tokenize(narrow, ",")) {
    const std::optional<unsigned long> value = parse_value(krel::trim(piece));
    if (!value) return std::nullopt;
    values.push_back(*value);
  }
  return values;
}

krel::ArraySize to_array_size(const std::vector<unsigned long>& values) {
  return krel::ArraySize(values.data(), values.size());
}

}  // namespace

ObjectPathSubscript::ObjectPathSubscript()
    : rep_(krel::Cow<detail::ObjectPathSubscriptRep>::make(1, krel::ArraySize(1, 1))) {}

ObjectPathSubscript::ObjectPathSubscript(unsigned long count, krel::ArraySize subscripts)
    : rep_([&] {
        if (subscripts.numElements() == 0) {
          detail::throw_message(detail::invalid_object_path_subscript());
        }
        return krel::Cow<detail::ObjectPathSubscriptRep>::make(count, std::move(subscripts));
      }()) {
  assert(is_valid() && "no subscript value is 0");
}

ObjectPathSubscript::ObjectPathSubscript(const std::vector<unsigned long>& values)
    : ObjectPathSubscript(values.size(), to_array_size(values)) {}

ObjectPathSubscript::ObjectPathSubscript(const ustring& text)
    : ObjectPathSubscript([&] {
        std::optional<std::vector<unsigned long>> values = parse_subscript(text);
        if (!values) detail::throw_message(detail::invalid_object_path_subscript_string(text));
        return std::move(*values);
      }()) {}

std::optional<ObjectPathSubscript> ObjectPathSubscript::make(const ustring& text) {
  const std::optional<std::vector<unsigned long>> values = parse_subscript(text);
  if (!values) return std::nullopt;
  return ObjectPathSubscript(*values);
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
