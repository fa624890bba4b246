// fuzz/object_path_element.cpp - elements of object paths and their order
//
// The input is cut at line feeds into up to six segment texts. Properties:
// - make_element tries a text that starts with "/" only as a subscript and
//   any other text only as a name, and agrees with their make twins;
// - an element's text form makes an equal element again;
// - compare, operator==, equal_ignore_annotation and hash_value agree: compare
//   is 0 exactly for equal elements, equal elements hash equal, swapping the
//   arguments swaps 1 and 2, the order is transitive, and it is the order
//   written out here (subscripts first; names by code unit; subscripts by
//   count, then values);
// - hash_value is the hash_combine chain written out here;
// - incorporate_data feeds the byte stream written out here (it shows the
//   stored positions, so the equal subscripts //1 and the default one, which
//   stores 1, 1, feed different bytes);
// - copies, assignment, swap and strip_annotation_inplace keep the value and
//   the hash.

#include <cstdint>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "krel/array_size.h"
#include "krel/ustring.h"
#include "ui/core/object_path_element.h"
#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"

namespace {

using fuzz::ustring;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathName;
using ui::core::ObjectPathSubscript;

int reference_compare(const ObjectPathElement& a, const ObjectPathElement& b) {
  if (a.id() != b.id()) return a.id() < b.id() ? 1 : 2;
  if (a.as_name() != nullptr) {
    const ustring x = a.as_name()->text();
    const ustring y = b.as_name()->text();
    return x == y ? 0 : (x < y ? 1 : 2);  // char16_t compares as unsigned
  }
  const ObjectPathSubscript& x = *a.as_subscript();
  const ObjectPathSubscript& y = *b.as_subscript();
  if (x.size() != y.size()) return x.size() < y.size() ? 1 : 2;
  const std::size_t n = std::max(x.subscripts().size(), y.subscripts().size());
  for (std::size_t k = 0; k < n; ++k) {
    if (x(k) != y(k)) return x(k) < y(k) ? 1 : 2;
  }
  return 0;
}

// boost::hash_combine for 64-bit size_t.
std::uint64_t combine(std::uint64_t seed, std::uint64_t value) {
  std::uint64_t x = seed + 0x9e3779b9 + value;
  x ^= x >> 32;
  x *= 0xe9846af9b1a615dULL;
  x ^= x >> 32;
  x *= 0xe9846af9b1a615dULL;
  x ^= x >> 28;
  return x;
}

std::uint64_t reference_hash(const ObjectPathElement& e) {
  std::uint64_t h = 0;
  if (const ObjectPathName* name = e.as_name()) {
    for (const char16_t c : name->text()) h = combine(h, c);
  } else {
    const ObjectPathSubscript& s = *e.as_subscript();
    h = combine(combine(0, s.size()), krel::hash_value(s.subscripts()));
  }
  return combine(h, e.id());
}

void put(std::string& out, std::uint64_t value, int bytes) {
  for (int i = bytes - 1; i >= 0; --i) out.push_back(static_cast<char>(value >> (8 * i)));
}

std::string reference_bytes(const ObjectPathElement& e) {
  std::string out;
  put(out, e.id(), 8);
  if (const ObjectPathName* name = e.as_name()) {
    for (const char16_t c : name->text()) put(out, c, 2);
  } else {
    const ObjectPathSubscript& s = *e.as_subscript();
    put(out, s.size(), 8);
    put(out, s.subscripts().size(), 8);
    for (const std::size_t v : s.subscripts()) put(out, v, 8);
  }
  return out;
}

std::string fed_bytes(const ObjectPathElement& e) {
  std::string out;
  std::function<void(const char*, unsigned long)> sink = [&](const char* p, unsigned long n) {
    out.append(p, n);
  };
  ui::core::incorporate_data(sink, e);
  return out;
}

std::optional<ObjectPathElement> check_make(const ustring& text) {
  const std::optional<ObjectPathElement> e = ui::core::make_element(text);
  if (!text.empty() && text[0] == u'/') {
    const auto sub = ObjectPathSubscript::make(text);
    fuzz::require(e.has_value() == sub.has_value() && (!e || e->id() == 0),
                  "a text starting with '/' is tried as a subscript only", text);
  } else {
    const auto name = ObjectPathName::make(text);
    fuzz::require(e.has_value() == name.has_value() && (!e || e->id() == 1),
                  "any other text is tried as a name only", text);
  }
  if (!e) return e;
  const ustring form = ui::core::to_string(*e);
  const auto again = ui::core::make_element(form);
  fuzz::require(again.has_value() && *again == *e && ui::core::compare(*again, *e) == 0 &&
                    ui::core::hash_value(*again) == ui::core::hash_value(*e),
                "the text form makes an equal element", text);
  fuzz::require(fed_bytes(*e) == reference_bytes(*e), "incorporate_data feeds the digest layout",
                text);
  fuzz::require(ui::core::hash_value(*e) == reference_hash(*e),
                "hash_value combines the content hash and the kind", text);
  std::ostringstream out;
  out << *e;
  fuzz::require(out.str() == krel::ustring_to_local_encoded_string(form),
                "operator<< writes the text form in the local encoding", text);

  const std::size_t hash = ui::core::hash_value(*e);
  ObjectPathElement copy = *e;
  ObjectPathElement assigned;
  assigned = copy;
  ObjectPathElement moved = std::move(copy);
  ui::core::strip_annotation_inplace(assigned);
  fuzz::require(assigned == *e && moved == *e && ui::core::hash_value(assigned) == hash &&
                    ui::core::hash_value(moved) == hash,
                "copy, move, assignment and strip_annotation_inplace keep value and hash", text);
  ObjectPathElement other;
  other.swap(assigned);
  fuzz::require(other == *e && assigned == ObjectPathElement(), "swap exchanges the values", text);
  return e;
}

void check_pair(const ObjectPathElement& a, const ObjectPathElement& b, const ustring& text) {
  const int ab = ui::core::compare(a, b);
  const int ba = ui::core::compare(b, a);
  fuzz::require(ab == reference_compare(a, b), "compare follows the element order", text);
  fuzz::require((ab == 0 && ba == 0) || (ab == 1 && ba == 2) || (ab == 2 && ba == 1),
                "swapping the arguments swaps the answer", text);
  const bool equal = a == b;
  fuzz::require(equal == (ab == 0), "operator== agrees with compare", text);
  fuzz::require(ui::core::equal_ignore_annotation(a, b) == equal,
                "equal_ignore_annotation agrees with operator==", text);
  if (equal) {
    fuzz::require(ui::core::hash_value(a) == ui::core::hash_value(b), "equal elements hash equal",
                  text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) {
    std::vector<ObjectPathElement> elements;
    for (const ustring& piece : fuzz::pieces_of(text, 6)) {
      if (auto e = check_make(piece)) elements.push_back(*e);
    }
    // Subscripts that differ only in trailing ones, and the default element.
    for (std::size_t i = 0, n = elements.size(); i < n; ++i) {
      if (elements[i].as_subscript() == nullptr) continue;
      const ObjectPathSubscript s = *elements[i].as_subscript();  // emplace_back moves elements
      std::vector<unsigned long> longer(s);
      longer.push_back(1);
      elements.emplace_back(ObjectPathSubscript(longer));
      elements.emplace_back(ObjectPathSubscript(s.size(), s.subscripts()));
    }
    elements.emplace_back();
    for (const auto& a : elements) {
      for (const auto& b : elements) {
        check_pair(a, b, text);
        for (const auto& c : elements) {
          const int ab = ui::core::compare(a, b);
          if (ab != 0 && ab == ui::core::compare(b, c)) {
            fuzz::require(ui::core::compare(a, c) == ab, "the order is transitive", text);
          }
        }
      }
    }
  }
  return 0;
}
