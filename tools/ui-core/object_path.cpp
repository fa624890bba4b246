// ui-core object-path and subscript: what the library makes of object path
// texts and of subscript texts.
//
//   ui-core object-path 'a///1, 2/b'
//   ui-core object-path --partial --json --file paths.txt
//   ui-core subscript '//2, 3'

#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "ui/core/object_path.h"

namespace ui_core_tool {
namespace {

using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathSubscript;

std::string values_text(const ObjectPathSubscript& subscript) {
  std::string s;
  for (std::size_t k = 0; k < subscript.size(); ++k) {
    if (k != 0) s += ' ';
    s += std::to_string(subscript(k));
  }
  return s;
}

void add_path(Result& out, const ObjectPath& path) {
  const char* const noun = path.size() == 1 ? " element" : " elements";
  std::string report = "elements: " + std::to_string(path.size());
  std::string line = std::to_string(path.size()) + noun;
  auto elements = nlohmann::ordered_json::array();
  const char* separator = ": ";
  for (const ObjectPathElement& e : path) {
    const ObjectPathSubscript* subscript = e.as_subscript();
    const krel::ustring text = ui::core::to_string(e);
    report += "\n  [" + std::to_string(elements.size()) + "] ";
    report += subscript != nullptr ? "subscript " : "name      ";
    report += to_out(text) + "  (hash " + std::to_string(ui::core::hash_value(e)) + ")";
    line += separator;
    separator = "; ";
    line += (subscript != nullptr ? "subscript " : "name ") + quoted(text);
    auto element = nlohmann::ordered_json::object();
    if (subscript != nullptr) {
      element["kind"] = "subscript";
      element["values"] = values_json(*subscript);
      element["text"] = to_out(static_cast<krel::ustring>(*subscript));
    } else {
      element["kind"] = "name";
      element["name"] = to_out(text);
    }
    elements.push_back(std::move(element));
  }
  out.add({"elements", std::move(elements), std::move(report), std::move(line)});
  const std::string text = to_out(static_cast<krel::ustring>(path));
  out.add({"text", text, "text form: " + text, std::nullopt});
}

void add_rest(Result& out, const krel::ustring& rest) {
  out.add({"rest", to_out(rest), "rest: " + to_out(rest), "rest: " + quoted(rest)});
}

void setup_object_path(CLI::App& app, CommandState& state) {
  struct Options {
    bool partial = false;
    bool names_only = false;
  };
  auto opts = state.fresh<Options>();
  CLI::App* cmd = app.add_subcommand(
      "object-path",
      "Parse object path texts (names and subscripts joined by /) and print their elements");
  auto io = add_inputs(cmd, state,
                       {"texts", "Object path texts, such as 'a///1, 2/b'",
                        "  ui-core object-path 'a///1, 2/b' a//b/c\n"
                        "  ui-core object-path --partial 'a///b'\n"
                        "  ui-core object-path --json --file paths.txt\n"
                        "  printf 'a/b\\n//3/x\\n' | ui-core object-path --names-only\n"});
  cmd->add_flag("--partial", opts->partial,
                "Parse as far as possible and print the unparsed rest instead of refusing it");
  cmd->add_flag("--names-only", opts->names_only,
                "Accept names only; a subscript segment ends the path");
  cmd->callback([opts, io, &state] {
    state.exit_code = run_inputs(*io, [opts](const Input& input, Result& out) {
      out.report("input: " + std::string(input.bytes));
      if (opts->partial) {
        const auto [path, rest] = opts->names_only ? ui::core::to_partial_name_path(input.text)
                                                   : ui::core::to_partial_path(input.text);
        add_path(out, path);
        add_rest(out, rest);
      } else {
        add_path(out, opts->names_only ? ui::core::to_name_path(input.text)
                                       : ui::core::to_object_path(input.text));
      }
    });
  });
}

void setup_subscript(CLI::App& app, CommandState& state) {
  CLI::App* cmd = app.add_subcommand(
      "subscript", "Parse object path subscript texts (//2, 3) and print their values");
  auto io = add_inputs(cmd, state,
                       {"texts", "Subscript texts, such as '//2, 3'",
                        "  ui-core subscript '// 2 ,3'\n"
                        "  ui-core subscript --json //1 '//4, 5, 6'\n"
                        "  ui-core subscript --file subscripts.txt\n"});
  cmd->callback([io, &state] {
    // Several arguments each get a heading; a single one prints its report alone.
    const bool headings = io->args.size() > 1;
    state.exit_code = run_inputs(*io, [headings](const Input& input, Result& out) {
      const ObjectPathSubscript subscript(input.text);
      const std::string text = to_out(static_cast<krel::ustring>(subscript));
      if (headings) out.report("input: " + std::string(input.bytes));
      out.add({"values", values_json(subscript),
               "count: " + std::to_string(subscript.size()) +
                   "\nvalues:" + (subscript.size() != 0 ? " " : "") + values_text(subscript),
               "values: " + values_text(subscript)});
      out.add({"text", text,
               "text form: " + text +
                   "\nhash: " + std::to_string(ui::core::hash_value(ObjectPathElement(subscript))),
               "text: " + quoted(static_cast<krel::ustring>(subscript))});
    });
  });
}

const Registration object_path_registration{"object-path", &setup_object_path};
const Registration subscript_registration{"subscript", &setup_subscript};

}  // namespace
}  // namespace ui_core_tool
