// command.h - how the ui-core tool's subcommands plug into it
//
// Each family of the library adds one file with its subcommands. The file
// defines a setup function and registers it with a namespace-scope
// `Registration`; main() calls every setup function in name order.
//
//   void setup_explain(CLI::App& app, ui_core_tool::Outcome& outcome);
//   const ui_core_tool::Registration explain_registration{"explain", &setup_explain};
//
// A subcommand that reads inputs (texts, paths, expressions...) describes what
// it does with ONE input as a `Handler` and lets `add_inputs` and `run_inputs`
// do the rest: where the inputs come from (arguments, --file, standard
// input), the three output formats, refusals, exit codes, --locale and the
// progress line.
//
//   auto io = add_inputs(cmd, {"texts", "Node path texts"});
//   cmd->callback([io, &outcome] {
//     outcome.exit_code = run_inputs(*io, [](const Input& in, Record& out) { ... });
//   });

#ifndef UI_CORE_TOOL_COMMAND_H
#define UI_CORE_TOOL_COMMAND_H

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "krel/message.h"
#include "krel/ustring.h"

namespace ui_core_tool {

/// Exit codes: 0 success, 1 the input was refused, 2 bad usage.
enum ExitCode : int { exit_ok = 0, exit_refused = 1, exit_usage = 2 };

/// What a subcommand's callback reports back to main().
struct Outcome {
  int exit_code = exit_ok;
};

using Setup = void (*)(CLI::App& app, Outcome& outcome);

/// Registers a subcommand family at static initialisation.
struct Registration {
  Registration(std::string_view name, Setup setup);
};

/// Command-line text (UTF-8) as the library's UTF-16 text; throws
/// std::runtime_error naming the argument when it is not valid UTF-8.
[[nodiscard]] krel::ustring from_arg(const std::string& arg);

/// Library text as UTF-8 for the terminal.
[[nodiscard]] std::string to_out(const krel::ustring& text);

// --- Messages ----------------------------------------------------------------

/// The locale message texts are written in: --locale when given, else the
/// environment's (LC_ALL, LC_MESSAGES, LANG).
[[nodiscard]] const std::string& message_locale();

/// Selects the message locale, and makes it the global C++ locale when the
/// system has it (so that texts the library formats itself agree).
void select_message_locale(const std::string& name);

/// The catalogue text of a message identifier in the message locale.
[[nodiscard]] std::string message_text(const resource_core::BaseMsgID& id);

/// Prints a refused input as "error: <identifier>: <text>" on stderr.
void report(const krel::MessageException& e);

/// A refusal by the tool itself rather than by the library: an input line the
/// tool cannot split into its parts (such as a size that is not a number), or
/// one that is not UTF-8. It reads like a library message, with the catalogue
/// "ui-core". From the command line it is bad usage (exit 2); in a line of a
/// file or of standard input it refuses that line only (exit 1).
class InputError : public std::runtime_error {
 public:
  /// `key` names the problem; `text` is the English text, `text_de` the German.
  /// `usage`: whether the input's shape is wrong (exit 2 from the command
  /// line) rather than its content (always a refusal, exit 1).
  InputError(std::string key, nlohmann::ordered_json arguments, const std::string& text,
             std::string text_de, bool usage = true);

  [[nodiscard]] const std::string& key() const noexcept { return key_; }
  [[nodiscard]] bool usage() const noexcept { return usage_; }
  /// A JSON array, as the error's "arguments" in --json output.
  [[nodiscard]] const nlohmann::ordered_json& arguments() const noexcept { return arguments_; }
  /// The text in the message locale.
  [[nodiscard]] std::string text() const;

 private:
  std::string key_;
  nlohmann::ordered_json arguments_;
  std::string text_de_;
  bool usage_;
};

// --- Inputs and results --------------------------------------------------------

/// How results are written.
///  - detail: a readable report per input, several lines each; refusals go to
///    stderr. Used for inputs given as arguments.
///  - line: exactly one line per input, "<input>\t<result>", or
///    "<input>\terror: <identifier>: <text>" when refused. Used for inputs read
///    from a file or standard input, so that output line n belongs to input
///    line n.
///  - json: one JSON object per input and line (JSON Lines), with --json.
enum class Format { detail, line, json };

/// One input, as given (UTF-8) and as the library's text.
struct Input {
  std::string_view bytes;
  const krel::ustring& text;
};

/// Where a handler writes the result of one input.
struct Record {
  Format format;
  /// detail and line formats: the text to append. In the line format it
  /// follows the echoed input; each field starts with a '\t'. Text appended
  /// before a refusal is kept in the detail format and dropped in the others.
  std::string& text;
  /// json format: the fields after "input"; "ok" and "error" are added by the
  /// driver.
  nlohmann::ordered_json& json;
};

using Handler = std::function<void(const Input&, Record&)>;

/// How the positional arguments make up inputs.
enum class ArgGrouping {
  each,   // every argument is one input
  pairs,  // arguments come in pairs, each pair one input "first second"
  all,    // all arguments together are one input, joined by '\t'
};

/// The input options of a subcommand.
struct InputOptions {
  std::vector<std::string> args;
  std::string file;
  std::string locale;
  bool json = false;
  ArgGrouping grouping = ArgGrouping::each;
};

/// What add_inputs shows in --help.
struct InputHelp {
  std::string name;         // the positional's name, e.g. "texts"
  std::string description;  // what one input is
  std::string examples;     // the footer: example command lines
};

/// Adds the positional inputs, --file, --json and --locale to `cmd`, and the
/// examples as its help footer.
std::shared_ptr<InputOptions> add_inputs(CLI::App* cmd, const InputHelp& help);

/// Runs `handler` on every input: the arguments, else the lines of --file,
/// else (no argument, or a lone "-", or --file -) the lines of standard input.
/// Lines are read and results written one at a time, so memory stays
/// constant however long the input is. Returns the exit code: 0 when every
/// input was accepted, 1 when some were refused, 2 for bad usage.
[[nodiscard]] int run_inputs(const InputOptions& options, const Handler& handler);

/// Called once per run with the first refusal of a subcommand (for notes that
/// help more than the message alone, such as where bundles were looked for).
using RefusalNote = std::function<void(const krel::MessageException&)>;
[[nodiscard]] int run_inputs(const InputOptions& options, const Handler& handler,
                             const RefusalNote& note);

/// Appends UTF-16 text as UTF-8 (a lone surrogate becomes U+FFFD).
void append_utf8(std::string& out, std::u16string_view text);

/// Appends "'text'" with the text as UTF-8.
void append_quoted(std::string& out, std::u16string_view text);

}  // namespace ui_core_tool

#endif  // UI_CORE_TOOL_COMMAND_H
