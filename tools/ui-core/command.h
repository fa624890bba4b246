// command.h - how the ui-core tool's subcommands plug into it
//
// Each family of the library adds one file with its subcommands. The file
// defines a setup function and registers it with a namespace-scope
// `Registration`; main() calls every setup function in name order.
//
//   void setup_explain(CLI::App& app, ui_core_tool::Outcome& outcome);
//   const ui_core_tool::Registration explain_registration{"explain", &setup_explain};

#ifndef UI_CORE_TOOL_COMMAND_H
#define UI_CORE_TOOL_COMMAND_H

#include <CLI/CLI.hpp>

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

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

/// Command-line text (UTF-8) as the library's UTF-16 text.
[[nodiscard]] krel::ustring from_arg(const std::string& arg);

/// Library text as UTF-8 for the terminal.
[[nodiscard]] std::string to_out(const krel::ustring& text);

/// Prints a refused input as "error: <identifier>: <text>" on stderr.
void report(const krel::MessageException& e);

}  // namespace ui_core_tool

#endif  // UI_CORE_TOOL_COMMAND_H
