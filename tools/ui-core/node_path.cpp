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

void describe(const Input& input, Record& out, const std::optional<NodePath>& base) {
  std::optional<NodePath> parsed;
  try {
    parsed.emplace(input.text);
  } catch (const krel::MessageException&) {
    if (out.format == Format::detail) {
      append_quoted(out.text, input.text);
      out.text += " is not a valid node path\n";
    }
    throw;
  }
  const NodePath& path = *parsed;
  std::optional<NodePath> rest;
  if (base) rest = ui::core::relpath(path, *base);

  switch (out.format) {
    case Format::detail: {
      std::string& s = out.text;
      append_quoted(s, input.text);
      s += " is a valid node path with ";
      s += std::to_string(path.size());
      s += path.size() == 1 ? " identifier\n" : " identifiers\n";
      std::size_t n = 0;
      for (const NodeId& id : path) {
        s += "  id ";
        s += std::to_string(++n);
        s += ": ";
        append_quoted(s, id.ustring());
        s += '\n';
      }
      s += "  text form: ";
      append_quoted(s, path.ustring());
      s += '\n';
      if (base) {
        s += "  relative to ";
        append_quoted(s, base->ustring());
        s += ": ";
        if (rest) {
          append_quoted(s, rest->ustring());
        } else {
          s += "not a prefix";
        }
        s += '\n';
      }
      break;
    }
    case Format::line: {
      std::string s = std::to_string(path.size());
      s += path.size() == 1 ? " identifier" : " identifiers";
      const char* separator = ": ";
      for (const NodeId& id : path) {
        s += separator;
        separator = " ";
        append_quoted(s, id.ustring());
      }
      add_field(out.text, s);
      if (base) {
        s = "relative: ";
        if (rest) {
          append_quoted(s, rest->ustring());
        } else {
          s += "not a prefix";
        }
        add_field(out.text, s);
      }
      break;
    }
    case Format::json: {
      auto ids = nlohmann::ordered_json::array();
      for (const NodeId& id : path) ids.push_back(to_out(id.ustring()));
      out.json["ids"] = std::move(ids);
      out.json["text"] = to_out(path.ustring());
      if (base) {
        out.json["relative"] =
            rest ? nlohmann::ordered_json(to_out(rest->ustring())) : nlohmann::ordered_json();
      }
      break;
    }
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
        run_inputs(*io, [&base](const Input& input, Record& out) { describe(input, out, base); });
  });
}

const Registration node_path_registration{"node-path", &setup_node_path};

}  // namespace
}  // namespace ui_core_tool
