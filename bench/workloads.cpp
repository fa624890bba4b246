#include "workloads.h"

#include <array>
#include <string_view>

namespace bench {
namespace {

constexpr std::u16string_view letters =
    u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// An identifier or name of 3 to 20 code units; with probability 5 % two of
// them are an escaped separator "//" somewhere inside.
std::u16string identifier(SplitMix64& rng) {
  const std::size_t length = rng.between(3, 20);
  std::u16string id;
  id.reserve(length);
  for (std::size_t i = 0; i < length; ++i) id += letters[rng.between(0, letters.size() - 1)];
  if (rng.percent(5)) {
    // Neither first nor last, so the identifier stays valid.
    const std::size_t at = rng.between(1, length - 2);
    id.replace(at, 2, u"//");
    if (at + 2 == length) id += u'x';  // the escape must not end the text
  }
  return id;
}

std::u16string subscript(SplitMix64& rng) {
  std::u16string text = u"//";
  const std::size_t values = rng.between(1, 3);
  for (std::size_t v = 0; v < values; ++v) {
    if (v != 0) text += u", ";
    for (char c : std::to_string(rng.between(1, 200))) text += static_cast<char16_t>(c);
  }
  return text;
}

std::u16string node_path(SplitMix64& rng, std::size_t ids) {
  std::u16string text;
  for (std::size_t i = 0; i < ids; ++i) {
    if (i != 0) text += u'/';
    text += identifier(rng);
  }
  return text;
}

std::u16string object_path(SplitMix64& rng, std::size_t elements) {
  std::u16string text;
  bool last_was_subscript = true;  // the first element is a name
  for (std::size_t i = 0; i < elements; ++i) {
    if (i != 0) text += u'/';
    if (!last_was_subscript && rng.percent(25)) {
      text += subscript(rng);
      last_was_subscript = true;
    } else {
      text += identifier(rng);
      last_was_subscript = false;
    }
  }
  return text;
}

}  // namespace

std::vector<std::u16string> node_path_texts(std::size_t count) {
  SplitMix64 rng(0x5eed0001);
  std::vector<std::u16string> texts;
  texts.reserve(count);
  for (std::size_t i = 0; i < count; ++i) texts.push_back(node_path(rng, rng.between(2, 8)));
  return texts;
}

std::u16string long_node_path_text(std::size_t ids) {
  SplitMix64 rng(0x5eed0002);
  return node_path(rng, ids);
}

std::vector<std::u16string> object_path_texts(std::size_t count) {
  SplitMix64 rng(0x5eed0003);
  std::vector<std::u16string> texts;
  texts.reserve(count);
  for (std::size_t i = 0; i < count; ++i) texts.push_back(object_path(rng, rng.between(2, 8)));
  return texts;
}

std::u16string long_object_path_text(std::size_t elements) {
  SplitMix64 rng(0x5eed0004);
  return object_path(rng, elements);
}

std::string json_pointer_text(const std::u16string& text) {
  // Segments are cut where the object path grammar cuts them: an odd run of
  // "/" ends a segment with its first "/". The generated texts hold runs of
  // one ("a/b"), two (an escape inside a name) and three ("a///1, 2").
  std::string pointer;
  std::size_t p = 0;
  const std::size_t n = text.size();
  while (p < n) {
    std::size_t e = p;
    for (;;) {
      while (e < n && text[e] != u'/') ++e;
      if (e == n) break;
      std::size_t run = e;
      while (run < n && text[run] == u'/') ++run;
      if ((run - e) % 2 != 0 || run == n) break;
      e = run;
    }
    const std::u16string segment = text.substr(p, e - p);
    if (segment.size() >= 2 && segment[0] == u'/' && segment[1] == u'/') {
      // A subscript: one 0-based index token per value.
      std::size_t value = 0;
      bool in_digits = false;
      for (std::size_t i = 2; i <= segment.size(); ++i) {
        const char16_t c = i < segment.size() ? segment[i] : u',';
        if (c >= u'0' && c <= u'9') {
          value = value * 10 + static_cast<std::size_t>(c - u'0');
          in_digits = true;
        } else if (c == u',' && in_digits) {
          pointer += '/';
          pointer += std::to_string(value - 1);
          value = 0;
          in_digits = false;
        }
      }
    } else {
      pointer += '/';
      for (std::size_t i = 0; i < segment.size(); ++i) {
        if (segment[i] == u'/') {
          pointer += "~1";  // an escaped "/" is one literal "/"
          ++i;
        } else if (segment[i] == u'~') {
          pointer += "~0";
        } else {
          pointer += static_cast<char>(segment[i]);
        }
      }
    }
    p = e + 1;
  }
  return pointer;
}

std::u16string xml_prose() {
  static constexpr std::array<std::u16string_view, 24> words = {
      u"the",    u"model",     u"carries", u"units",   u"and",      u"each",
      u"block",  u"converts",  u"its",     u"inputs",  u"Größe",    u"vitesse",
      u"mass",   u"of",        u"a",       u"frame",   u"régime",   u"between",
      u"signal", u"parameter", u"is",      u"written", u"together", u"when"};
  static constexpr std::array<char16_t, 5> specials = {u'&', u'<', u'>', u'"', u'\''};
  constexpr std::size_t units = (std::size_t{1} << 20) / sizeof(char16_t);
  SplitMix64 rng(0x5eed0005);
  std::u16string text;
  text.reserve(units + 16);
  std::size_t next_special = rng.between(100, 300);
  while (text.size() < units) {
    text += words[rng.between(0, words.size() - 1)];
    if (text.size() >= next_special) {
      text += specials[rng.between(0, specials.size() - 1)];
      next_special = text.size() + rng.between(100, 300);
    }
    text += rng.percent(10) ? u", " : u" ";
  }
  text.resize(units);
  return text;
}

std::u16string xml_markup() {
  static constexpr std::array<std::u16string_view, 8> pieces = {u"<", u">", u"&", u"\"",
                                                                u"'", u"x", u"=", u" "};
  constexpr std::size_t units = (std::size_t{1} << 20) / sizeof(char16_t);
  SplitMix64 rng(0x5eed0006);
  std::u16string text;
  text.reserve(units + 16);
  // Runs of ordinary code units of 1 to 13 (mean 7) between special ones: one
  // special code unit in eight.
  while (text.size() < units) {
    const std::size_t run = rng.between(1, 13);
    for (std::size_t i = 0; i < run; ++i) text += letters[rng.between(0, letters.size() - 1)];
    text += pieces[rng.between(0, 4)];
  }
  text.resize(units);
  return text;
}

std::string to_utf8(const std::u16string& text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (char16_t c : text) {
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xc0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3f));
    } else {
      out += static_cast<char>(0xe0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
      out += static_cast<char>(0x80 | (c & 0x3f));
    }
  }
  return out;
}

}  // namespace bench
