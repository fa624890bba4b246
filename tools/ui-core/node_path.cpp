// ui-core node-path: how node path texts parse, print back and relate.
//
//   ui-core node-path 'Body//Frame/mass' '/mass'
//   ui-core node-path --relative-to Body//Frame 'Body//Frame/mass'
//   ui-core node-path --json --file paths.txt

#include <memory>
#include <optional>
#include <string>

#include "command.h"
#include "ui/core/node_path.h"

namespace ui_core_tool {
namespace {

using ui::core::NodeId;
using ui::core::NodePath;

void describe(const Input& input, Result& out, const std::optional<NodePath>& base) {
  std::optional<NodePath> parsed;
  try {
    parsed.emplace(input.text);
  } catch (const krel::MessageException&) {
    out.report(quoted(input.text) + " is not a valid node path");
    throw;
  }
  const NodePath& path = *parsed;
  const char* const noun = path.size() == 1 ? " identifier" : " identifiers";
  std::string report =
      quoted(input.text) + " is a valid node path with " + std::to_string(path.size()) + noun;
  std::string line = std::to_string(path.size()) + noun;
  auto ids = nlohmann::ordered_json::array();
  const char* separator = ": ";
  for (const NodeId& id : path) {
    report += "\n  id " + std::to_string(ids.size() + 1) + ": " + quoted(id.ustring());
    line += separator + quoted(id.ustring());
    separator = " ";
    ids.push_back(to_out(id.ustring()));
  }
  out.add({"ids", std::move(ids), std::move(report), std::move(line)});
  out.add({"text", to_out(path.ustring()), "  text form: " + quoted(path.ustring()), std::nullopt});
  if (base) {
    const std::optional<NodePath> rest = ui::core::relpath(path, *base);
    const std::string shown = rest ? quoted(rest->ustring()) : std::string("not a prefix");
    out.add({"relative",
             rest ? nlohmann::ordered_json(to_out(rest->ustring())) : nlohmann::ordered_json(),
             "  relative to " + quoted(base->ustring()) + ": " + shown, "relative: " + shown});
  }
}

void setup_node_path(CLI::App& app, CommandState& state) {
  auto base_text = state.fresh<std::optional<std::string>>();
  CLI::App* cmd = app.add_subcommand(
      "node-path", "Parse node path texts: validity, identifiers (escapes kept) and text form");
  auto io = add_inputs(cmd, state,
                       {"texts", "Node path texts, e.g. 'Body//Frame/mass'",
                        "  ui-core node-path 'Body//Frame/mass' /mass\n"
                        "  ui-core node-path --relative-to a/b a/b/c a/x\n"
                        "  ui-core node-path --file paths.txt            # one line per path\n"
                        "  ui-core node-path --json < paths.txt | jq -c .ids\n"
                        "  ui-core node-path --locale de_DE.UTF-8 a/\n"});
  cmd->add_option("--relative-to", *base_text,
                  "Also print the rest of each path after this base path (relpath)");
  cmd->callback([io, base_text, &state] {
    // An invalid base is bad usage, reported before any text is looked at.
    std::optional<NodePath> base;
    if (*base_text) {
      base = read_option("--relative-to", [&] { return NodePath(from_arg(**base_text)); });
    }
    state.exit_code =
        run_inputs(*io, [&base](const Input& input, Result& out) { describe(input, out, base); });
  });
}

const Registration node_path_registration{"node-path", &setup_node_path};

}  // namespace
}  // namespace ui_core_tool
