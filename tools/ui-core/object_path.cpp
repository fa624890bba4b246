// ui-core object-path and subscript: what the library makes of object path
// texts and of subscript texts.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "ui/core/object_path.h"

namespace ui_core_tool {
namespace {

void print_elements(const ui::core::ObjectPath& path) {
  std::cout << "elements: " << path.size() << '\n';
  std::size_t i = 0;
  for (const ui::core::ObjectPathElement& e : path) {
    std::cout << "  [" << i++ << "] " << (e.id() == 0 ? "subscript " : "name      ")
              << to_out(ui::core::to_string(e)) << "  (hash " << ui::core::hash_value(e) << ")\n";
  }
  std::cout << "text form: " << to_out(static_cast<krel::ustring>(path)) << '\n';
}

void setup_object_path(CLI::App& app, Outcome& outcome) {
  struct Options {
    std::vector<std::string> texts;
    bool partial = false;
    bool names_only = false;
  };
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "object-path",
      "Parse object path texts (names and subscripts joined by /) and print their elements");
  cmd->add_option("texts", opts->texts, "Object path texts, such as 'a///1, 2/b'")->required();
  cmd->add_flag("--partial", opts->partial,
                "Parse as far as possible and print the unparsed rest instead of refusing it");
  cmd->add_flag("--names-only", opts->names_only,
                "Accept names only; a subscript segment ends the path");
  cmd->callback([opts, &outcome] {
    for (const std::string& arg : opts->texts) {
      const krel::ustring text = from_arg(arg);
      std::cout << "input: " << arg << '\n';
      try {
        if (opts->partial) {
          const auto [path, rest] = opts->names_only ? ui::core::to_partial_name_path(text)
                                                     : ui::core::to_partial_path(text);
          print_elements(path);
          std::cout << "rest: " << to_out(rest) << '\n';
        } else {
          print_elements(opts->names_only ? ui::core::to_name_path(text)
                                          : ui::core::to_object_path(text));
        }
      } catch (const krel::MessageException& e) {
        report(e);
        outcome.exit_code = exit_refused;
      }
    }
  });
}

void setup_subscript(CLI::App& app, Outcome& outcome) {
  auto text = std::make_shared<std::string>();
  CLI::App* cmd = app.add_subcommand(
      "subscript", "Parse an object path subscript text (//2, 3) and print its values");
  cmd->add_option("text", *text, "Subscript text, such as '//2, 3'")->required();
  cmd->callback([text, &outcome] {
    try {
      const ui::core::ObjectPathSubscript subscript(from_arg(*text));
      std::cout << "count: " << subscript.size() << '\n' << "values:";
      for (unsigned long v : static_cast<std::vector<unsigned long>>(subscript)) {
        std::cout << ' ' << v;
      }
      std::cout << '\n'
                << "text form: " << to_out(static_cast<krel::ustring>(subscript)) << '\n'
                << "hash: " << ui::core::hash_value(ui::core::ObjectPathElement(subscript)) << '\n';
    } catch (const krel::MessageException& e) {
      report(e);
      outcome.exit_code = exit_refused;
    }
  });
}

const Registration object_path_registration{"object-path", &setup_object_path};
const Registration subscript_registration{"subscript", &setup_subscript};

}  // namespace
}  // namespace ui_core_tool
