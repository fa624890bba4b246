// ui-core: inspect what the ui_core library makes of texts, sizes and units.
//
// Every subcommand reads its inputs (UTF-8) from the command line, a file or
// standard input, runs each through the library and prints the result (see
// command.h for the shared driver). A refused input prints the message
// identifier and its text in the user's locale and exits with 1, after the
// remaining inputs were processed; bad usage exits with 2, and a failed read
// or write stops the run with 3.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "command.h"
#include "line_io.h"
#include "render.h"
#include "ui/core/version.h"

namespace ui_core_tool {
namespace {

struct Entry {
  std::string_view name;
  Setup setup;
};

std::vector<Entry>& registry() {
  static std::vector<Entry> entries;
  return entries;
}

// The families in name order, so that --help lists the subcommands the same
// way whatever order the linker initialised the files in.
const std::vector<Entry>& families() {
  static const std::vector<Entry> sorted = [] {
    std::vector<Entry> entries = registry();
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
  }();
  return sorted;
}

int& input_slot() {
  static int fd = STDIN_FILENO;
  return fd;
}

// Makes `fd` the standard input of the commands run in its lifetime.
class InputScope {
 public:
  explicit InputScope(int fd) : saved_(input_slot()) { input_slot() = fd; }
  InputScope(const InputScope&) = delete;
  InputScope& operator=(const InputScope&) = delete;
  ~InputScope() { input_slot() = saved_; }

 private:
  int saved_;
};

void build(CLI::App& app, CommandState& state) {
  app.set_version_flag("--version",
                       std::string("ui-core ") + std::string(ui::core::version_string()));
  app.require_subcommand(1);
  app.footer(
      "Every subcommand takes its inputs as arguments, from a file (--file) or from standard "
      "input, one per line; --json writes JSON Lines; --locale picks the message language. "
      "'ui-core <subcommand> --help' shows examples. Exit code: 0 all inputs accepted, 1 some "
      "refused, 2 bad usage, 3 reading or writing failed.\n\n"
      "Examples:\n"
      "  ui-core node-path Body//Frame/mass\n"
      "  ui-core node-path --json --file paths.txt > paths.jsonl\n"
      "  printf '//2, 3\\n//3, 4\\n' | ui-core sub2ind --size 3x4\n"
      "  ui-core explain --locale de kalder:common:ui:core:kernel:path:InvalidNodePath /mass\n");
  for (const Entry& e : families()) e.setup(app, state);
}

// Help and version texts, written like every other output, so that a
// failed write shows in the exit code.
int show(const CLI::App& app, const CLI::Error& e) {
  std::ostringstream out;
  std::ostringstream err;
  const int code = app.exit(e, out, err);
  standard_output().text() += out.str();
  if (!err.str().empty()) write_error(err.str());
  return code;
}

// The number of single-character edits (insert, delete, replace, or swap two
// neighbours) that turn `a` into `b`: "--josn" is one from "--json".
std::size_t edit_distance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replace = a[i - 1] == b[j - 1] ? 0 : 1;
      d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + replace});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
      }
    }
  }
  return d[a.size()][b.size()];
}

// What a word given to `app` could have been: its options, and its
// subcommands. The first of the closest wins, options before subcommands.
std::string closest_valid_word(const CLI::App& app, std::string_view word) {
  std::vector<std::string> words;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) words.push_back("--" + name);
    for (const std::string& name : option->get_snames()) words.push_back("-" + name);
  }
  for (const CLI::App* sub : app.get_subcommands({})) words.push_back(sub->get_name());
  std::string best;
  std::size_t best_distance = 0;
  for (const std::string& candidate : words) {
    const std::size_t d = edit_distance(word, candidate);
    if (best.empty() || d < best_distance) {
      best = candidate;
      best_distance = d;
    }
  }
  return best;
}

// Bad usage: one line naming the word the parser could not place and what
// was probably meant, or the parser's own message for any other mistake.
int usage_error(CLI::App& app, const CLI::ParseError& e, bool no_words) {
  if (no_words) {
    write_error(app.help() + "\nerror: a subcommand is required\n");
    return exit_usage;
  }
  std::vector<const CLI::App*> apps{&app};
  for (const CLI::App* sub : app.get_subcommands()) apps.push_back(sub);
  for (const CLI::App* owner : apps) {
    const std::vector<std::string> rest = owner->remaining(false);
    if (rest.empty()) continue;
    const std::string& word = rest.front();
    const bool option = word.size() > 1 && word.front() == '-';
    if (!option && owner != &app) {
      write_error("error: unexpected argument '" + escaped(word) + "' to " + owner->get_name() +
                  "\n");
      return exit_usage;
    }
    // "--jsno=x" is the option "--jsno" with a value.
    const std::string_view name =
        std::string_view(word).substr(0, option ? word.find('=') : word.npos);
    const std::string shown = escaped(name);
    const std::string what = owner != &app ? owner->get_name() + " has no option '"
                             : option      ? "unknown option '"
                                           : "unknown subcommand '";
    write_error("error: " + what + shown + "' (did you mean '" + closest_valid_word(*owner, name) +
                "'?)\n");
    return exit_usage;
  }
  write_error("error: " + std::string(e.what()) + "\nRun with --help for more information.\n");
  return exit_usage;
}

// The run stops at a failed write; standard error says so if it still can.
int output_failed(const OutputError& e) noexcept {
  try {
    write_error("error: " + std::string(e.what()) + "\n");
  } catch (...) {
    // Standard error failed too: the exit code is all that is left.
  }
  return exit_io;
}

// A standard descriptor the caller closed must stay unusable: left free, the
// next file the tool opens would take its number, and for 1 receive the
// results. /dev/null opened the wrong way round takes the number, so that
// reading standard input or writing standard output fails as it would have.
void hold_closed_standard_descriptors() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
    const int held = ::open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (held >= 0 && held != fd) ::close(held);
  }
}

}  // namespace

Registration::Registration(std::string_view name, Setup setup) {
  registry().push_back(Entry{name, setup});
}

int command_input() noexcept {
  return input_slot();
}

CommandLine::CommandLine()
    : app_("ui-core: node paths, object paths, indices, texts and units of the ui_core library",
           "ui-core") {
  build(app_, state_);
}

int CommandLine::run(const std::vector<std::string>& words, int input_fd) {
  const InputScope input(input_fd);
  try {
    select_message_locale(environment_locale());
    state_.reset();
    try {
      std::vector<std::string> args(words.rbegin(), words.rend());  // the order CLI11 takes
      app_.parse(args);  // forgets what an earlier parse found
      return state_.exit_code;
    } catch (const CLI::CallForHelp& e) {
      return show(app_, e);
    } catch (const CLI::CallForAllHelp& e) {
      return show(app_, e);
    } catch (const CLI::CallForVersion& e) {
      return show(app_, e);
    } catch (const CLI::ParseError& e) {
      return usage_error(app_, e, words.empty());
    } catch (const InputError& e) {
      write_error("error: " + e.text() + "\nRun with --help for more information.\n");
      return exit_usage;
    } catch (const krel::MessageException& e) {
      report(e);
      return exit_refused;
    } catch (const OutputError&) {
      throw;
    } catch (const std::exception& e) {
      write_error("error: " + std::string(e.what()) + "\n");
      return exit_refused;
    }
  } catch (const OutputError& e) {
    return output_failed(e);
  }
}

krel::ustring from_arg(const std::string& arg) {
  // Converting would quietly turn bad bytes into U+FFFD and the tool would
  // answer for a text nobody typed, so such an argument is refused instead.
  if (krel::first_invalid_utf8(arg) != std::string_view::npos) {
    throw std::runtime_error("the argument '" + escaped(arg) + "' is not valid UTF-8");
  }
  return krel::utf8_string_to_ustring(arg);
}

std::string to_out(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

}  // namespace ui_core_tool

int main(int argc, char** argv) {
  using namespace ui_core_tool;
  hold_closed_standard_descriptors();
  const std::vector<std::string> words(argv + 1, argv + argc);
  int code = CommandLine().run(words, STDIN_FILENO);
  if (code != exit_io) {
    try {
      standard_output().flush();
    } catch (const OutputError& e) {
      code = output_failed(e);
    }
  }
  return code;
}
