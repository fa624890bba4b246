#include "render.h"

#include <utility>

#include "krel/ustring.h"

namespace ui_core_tool {

namespace {

std::string error_line(const Refusal& refusal) {
  return "error: " + refusal.catalogue + ":" + refusal.key + ": " + refusal.text;
}

}  // namespace

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
      const std::size_t length = krel::utf8_sequence_length(
          std::string_view(reinterpret_cast<const char*>(p), static_cast<std::size_t>(end - p)));
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
      write_json(&bytes, result);
      break;
  }
  output_.commit();
}

void Renderer::write_entry(const Result& entry) {
  std::string& out = output_.text();
  switch (format_) {
    case Format::report:
      for (const Field& field : entry.fields()) {
        if (field.report) out.append(*field.report) += '\n';
      }
      break;
    case Format::line: {
      bool first = true;
      for (const Field& field : entry.fields()) {
        if (!field.line) continue;
        if (first) {
          append_escaped(out, *field.line, Escape::field);
        } else {
          add_field(out, *field.line);
        }
        first = false;
      }
      out += '\n';
      break;
    }
    case Format::json:
      write_json(nullptr, entry);
      break;
  }
  output_.commit();
}

// With `bytes`, the record of that input ("input", "ok", then the fields or
// the error); without, a listing entry: the fields alone.
void Renderer::write_json(const std::string_view* bytes, const Result& result) {
  if (json_.is_object()) {
    json_.clear();
  } else {
    json_ = nlohmann::ordered_json::object();
  }
  const std::optional<Refusal>& error = result.error();
  if (bytes != nullptr) {
    // Invalid UTF-8 comes out as U+FFFD when the record is written.
    json_["input"] = *bytes;
    json_["ok"] = !error;
  }
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
