// command.h - how the ui-core tool's subcommands plug into it
//
// Each family of the library adds one file with its subcommands. The file
// defines a setup function and registers it with a namespace-scope
// `Registration`; a CommandLine calls every setup function in name order.
//
//   void setup_explain(CLI::App& app, ui_core_tool::CommandState& state);
//   const ui_core_tool::Registration explain_registration{"explain", &setup_explain};
//
// A subcommand that reads inputs (texts, paths, expressions...) describes what
// it does with ONE input as a `Handler`, which fills a Result (result.h), and
// lets `add_inputs` and `run_inputs` do the rest: where the inputs come from
// (arguments, --file, standard input), writing the result in the run's
// format, refusals, exit codes, --locale and the progress line.
//
// A CommandLine is built once and runs any number of command lines (`ui-core
// batch` runs thousands in one process), so every value an option is read
// into is made with CommandState::fresh, which puts it back to its default
// before each command line.
//
//   auto io = add_inputs(cmd, state, {"texts", "Node path texts"});
//   cmd->callback([io, &state] {
//     state.exit_code = run_inputs(*io, [](const Input& in, Result& out) { ... });
//   });

#ifndef UI_CORE_TOOL_COMMAND_H
#define UI_CORE_TOOL_COMMAND_H

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "krel/message.h"
#include "krel/ustring.h"
#include "line_io.h"
#include "resource_core/base_msg_id.h"
#include "result.h"

namespace ui::core {
class ObjectPathSubscript;
}

namespace ui_core_tool {

/// Exit codes: 0 success, 1 some input was refused, 2 bad usage, 3 reading
/// the input or writing the output failed (the run stops there).
enum ExitCode : int { exit_ok = 0, exit_refused = 1, exit_usage = 2, exit_io = 3 };

/// What the subcommands of one CommandLine keep between parsing and their
/// callbacks: the exit code a callback reports back, and the values options
/// are read into.
class CommandState {
 public:
  int exit_code = exit_ok;

  /// A value for options to be read into (and for the callback to change),
  /// set back to `initial` before every command line.
  template <class T>
  std::shared_ptr<T> fresh(T initial = T{}) {
    auto value = std::make_shared<T>(initial);
    resets_.push_back([value, initial = std::move(initial)] { *value = initial; });
    return value;
  }

  /// Back to the defaults: exit code 0 and every fresh value as it was made.
  void reset() {
    exit_code = exit_ok;
    for (const auto& reset_one : resets_) reset_one();
  }

 private:
  std::vector<std::function<void()>> resets_;
};

using Setup = void (*)(CLI::App& app, CommandState& state);

/// Registers a subcommand family at static initialisation.
struct Registration {
  Registration(std::string_view name, Setup setup);
};

/// The ui-core command-line parser with every subcommand. Building it costs
/// far more than most commands, so it is built once and runs any number of
/// command lines, each as if it were the first: every option at its default
/// and the message locale the environment's.
class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Runs one command line (the words after "ui-core") and returns its exit
  /// code. `input_fd` is what the command reads as its standard input. Never
  /// throws: a failed write ends the command with exit_io. Not reentrant: a
  /// command that runs command lines (batch) uses a CommandLine of its own.
  [[nodiscard]] int run(const std::vector<std::string>& words, int input_fd);

 private:
  CLI::App app_;
  CommandState state_;
};

/// The standard input of the command line that is running.
[[nodiscard]] int command_input() noexcept;

/// Command-line text (UTF-8) as the library's UTF-16 text; throws
/// std::runtime_error naming the argument when it is not valid UTF-8.
[[nodiscard]] krel::ustring from_arg(const std::string& arg);

/// Library text as UTF-8 for the terminal.
[[nodiscard]] std::string to_out(const krel::ustring& text);

// --- Messages ----------------------------------------------------------------

/// The locale message texts are written in: --locale when given, else the
/// environment's.
[[nodiscard]] const std::string& message_locale();

/// The environment's message locale: the first non-empty of LC_ALL,
/// LC_MESSAGES and LANG, else "C".
[[nodiscard]] std::string environment_locale();

/// Selects the message locale: the language of the tool's texts, and of the
/// texts the library looks up itself. Whatever it is, the bytes the tool and
/// the library write stay UTF-8 and numbers keep the "C" form (a '.' before
/// the decimals, no grouping), so that output never depends on the locale.
void select_message_locale(const std::string& name);

/// The catalogue text of a message identifier in the message locale.
[[nodiscard]] std::string message_text(const resource_core::BaseMsgID& id);

/// Prints a refused input as "error: <identifier>: <text>" on stderr.
void report(const krel::MessageException& e);

/// "<identifier>: <text>" of a library message, in the message locale.
[[nodiscard]] std::string message_line(const krel::MessageException& e);

/// A refusal by the tool itself rather than by the library: an input line the
/// tool cannot split into its parts (such as a size that is not a number), or
/// one that is not UTF-8. It reads like a library message: its text comes from
/// the tool's catalogue ("ui-core") in the message locale. From the command
/// line it is bad usage (exit 2); in a line of a file or of standard input it
/// refuses that line only (exit 1).
class InputError : public std::runtime_error {
 public:
  using Arguments = std::vector<resource_core::BaseMsgID::Argument>;

  /// `key` names the problem in the tool's catalogue and `arguments` fill its
  /// text; they are also the error's "arguments" in --json output. `details`
  /// fill the text's further placeholders only. `usage`: whether the input's
  /// shape is wrong (exit 2 from the command line) rather than its content
  /// (always a refusal, exit 1).
  InputError(std::string key, Arguments arguments, bool usage = true, Arguments details = {});

  [[nodiscard]] const std::string& key() const noexcept { return id_.key; }
  [[nodiscard]] bool usage() const noexcept { return usage_; }
  /// A JSON array, as the error's "arguments" in --json output.
  [[nodiscard]] nlohmann::ordered_json arguments() const;
  /// The text in the message locale.
  [[nodiscard]] std::string text() const;

 private:
  resource_core::BaseMsgID id_;
  std::size_t shown_arguments_;
  bool usage_;
};

/// The catalogue name of the tool's own texts.
inline constexpr std::string_view tool_catalogue = "ui-core";

/// The text of the key `key` of the tool's catalogue in the message locale.
[[nodiscard]] std::string tool_text(std::string key, InputError::Arguments arguments);

// --- Where inputs come from ----------------------------------------------------

/// What a command reads: standard input, or a file it opened (closed with it).
struct InputSource {
  FileDescriptor file;
  /// The descriptor to read: `file`, or the command line's standard input.
  int fd = -1;
  /// For messages: the file's name, or "standard input" in the message locale.
  std::string name;
  /// The size of a regular file in bytes, else 0 (for the progress line).
  std::uint64_t size = 0;
  [[nodiscard]] bool is_standard_input() const noexcept { return file.get() < 0; }
};

/// Opens the input `file`; "" or "-" is standard input. A file that cannot be
/// opened, or a directory, is reported on standard error and gives none: the
/// command then ends with exit_usage.
[[nodiscard]] std::optional<InputSource> open_input(const std::string& file);

/// Reports that the file `name` could not be opened, with the errno `error`.
void report_open_error(const std::string& name, int error);

/// Reports that reading `source` failed with the errno `error`; the command
/// then ends with exit_io.
void report_read_error(const InputSource& source, int error);

/// Reads the value of `option` with `read()`: a value the library or the
/// tool refuses is bad usage (exit 2), reported with the option's name before
/// any input is looked at.
template <class Read>
auto read_option(const std::string& option, Read&& read) -> decltype(read()) {
  try {
    return read();
  } catch (const krel::MessageException& e) {
    throw CLI::ValidationError(option, message_line(e));
  } catch (const InputError& e) {
    throw CLI::ValidationError(option, e.text());
  } catch (const std::runtime_error& e) {
    throw CLI::ValidationError(option, e.what());
  }
}

// --- Inputs and results --------------------------------------------------------

/// One input, as given (UTF-8) and as the library's text.
struct Input {
  std::string_view bytes;
  const krel::ustring& text;
};

/// Fills the result of one input; a refusal is thrown (krel::MessageException
/// or InputError), and what was added before it still shows in the report.
using Handler = std::function<void(const Input&, Result&)>;

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
/// examples as its help footer; `grouping` says how arguments make up inputs.
/// --locale takes effect while the command line is parsed, before the
/// subcommand's callback runs.
std::shared_ptr<InputOptions> add_inputs(CLI::App* cmd, CommandState& state, const InputHelp& help,
                                         ArgGrouping grouping = ArgGrouping::each);

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

/// "'text'" with the text as UTF-8.
[[nodiscard]] std::string quoted(const krel::ustring& text);

/// An integer for JSON output: a number when a double holds it exactly (at
/// most 2^53 - 1 in size), else a string of its decimal digits, so that jq
/// and JavaScript never round an index, a subscript or a size.
[[nodiscard]] nlohmann::ordered_json json_integer(std::uint64_t value);
[[nodiscard]] nlohmann::ordered_json json_integer(std::int64_t value);

/// The values of a subscript as a JSON array of json_integer.
[[nodiscard]] nlohmann::ordered_json values_json(const ui::core::ObjectPathSubscript& subscript);

}  // namespace ui_core_tool

#endif  // UI_CORE_TOOL_COMMAND_H
