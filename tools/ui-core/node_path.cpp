// ui-core node-path: how node path texts parse, print back and relate.
//
//   ui-core node-path 'Body//Frame/mass' '/mass'
//   ui-core node-path --relative-to Body//Frame 'Body//Frame/mass'

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "ui/core/node_path.h"

namespace ui_core_tool {
namespace {

std::string quoted(const krel::ustring& text) {
  return "'" + to_out(text) + "'";
}

// Prints one text's verdict, identifiers and text form; false when refused.
bool describe(const std::string& arg, const std::optional<ui::core::NodePath>& base) {
  const krel::ustring text = from_arg(arg);
  try {
    const ui::core::NodePath path(text);
    std::cout << quoted(text) << " is a valid node path with " << path.size()
              << (path.size() == 1 ? " identifier\n" : " identifiers\n");
    std::size_t n = 0;
    for (const ui::core::NodeId& id : path) {
      std::cout << "  id " << ++n << ": " << quoted(id.ustring()) << '\n';
    }
    std::cout << "  text form: " << quoted(path.ustring()) << '\n';
    if (base) {
      const auto rest = ui::core::relpath(path, *base);
      if (rest) {
        std::cout << "  relative to " << quoted(base->ustring()) << ": " << quoted(rest->ustring())
                  << '\n';
      } else {
        std::cout << "  relative to " << quoted(base->ustring()) << ": not a prefix\n";
      }
    }
    return true;
  } catch (const krel::MessageException& e) {
    std::cout << quoted(text) << " is not a valid node path\n";
    std::cout.flush();
    report(e);
    return false;
  }
}

void setup_node_path(CLI::App& app, Outcome& outcome) {
  struct Options {
    std::vector<std::string> texts;
    std::optional<std::string> base;
  };
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "node-path", "Parse node path texts: validity, identifiers (escapes kept) and text form");
  cmd->add_option("texts", opts->texts, "Node path texts, e.g. 'Body//Frame/mass'")->required();
  cmd->add_option("--relative-to", opts->base,
                  "Also print the rest of each path after this base path (relpath)");
  cmd->callback([opts, &outcome] {
    // An invalid base is refused before any text is looked at (exit 1).
    std::optional<ui::core::NodePath> base;
    if (opts->base) base.emplace(from_arg(*opts->base));
    for (const std::string& arg : opts->texts) {
      if (!describe(arg, base)) outcome.exit_code = exit_refused;
    }
  });
}

const Registration node_path_registration{"node-path", &setup_node_path};

}  // namespace
}  // namespace ui_core_tool
