// render.h - the one place that turns results into the tool's output
//
// A Renderer writes each Result in the run's Format (see result.h) to an
// Output, and a refusal in the report form to standard error. It also holds
// the tool's one escaping of bytes, used for echoed inputs, fields of the
// line form and bytes shown in messages.
//
//   Renderer renderer(Format::line, standard_output());
//   renderer.write(bytes, result);  // "<input>\t<field>...\n"
//   renderer.write_entry(entry);     // "<field>\t<field>...\n"

#ifndef UI_CORE_TOOL_RENDER_H
#define UI_CORE_TOOL_RENDER_H

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

#include "line_io.h"
#include "result.h"

namespace ui_core_tool {

/// Which bytes append_escaped writes as escapes.
enum class Escape {
  /// TAB, CR, LF and NUL as \t \r \n \0: a text that stays within one
  /// TAB-separated field of one line.
  field,
  /// As `field`, and also a backslash as \\ and every byte that is not part
  /// of a valid UTF-8 sequence as \xNN (two lower-case hex digits): the text
  /// reads back as exactly the bytes given.
  bytes,
};

/// Appends `text` with the escapes `escape` selects; every other byte is
/// copied as it is.
void append_escaped(std::string& out, std::string_view text, Escape escape);

/// The bytes as append_escaped(..., Escape::bytes) writes them.
[[nodiscard]] std::string escaped(std::string_view bytes);

/// Line form: appends one field, a '\t' and then `text` with Escape::field,
/// so that no TAB, CR, LF or NUL of the text splits it.
void add_field(std::string& line, std::string_view text);

/// Writes results one input at a time. Not thread-safe; one per run.
class Renderer {
 public:
  Renderer(Format format, Output& output) : format_(format), output_(output) {}

  /// Writes the result of the input `bytes` and ends the record. Throws
  /// OutputError when a write fails.
  void write(std::string_view bytes, const Result& result);

  /// Writes one entry of a listing, a record that answers no input (such as
  /// one unit of `unit --list`): the line form is its fields separated by
  /// TAB, the JSON form an object of its fields, the report form its report
  /// lines. Throws OutputError when a write fails.
  void write_entry(const Result& entry);

 private:
  void write_json(const std::string_view* bytes, const Result& result);

  Format format_;
  Output& output_;
  // Kept between inputs so that its storage is reused.
  nlohmann::ordered_json json_;
};

}  // namespace ui_core_tool

#endif  // UI_CORE_TOOL_RENDER_H
