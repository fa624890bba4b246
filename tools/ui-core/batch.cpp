// ui-core batch: runs a file of ui-core command lines, one per line (or the
// lines of standard input).
//
// Each line is split like a shell would split it (blanks separate words;
// single and double quotes group; a backslash escapes the next character) and
// run as a separate ui-core process, so one line's options never leak into
// the next. Blank lines and lines starting with '#' are skipped. The command
// line is echoed before its output.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>

#include "command.h"

extern char** environ;

namespace ui_core_tool {
namespace {

// Shell-like word splitting; empty when a quote is left open.
std::optional<std::vector<std::string>> split_words(const std::string& line) {
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

// Runs this executable with `args`; its exit code, or -1 if it could not run
// (then `why` says what stopped it, such as an argument list too long).
int run_self(const std::vector<std::string>& args, std::string& why) {
  std::vector<char*> argv;
  std::string self = "/proc/self/exe";
  argv.push_back(self.data());
  std::vector<std::string> copies = args;
  for (auto& a : copies) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::cout.flush();
  std::fflush(stdout);
  // A command line without inputs would read standard input, which is the
  // batch's own (or the terminal): it reads nothing instead.
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  pid_t pid = 0;
  const int error = posix_spawn(&pid, "/proc/self/exe", &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    why = std::strerror(error);
    return -1;
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) {
      why = std::strerror(errno);
      return -1;
    }
  }
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  why = "the command was stopped by a signal";
  return -1;
}

void setup_batch(CLI::App& app, Outcome& outcome) {
  auto file = std::make_shared<std::string>();
  CLI::App* cmd = app.add_subcommand(
      "batch", "Run a file of ui-core command lines (one per line, '#' comments), e.g. the sample");
  cmd->add_option("file", *file,
                  "The file of command lines; without it (or with '-') standard input");
  cmd->footer(
      "Examples:\n"
      "  ui-core batch examples/sample/session.txt\n"
      "  printf 'node-path a/b\\nunit km --to m\\n' | ui-core batch\n");
  cmd->callback([file, &outcome] {
    const bool use_stdin = file->empty() || *file == "-";
    std::ifstream from_file;
    if (!use_stdin) {
      from_file.open(*file);
      if (!from_file) {
        std::cerr << "error: cannot read " << *file << '\n';
        outcome.exit_code = exit_usage;
        return;
      }
    }
    std::istream& in = use_stdin ? std::cin : from_file;
    const std::string name = use_stdin ? std::string("standard input") : *file;
    std::string line;
    std::size_t number = 0;
    std::size_t ran = 0;
    std::size_t refused = 0;
    while (std::getline(in, line)) {
      ++number;
      const std::size_t first = line.find_first_not_of(" \t\r");
      if (first == std::string::npos || line[first] == '#') continue;
      const auto words = split_words(line);
      if (!words) {
        std::cerr << name << ":" << number << ": error: unterminated quote\n";
        outcome.exit_code = exit_usage;
        return;
      }
      if (words->empty()) continue;
      if ((*words)[0] == "batch") {
        std::cerr << name << ":" << number << ": error: batch files cannot run batch\n";
        outcome.exit_code = exit_usage;
        return;
      }
      std::cout << "$ ui-core " << line << '\n';
      std::string why;
      const int code = run_self(*words, why);
      ++ran;
      if (code < 0) {
        std::cerr << name << ":" << number << ": error: cannot run the command: " << why << '\n';
        outcome.exit_code = exit_usage;
        return;
      }
      if (code == exit_usage) {
        std::cerr << name << ":" << number << ": error: bad command line (exit " << code << ")\n";
        outcome.exit_code = exit_usage;
        return;
      }
      if (code != exit_ok) ++refused;
      std::cout << '\n';
    }
    std::cout << ran << " command(s) run, " << refused << " refused their input\n";
  });
}

const Registration batch_registration{"batch", &setup_batch};

}  // namespace
}  // namespace ui_core_tool
