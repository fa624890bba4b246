// ui-core: inspect what the ui_core library makes of texts, sizes and units.
//
// Every subcommand reads its inputs (UTF-8) from the command line, a file or
// standard input, runs each through the library and prints the result (see
// command.h for the shared driver). A refused input prints the message
// identifier and its text in the user's locale and exits with 1, after the
// remaining inputs were processed; bad usage exits with 2.

#include <algorithm>
#include <clocale>
#include <iostream>
#include <locale>
#include <vector>

#include "command.h"
#include "line_io.h"
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

// The user's locale from the environment, for message texts and the local
// encoding. A locale the system does not have leaves the "C" locale in place.
void adopt_environment_locale() {
  try {
    std::locale::global(std::locale(""));
  } catch (const std::runtime_error&) {
    std::setlocale(LC_ALL, "C");
  }
}

}  // namespace

Registration::Registration(std::string_view name, Setup setup) {
  registry().push_back(Entry{name, setup});
}

krel::ustring from_arg(const std::string& arg) {
  // Converting would quietly turn bad bytes into U+FFFD and the tool would
  // answer for a text nobody typed, so such an argument is refused instead.
  krel::ustring text;
  if (decode_utf8(arg, text) != std::string_view::npos) {
    throw std::runtime_error("the argument '" + printable(arg) + "' is not valid UTF-8");
  }
  return text;
}

std::string to_out(const krel::ustring& text) {
  std::string out;
  out.reserve(text.size());
  append_utf8(out, text);
  return out;
}

}  // namespace ui_core_tool

int main(int argc, char** argv) {
  using namespace ui_core_tool;
  adopt_environment_locale();

  CLI::App app{"ui-core: node paths, object paths, indices, texts and units of the ui_core library",
               "ui-core"};
  app.set_version_flag("--version",
                       std::string("ui-core ") + std::string(ui::core::version_string()));
  app.require_subcommand(1);
  app.failure_message(CLI::FailureMessage::help);
  app.footer(
      "Every subcommand takes its inputs as arguments, from a file (--file) or from standard "
      "input, one per line; --json writes JSON Lines; --locale picks the message language. "
      "'ui-core <subcommand> --help' shows examples.\n\n"
      "Examples:\n"
      "  ui-core node-path Body//Frame/mass\n"
      "  ui-core node-path --json --file paths.txt > paths.jsonl\n"
      "  printf '//2, 3\\n//3, 4\\n' | ui-core sub2ind --size 3x4\n"
      "  ui-core explain --locale de kalder:common:ui:core:kernel:path:InvalidNodePath /mass\n");

  Outcome outcome;
  auto& entries = registry();
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.name < b.name; });
  for (const Entry& e : entries) e.setup(app, outcome);

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return exit_usage;
  } catch (const InputError& e) {
    std::cerr << "error: " << e.text() << "\nRun with --help for more information.\n";
    return exit_usage;
  } catch (const krel::MessageException& e) {
    report(e);
    return exit_refused;
  } catch (const std::exception& e) {
    std::cerr << "error: " << e.what() << '\n';
    return exit_refused;
  }
  return outcome.exit_code;
}
