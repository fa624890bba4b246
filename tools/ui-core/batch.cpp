// ui-core batch: runs a file of ui-core command lines, one per line (or the
// lines of standard input).
//
// Each line is split like a shell would split it (blanks separate words;
// single and double quotes group; a backslash escapes the next character) and
// run in this process by a CommandLine of its own, which sets every option
// back to its default first, so one line's options never leak into the next. Blank lines and lines
// starting with '#' are skipped. The command line is echoed before its output.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "line_io.h"

namespace ui_core_tool {
namespace {

// Shell-like word splitting; empty when a quote is left open.
std::optional<std::vector<std::string>> split_words(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool in_word = false;
  char quote = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quote != 0) {
      if (c == quote) {
        quote = 0;
      } else if (c == '\\' && quote == '"' && i + 1 < line.size()) {
        word += line[++i];
      } else {
        word += c;
      }
    } else if (c == '\'' || c == '"') {
      quote = c;
      in_word = true;
    } else if (c == '\\' && i + 1 < line.size()) {
      word += line[++i];
      in_word = true;
    } else if (c == ' ' || c == '\t' || c == '\r') {
      if (in_word) words.push_back(std::move(word));
      word.clear();
      in_word = false;
    } else {
      word += c;
      in_word = true;
    }
  }
  if (quote != 0) return std::nullopt;
  if (in_word) words.push_back(std::move(word));
  return words;
}

int run_batch(const std::string& file) {
  const std::optional<InputSource> source = open_input(file);
  if (!source) return exit_usage;
  // A command line without inputs would read standard input, which is the
  // batch's own (or the terminal): it reads an empty input instead.
  const FileDescriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (nothing.get() < 0) {
    const int open_error = errno;
    report_open_error("/dev/null", open_error);
    return exit_io;
  }
  // "<file>:<line>: error: <text>", the form compilers use, so that editors
  // jump to the line.
  const auto refuse_line = [&source](std::uint64_t number, const std::string& text) {
    write_error(source->name + ":" + std::to_string(number) + ": error: " + text + "\n");
    return exit_usage;
  };
  Output& out = standard_output();
  CommandLine commands;
  LineReader reader(source->fd);
  std::string_view line;
  std::size_t ran = 0;
  std::size_t refused = 0;
  while (reader.next(line)) {
    const std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string_view::npos || line[first] == '#') continue;
    const auto words = split_words(line);
    if (!words) return refuse_line(reader.lines(), tool_text("UnterminatedQuote", {}));
    if (words->empty()) continue;
    if ((*words)[0] == "batch") return refuse_line(reader.lines(), tool_text("BatchInBatch", {}));
    out.text().append("$ ui-core ").append(line) += '\n';
    out.commit();
    const int code = commands.run(*words, nothing.get());
    ++ran;
    // The command has said what went wrong; a failed write ends the batch too.
    if (code == exit_io) return exit_io;
    if (code == exit_usage) {
      return refuse_line(reader.lines(),
                         tool_text("BadCommandLine", {static_cast<std::uint64_t>(code)}));
    }
    if (code != exit_ok) ++refused;
    out.text() += '\n';
    out.commit();
  }
  if (reader.error() != 0) {
    report_read_error(*source, reader.error());
    return exit_io;
  }
  out.text() += tool_text("BatchSummary", {std::uint64_t{ran}, std::uint64_t{refused}}) + '\n';
  out.commit();
  return refused == 0 ? exit_ok : exit_refused;
}

void setup_batch(CLI::App& app, CommandState& state) {
  auto file = state.fresh<std::string>();
  CLI::App* cmd = app.add_subcommand(
      "batch", "Run a file of ui-core command lines (one per line, '#' comments), e.g. the sample");
  cmd->add_option("file", *file,
                  "The file of command lines; without it (or with '-') standard input");
  cmd->footer(
      "Exit code: 0 every command accepted its input, 1 some command refused input, 2 a bad "
      "command line (the batch stops there), 3 reading or writing failed.\n\n"
      "Examples:\n"
      "  ui-core batch examples/sample/session.txt\n"
      "  printf 'node-path a/b\\nunit km --to m\\n' | ui-core batch\n");
  cmd->callback([file, &state] { state.exit_code = run_batch(*file); });
}

const Registration batch_registration{"batch", &setup_batch};

}  // namespace
}  // namespace ui_core_tool
