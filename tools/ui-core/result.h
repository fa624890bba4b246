// result.h - what a ui-core command answers for one input, and how it is written
//
// A command does not write output. For each input it fills a Result: named
// fields, each with the forms it appears in, and, when the input is refused,
// the refusal. One Renderer then writes the Result in the format of the run:
//
//  - report: a readable report per input, several lines each; a refusal goes
//    to standard error after the fields filled before it. Used for inputs
//    given as arguments.
//  - line: exactly one line per input, "<input>\t<field>\t<field>...", or
//    "<input>\terror: <identifier>: <text>" when refused, so that output line
//    n belongs to input line n. The input is echoed with Escape::bytes and
//    each field with Escape::field, so each TAB separates fields. Used for
//    inputs read from a file or standard input.
//  - json: one JSON object per input and line (JSON Lines), with --json:
//    "input", "ok", then the fields, or "error" when refused.
//
//   out.add({.name = "index", .json = json_integer(index), .report = text, .line = text});
//   out.text("name", to_out(name));       // one text in every form
//   out.json("size", size_json(size));    // JSON only

#ifndef UI_CORE_TOOL_RESULT_H
#define UI_CORE_TOOL_RESULT_H

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ui_core_tool {

/// The three ways a run writes its results (see the file comment).
enum class Format { report, line, json };

/// One part of a result. Each form writes the fields that have a value for it,
/// in the order they were added; a field may appear in one form only.
struct Field {
  /// The JSON member name.
  std::string name;
  /// The JSON value (null is a value); none: not in the JSON form.
  std::optional<nlohmann::ordered_json> json;
  /// Report lines, without the last '\n'; none: not in the report.
  std::optional<std::string> report;
  /// One field of the line form, unescaped; none: not in the line form.
  std::optional<std::string> line;
};

/// Why an input was refused, whoever refused it: the message identifier
/// (catalogue and key), its arguments for JSON, and its text in the message
/// locale.
struct Refusal {
  std::string catalogue;
  std::string key;
  nlohmann::ordered_json arguments;
  std::string text;
};

/// A command's answer for one input. Ownership: a plain value.
class Result {
 public:
  Result& add(Field field) {
    fields_.push_back(std::move(field));
    return *this;
  }
  /// The same text in the report, the line form and JSON (as a string).
  Result& text(std::string name, std::string text) {
    return add({std::move(name), text, text, text});
  }
  /// A value for JSON only.
  Result& json(std::string name, nlohmann::ordered_json value) {
    return add({std::move(name), std::move(value), std::nullopt, std::nullopt});
  }
  /// Report lines only (a heading, or what was found before a refusal).
  Result& report(std::string lines) {
    return add({std::string(), std::nullopt, std::move(lines), std::nullopt});
  }
  /// Refuses the input; the fields added so far still appear in the report.
  void refuse(Refusal refusal) { error_ = std::move(refusal); }

  [[nodiscard]] const std::vector<Field>& fields() const noexcept { return fields_; }
  [[nodiscard]] const std::optional<Refusal>& error() const noexcept { return error_; }

  /// Empty again, keeping the storage for the next input.
  void clear() noexcept {
    fields_.clear();
    error_.reset();
  }

 private:
  std::vector<Field> fields_;
  std::optional<Refusal> error_;
};

}  // namespace ui_core_tool

#endif  // UI_CORE_TOOL_RESULT_H
