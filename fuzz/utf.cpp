// fuzz/utf.cpp - the foundation library's UTF-8, UTF-16 and local encodings
//
// Each conversion is compared with a small decoder and encoder written here
// from the Unicode rules, not with the library's own code:
// - UTF-8 to UTF-16 decodes valid text exactly and replaces each maximal
//   invalid subpart by one U+FFFD (the practice the Unicode standard
//   recommends); on valid UTF-8 the round trip through UTF-16 is the identity.
// - UTF-16 to UTF-8 encodes every code point and turns each lone surrogate
//   into U+FFFD; the round trip back gives the input with lone surrogates
//   replaced.
// - Under the "C" locale the local encoding is ASCII: one '?' per code point it
//   cannot hold, one U+FFFD per byte it cannot read. Under a UTF-8 locale it is
//   UTF-8, except that a lone surrogate becomes '?'.
// The std::string and std::string_view overloads must agree.

#include <clocale>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_support.h"
#include "krel/ustring.h"

namespace {

using fuzz::ustring;

struct Decoded {
  ustring text;
  bool valid = true;  // no ill-formed sequence was replaced
};

void append_code_point(ustring& out, char32_t cp) {
  if (cp < 0x10000) {
    out.push_back(static_cast<char16_t>(cp));
  } else {
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
  }
}

// UTF-8 decoding by the table of well-formed byte sequences: the second byte's
// range depends on the lead byte (which excludes overlong forms, surrogates and
// code points past U+10FFFF); later bytes are 80..BF.
Decoded decode_utf8(std::string_view bytes) {
  Decoded out;
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto b = static_cast<unsigned char>(bytes[i]);
    if (b < 0x80) {
      out.text.push_back(b);
      ++i;
      continue;
    }
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    char32_t cp = 0;
    if (b >= 0xC2 && b <= 0xDF) {
      length = 2;
      cp = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
      length = 3;
      cp = b & 0x0F;
      if (b == 0xE0) low = 0xA0;
      if (b == 0xED) high = 0x9F;
    } else if (b >= 0xF0 && b <= 0xF4) {
      length = 4;
      cp = b & 0x07;
      if (b == 0xF0) low = 0x90;
      if (b == 0xF4) high = 0x8F;
    }
    if (length == 0) {  // 80..C1 and F5..FF never start a sequence
      out.text.push_back(u'\uFFFD');
      out.valid = false;
      ++i;
      continue;
    }
    std::size_t taken = 1;
    while (taken < length && i + taken < bytes.size()) {
      const auto c = static_cast<unsigned char>(bytes[i + taken]);
      const unsigned char lo = taken == 1 ? low : 0x80;
      const unsigned char hi = taken == 1 ? high : 0xBF;
      if (c < lo || c > hi) break;
      cp = (cp << 6) | (c & 0x3F);
      ++taken;
    }
    if (taken == length) {
      append_code_point(out.text, cp);
    } else {
      out.text.push_back(u'\uFFFD');  // one replacement for the maximal subpart
      out.valid = false;
    }
    i += taken;
  }
  return out;
}

bool is_high(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool is_low(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

// Calls `each(code_point, lone)` for every code point of `text`; a lone
// surrogate is passed with lone = true.
template <class Fn>
void for_each_code_point(const ustring& text, Fn&& each) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (is_high(c) && i + 1 < text.size() && is_low(text[i + 1])) {
      each(0x10000 + ((char32_t{c} - 0xD800) << 10) + (char32_t{text[i + 1]} - 0xDC00), false);
      ++i;
    } else {
      each(char32_t{c}, is_high(c) || is_low(c));
    }
  }
}

std::string encode_utf8(const ustring& text, char lone_replacement_ascii) {
  std::string out;
  for_each_code_point(text, [&](char32_t cp, bool lone) {
    if (lone) {
      if (lone_replacement_ascii != 0) {
        out.push_back(lone_replacement_ascii);
        return;
      }
      cp = 0xFFFD;
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  });
  return out;
}

ustring without_lone_surrogates(const ustring& text) {
  ustring out;
  for_each_code_point(text,
                      [&](char32_t cp, bool lone) { append_code_point(out, lone ? 0xFFFD : cp); });
  return out;
}

std::string ascii_with_question_marks(const ustring& text) {
  std::string out;
  for_each_code_point(
      text, [&](char32_t cp, bool) { out.push_back(cp < 0x80 ? static_cast<char>(cp) : '?'); });
  return out;
}

ustring ascii_bytes_to_units(std::string_view bytes) {
  ustring out;
  for (const char c : bytes) {
    const auto b = static_cast<unsigned char>(c);
    out.push_back(b < 0x80 ? char16_t{b} : u'\uFFFD');
  }
  return out;
}

// The checks on one narrow input, under whichever LC_CTYPE is current.
void check_utf8_input(const std::string& bytes, bool utf8_locale) {
  const ustring as_text = fuzz::u("(bytes as ISO-8859-1) ") + ustring(bytes.begin(), bytes.end());
  const Decoded expected = decode_utf8(bytes);
  const ustring decoded = krel::utf8_string_to_ustring(bytes);
  fuzz::require(decoded == expected.text, "UTF-8 decoding follows the well-formed byte table",
                as_text);
  fuzz::require(krel::utf8_string_to_ustring(std::string_view(bytes)) == decoded,
                "string and string_view decoding agree", as_text);
  const std::string encoded = krel::ustring_to_utf8_string(decoded);
  if (expected.valid) {
    fuzz::require(encoded == bytes, "UTF-8 -> UTF-16 -> UTF-8 is the identity on valid UTF-8",
                  as_text);
  }
  fuzz::require(decode_utf8(encoded).valid, "UTF-8 output is always valid", as_text);

  const ustring local = krel::local_encoded_string_to_ustring(bytes);
  if (utf8_locale) {
    fuzz::require(local == decoded, "a UTF-8 locale reads local text as UTF-8", as_text);
  } else {
    fuzz::require(local == ascii_bytes_to_units(bytes),
                  "the C locale reads ASCII and makes each other byte U+FFFD", as_text);
  }
}

void check_utf16_input(const ustring& text, bool utf8_locale) {
  const std::string encoded = krel::ustring_to_utf8_string(text);
  fuzz::require(encoded == encode_utf8(text, 0),
                "UTF-16 -> UTF-8 encodes code points, lone surrogates as U+FFFD", text);
  fuzz::require(krel::ustring_to_utf8_string(std::u16string_view(text)) == encoded,
                "ustring and u16string_view encoding agree", text);
  fuzz::require(krel::utf8_string_to_ustring(encoded) == without_lone_surrogates(text),
                "UTF-16 -> UTF-8 -> UTF-16 gives the input, lone surrogates replaced", text);

  const std::string local = krel::ustring_to_local_encoded_string(text);
  if (utf8_locale) {
    fuzz::require(local == encode_utf8(text, '?'),
                  "a UTF-8 locale writes UTF-8, a lone surrogate as '?'", text);
  } else {
    fuzz::require(local == ascii_with_question_marks(text),
                  "the C locale writes ASCII, one '?' per other code point", text);
  }

  bool ascii = true;
  for (const char16_t c : text) ascii = ascii && c < 0x80;
  fuzz::require(krel::is_ascii_string(text) == ascii, "is_ascii_string tests every code unit",
                text);
}

// Runs `check` under the "C" locale and, when the system has one, under a
// UTF-8 locale, then restores the locale the process had.
template <class Fn>
void under_both_locales(Fn&& check) {
  const std::string saved = std::setlocale(LC_CTYPE, nullptr);
  std::setlocale(LC_CTYPE, "C");
  check(false);
  if (std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr ||
      std::setlocale(LC_CTYPE, "C.utf8") != nullptr) {
    check(true);
  }
  std::setlocale(LC_CTYPE, saved.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const ustring units = fuzz::text_from_units(data, size);
  under_both_locales([&](bool utf8_locale) {
    check_utf8_input(bytes, utf8_locale);
    check_utf16_input(units, utf8_locale);
    check_utf16_input(krel::utf8_string_to_ustring(bytes), utf8_locale);
  });
  return 0;
}
