#include "render.h"

#include <utility>

namespace ui_core_tool {

namespace {

// The length of the well-formed UTF-8 sequence at `p` (1 to 4), or 0 when the
// bytes at `p` do not start one. The ranges of the second byte follow from
// the Unicode table of well-formed sequences: they exclude overlong forms,
// surrogates and values past U+10FFFF.
std::size_t well_formed_length(const unsigned char* p, const unsigned char* end) noexcept {
  const std::size_t length = utf8_sequence_length(*p);
  if (length <= 1) return length;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (*p == 0xE0) low = 0xA0;
  if (*p == 0xED) high = 0x9F;
  if (*p == 0xF0) low = 0x90;
  if (*p == 0xF4) high = 0x8F;
  if (static_cast<std::size_t>(end - p) < length || p[1] < low || p[1] > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if ((p[i] & 0xC0U) != 0x80U) return 0;
  }
  return length;
}

std::string error_line(const Refusal& refusal) {
  return "error: " + refusal.catalogue + ":" + refusal.key + ": " + refusal.text;
}

}  // namespace

std::size_t utf8_sequence_length(unsigned char lead) noexcept {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

std::size_t first_invalid_utf8(std::string_view bytes) noexcept {
  const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
  const unsigned char* p = first;
  const unsigned char* const end = p + bytes.size();
  while (p != end) {
    if (*p < 0x80) {
      ++p;
      continue;
    }
    const std::size_t length = well_formed_length(p, end);
    if (length == 0) return static_cast<std::size_t>(p - first);
    p += length;
  }
  return std::string_view::npos;
}

void append_escaped(std::string& out, std::string_view text, Escape escape) {
  static constexpr char hex[] = "0123456789abcdef";
  const bool bytes = escape == Escape::bytes;
  const auto* p = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* const end = p + text.size();
  const unsigned char* copied = p;  // bytes before this one are in `out`
  while (p != end) {
    const unsigned char c = *p;
    const char* replacement = nullptr;
    switch (c) {
      case '\t':
        replacement = "\\t";
        break;
      case '\r':
        replacement = "\\r";
        break;
      case '\n':
        replacement = "\\n";
        break;
      case '\0':
        replacement = "\\0";
        break;
      case '\\':
        if (bytes) replacement = "\\\\";
        break;
      default:
        break;
    }
    if (replacement == nullptr) {
      if (c < 0x80 || !bytes) {
        ++p;
        continue;
      }
      const std::size_t length = well_formed_length(p, end);
      if (length != 0) {
        p += length;
        continue;
      }
    }
    out.append(reinterpret_cast<const char*>(copied), static_cast<std::size_t>(p - copied));
    if (replacement != nullptr) {
      out += replacement;
    } else {
      out += "\\x";
      out += hex[c >> 4];
      out += hex[c & 15];
    }
    copied = ++p;
  }
  out.append(reinterpret_cast<const char*>(copied), static_cast<std::size_t>(end - copied));
}

void add_field(std::string& line, std::string_view text) {
  line += '\t';
  append_escaped(line, text, Escape::field);
}

std::string escaped(std::string_view bytes) {
  std::string shown;
  shown.reserve(bytes.size());
  append_escaped(shown, bytes, Escape::bytes);
  return shown;
}

void Renderer::write(std::string_view bytes, const Result& result) {
  std::string& out = output_.text();
  const std::optional<Refusal>& error = result.error();
  switch (format_) {
    case Format::report:
      for (const Field& field : result.fields()) {
        if (!field.report) continue;
        out += *field.report;
        out += '\n';
      }
      // write_error writes standard output first, so the fields found before
      // a refusal come before it.
      if (error) write_error(error_line(*error) + '\n');
      break;
    case Format::line:
      append_escaped(out, bytes, Escape::bytes);
      if (error) {
        add_field(out, error_line(*error));
      } else {
        for (const Field& field : result.fields()) {
          if (field.line) add_field(out, *field.line);
        }
      }
      out += '\n';
      break;
    case Format::json:
      write_json(bytes, result);
      break;
  }
  output_.commit();
}

void Renderer::write_json(std::string_view bytes, const Result& result) {
  if (json_.is_object()) {
    json_.clear();
  } else {
    json_ = nlohmann::ordered_json::object();
  }
  // Invalid UTF-8 comes out as U+FFFD when the record is written.
  json_["input"] = bytes;
  const std::optional<Refusal>& error = result.error();
  json_["ok"] = !error;
  if (error) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    object["catalogue"] = error->catalogue;
    object["key"] = error->key;
    object["arguments"] = error->arguments;
    object["message"] = error->text;
    json_["error"] = std::move(object);
  } else {
    for (const Field& field : result.fields()) {
      if (field.json) json_[field.name] = *field.json;
    }
  }
  std::string& out = output_.text();
  out += json_.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  out += '\n';
}

}  // namespace ui_core_tool
