// fuzz/object_path_subscript.cpp - the subscripts of object paths
//
// The subscript grammar is parsed here on its own: "//", then pieces split at
// every ",", each trimmed of POSIX white space and made only of the digits
// 0-9, with a value from 1 to 2^64 - 1; every code unit ASCII. Properties:
// - the text constructor and make accept exactly those texts; the constructor
//   refuses the others with InvalidObjectPathSubscriptString and the text;
// - an accepted subscript holds the values in order: size(), operator() (1
//   past the written ones) and the vector form agree with them;
// - the text form is "//" and the values joined by ", ", it parses back to an
//   equal subscript, and the vector constructor builds an equivalent one;
// - operator<< writes the text form in the local encoding.

#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/errors.h"
#include "ui/core/object_path_subscript.h"

namespace {

using fuzz::ustring;
using ui::core::ErrorId;
using ui::core::ObjectPathSubscript;
using Values = std::vector<unsigned long>;

std::optional<Values> reference_parse(const ustring& text) {
  if (text.size() < 2 || text[0] != u'/' || text[1] != u'/') return std::nullopt;
  for (const char16_t c : text) {
    if (c >= 0x80) return std::nullopt;
  }
  Values values;
  std::size_t start = 2;
  for (;;) {
    std::size_t end = text.find(u',', start);
    if (end == ustring::npos) end = text.size();
    std::size_t first = start;
    std::size_t last = end;
    while (first < last && fuzz::is_space_unit(text[first])) ++first;
    while (last > first && fuzz::is_space_unit(text[last - 1])) --last;
    if (first == last) return std::nullopt;
    unsigned long value = 0;
    for (std::size_t i = first; i < last; ++i) {
      if (text[i] < u'0' || text[i] > u'9') return std::nullopt;
      const unsigned long digit = text[i] - u'0';
      if (value > (~0UL - digit) / 10) return std::nullopt;
      value = value * 10 + digit;
    }
    if (value == 0) return std::nullopt;
    values.push_back(value);
    if (end == text.size()) return values;
    start = end + 1;
  }
}

ustring text_form(const Values& values) {
  std::string narrow = "//";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) narrow += ", ";
    narrow += std::to_string(values[i]);
  }
  return fuzz::u(narrow);
}

void check(const ustring& text) {
  const std::optional<Values> expected = reference_parse(text);
  std::optional<ObjectPathSubscript> built;
  const auto thrown = fuzz::message_thrown_by([&] { built.emplace(text); }, text);
  const std::optional<ObjectPathSubscript> made = ObjectPathSubscript::make(text);
  fuzz::require(built.has_value() == expected.has_value(),
                "the text constructor follows the subscript grammar", text);
  fuzz::require(made.has_value() == built.has_value(),
                "make accepts exactly the texts the constructor accepts", text);
  if (!expected) {
    fuzz::require(ui::core::is_error(*thrown, ErrorId::InvalidObjectPathSubscriptString) &&
                      fuzz::has_text_argument(*thrown, text),
                  "a refused subscript throws InvalidObjectPathSubscriptString with the text",
                  text);
    return;
  }
  const Values& values = *expected;
  fuzz::require(built->size() == values.size(), "size() is the number of values written", text);
  fuzz::require(Values(*built) == values && Values(*made) == values,
                "the vector form holds the values in order", text);
  for (std::size_t k = 0; k <= values.size(); ++k) {
    fuzz::require((*built)(k) == (k < values.size() ? values[k] : 1UL),
                  "operator() reads each value, and 1 past them", text);
  }
  const ustring form = *built;
  fuzz::require(form == text_form(values), "the text form joins the values with \", \"", text);
  const ObjectPathSubscript again(form);
  fuzz::require(
      Values(again) == values && again.equivalent(*built) && again.size() == values.size(),
      "the text form parses back to an equal subscript", text);
  fuzz::require(ObjectPathSubscript(values).equivalent(*built),
                "the vector constructor builds an equivalent subscript", text);
  std::ostringstream out;
  out << *built;
  fuzz::require(out.str() == krel::ustring_to_local_encoded_string(form),
                "operator<< writes the text form in the local encoding", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) check(text);
  return 0;
}
