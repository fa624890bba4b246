// ui-core: inspect what the ui_core library makes of texts, sizes and units.
//
// Every subcommand reads its input from the command line (UTF-8), runs it
// through the library and prints the result. A refused input prints the
// message identifier and its text in the user's locale and exits with 1; bad
// usage exits with 2.

#include <algorithm>
#include <clocale>
#include <iostream>
#include <locale>
#include <vector>

#include <unicode/ustring.h>

#include "command.h"
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
  // UTF-16 never needs more code units than UTF-8 has bytes.
  krel::ustring text(arg.size(), u'\0');
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  u_strFromUTF8(reinterpret_cast<UChar*>(text.data()), static_cast<int32_t>(text.size()), &length,
                arg.data(), static_cast<int32_t>(arg.size()), &status);
  if (status == U_INVALID_CHAR_FOUND || status == U_ILLEGAL_CHAR_FOUND) {
    std::string shown;
    for (unsigned char c : arg) {
      if (c >= 0x20 && c < 0x7f) {
        shown += static_cast<char>(c);
      } else {
        static constexpr char hex[] = "0123456789abcdef";
        shown += "\\x";
        shown += hex[c >> 4];
        shown += hex[c & 15];
      }
    }
    throw std::runtime_error("the argument '" + shown + "' is not valid UTF-8");
  }
  if (U_FAILURE(status)) throw std::runtime_error("the argument cannot be read as UTF-8");
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string to_out(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

void report(const krel::MessageException& e) {
  std::cerr << "error: " << e.what() << '\n';
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
  } catch (const krel::MessageException& e) {
    report(e);
    return exit_refused;
  } catch (const std::exception& e) {
    std::cerr << "error: " << e.what() << '\n';
    return exit_refused;
  }
  return outcome.exit_code;
}
