// fuzz/escape_xml.cpp - escaping text for XML
//
// Properties of escape_xml(text):
// - the result holds none of < > " ' unescaped, and every & in it starts one
//   of the five entities &amp; &apos; &quot; &gt; &lt;;
// - replacing the entities back (left to right) gives the input exactly, so
//   nothing is lost or added: other code units, lone surrogates included, are
//   copied unchanged;
// - text without any of the five characters comes back equal, and escaping
//   is not idempotent on text that holds one (an ampersand is always escaped).

#include <array>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/text_utils.h"

namespace {

using fuzz::ustring;

struct Entity {
  char16_t unit;
  std::u16string_view text;
};
constexpr std::array<Entity, 5> entities{
    {{u'&', u"&amp;"}, {u'\'', u"&apos;"}, {u'"', u"&quot;"}, {u'>', u"&gt;"}, {u'<', u"&lt;"}}};

bool is_special(char16_t c) {
  for (const Entity& e : entities) {
    if (e.unit == c) return true;
  }
  return false;
}

// Undoes the escaping; fails the run on an "&" that starts no entity.
ustring unescape(const ustring& escaped, const ustring& input) {
  ustring out;
  for (std::size_t i = 0; i < escaped.size();) {
    const char16_t c = escaped[i];
    fuzz::require(c == u'&' || !is_special(c), "no < > \" ' is left unescaped", input);
    if (c != u'&') {
      out.push_back(c);
      ++i;
      continue;
    }
    bool matched = false;
    for (const Entity& e : entities) {
      if (std::u16string_view(escaped).substr(i, e.text.size()) == e.text) {
        out.push_back(e.unit);
        i += e.text.size();
        matched = true;
        break;
      }
    }
    fuzz::require(matched, "every & starts one of the five entities", input);
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) {
    ustring escaped;
    fuzz::require_no_throw([&] { escaped = ui::core::escape_xml(text); }, "escape_xml never throws",
                           text);
    fuzz::require(unescape(escaped, text) == text, "unescaping gives the input back", text);
    bool special = false;
    for (const char16_t c : text) special = special || is_special(c);
    if (special) {
      fuzz::require(ui::core::escape_xml(escaped) != escaped,
                    "escaping escaped text escapes its ampersands again", text);
    } else {
      fuzz::require(escaped == text, "text without the five characters comes back equal", text);
    }
  }
  return 0;
}
