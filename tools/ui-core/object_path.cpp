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

void append_values(std::string& s, const ObjectPathSubscript& subscript) {
  for (std::size_t k = 0; k < subscript.size(); ++k) {
    if (k != 0) s += ' ';
    s += std::to_string(subscript(k));
  }
}

void write_path(Record& out, const ObjectPath& path) {
  switch (out.format) {
    case Format::detail: {
      std::string& s = out.text;
      s += "elements: " + std::to_string(path.size()) + "\n";
      std::size_t i = 0;
      for (const ObjectPathElement& e : path) {
        s += "  [" + std::to_string(i++) + "] ";
        s += e.as_subscript() != nullptr ? "subscript " : "name      ";
        append_utf8(s, ui::core::to_string(e));
        s += "  (hash " + std::to_string(ui::core::hash_value(e)) + ")\n";
      }
      s += "text form: ";
      append_utf8(s, static_cast<krel::ustring>(path));
      s += '\n';
      break;
    }
    case Format::line: {
      std::string s = std::to_string(path.size());
      s += path.size() == 1 ? " element" : " elements";
      const char* separator = ": ";
      for (const ObjectPathElement& e : path) {
        s += separator;
        separator = "; ";
        s += e.as_subscript() != nullptr ? "subscript " : "name ";
        append_quoted(s, ui::core::to_string(e));
      }
      add_field(out.text, s);
      break;
    }
    case Format::json: {
      auto elements = nlohmann::ordered_json::array();
      for (const ObjectPathElement& e : path) {
        auto element = nlohmann::ordered_json::object();
        if (const ObjectPathSubscript* subscript = e.as_subscript()) {
          element["kind"] = "subscript";
          element["values"] = values_json(*subscript);
          element["text"] = to_out(static_cast<krel::ustring>(*subscript));
        } else {
          element["kind"] = "name";
          element["name"] = to_out(ui::core::to_string(e));
        }
        elements.push_back(std::move(element));
      }
      out.json["elements"] = std::move(elements);
      out.json["text"] = to_out(static_cast<krel::ustring>(path));
      break;
    }
  }
}

void write_rest(Record& out, const krel::ustring& rest) {
  switch (out.format) {
    case Format::detail:
      out.text += "rest: ";
      append_utf8(out.text, rest);
      out.text += '\n';
      break;
    case Format::line: {
      std::string s = "rest: ";
      append_quoted(s, rest);
      add_field(out.text, s);
      break;
    }
    case Format::json:
      out.json["rest"] = to_out(rest);
      break;
  }
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
    state.exit_code = run_inputs(*io, [opts](const Input& input, Record& out) {
      if (out.format == Format::detail) {
        out.text += "input: ";
        out.text.append(input.bytes);
        out.text += '\n';
      }
      if (opts->partial) {
        const auto [path, rest] = opts->names_only ? ui::core::to_partial_name_path(input.text)
                                                   : ui::core::to_partial_path(input.text);
        write_path(out, path);
        write_rest(out, rest);
      } else {
        write_path(out, opts->names_only ? ui::core::to_name_path(input.text)
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
    state.exit_code = run_inputs(*io, [headings](const Input& input, Record& out) {
      const ObjectPathSubscript subscript(input.text);
      switch (out.format) {
        case Format::detail: {
          std::string& s = out.text;
          if (headings) {
            s += "input: ";
            s.append(input.bytes);
            s += '\n';
          }
          s += "count: " + std::to_string(subscript.size()) + "\nvalues:";
          for (std::size_t k = 0; k < subscript.size(); ++k) {
            s += ' ';
            s += std::to_string(subscript(k));
          }
          s += "\ntext form: ";
          append_utf8(s, static_cast<krel::ustring>(subscript));
          s += "\nhash: " + std::to_string(ui::core::hash_value(ObjectPathElement(subscript))) +
               "\n";
          break;
        }
        case Format::line: {
          std::string s = "values: ";
          append_values(s, subscript);
          add_field(out.text, s);
          s = "text: ";
          append_quoted(s, static_cast<krel::ustring>(subscript));
          add_field(out.text, s);
          break;
        }
        case Format::json:
          out.json["values"] = values_json(subscript);
          out.json["text"] = to_out(static_cast<krel::ustring>(subscript));
          break;
      }
    });
  });
}

const Registration object_path_registration{"object-path", &setup_object_path};
const Registration subscript_registration{"subscript", &setup_subscript};

}  // namespace
}  // namespace ui_core_tool
