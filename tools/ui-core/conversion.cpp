// ui-core sub2ind, ind2sub, lang-path: array subscripts, linear indices and
// language paths.
//
// Sizes are written as their dimensions joined by "x" ("3x4", "2x3x4", "5").
// A subscript is written in its path text form ("//2, 3") or plainly as its
// values joined by commas ("2,3" or "2, 3"), to which "//" is prefixed.
// Indices are 0-based, subscripts 1-based, storage column-major.
//
// With --size every input is a subscript (sub2ind) or an index (ind2sub).
// Without it an input is "<subscript or index> <size>", the size being the
// last word; on the command line the two are separate arguments:
//
//   ui-core sub2ind '//2, 3' 3x4
//   ui-core sub2ind --size 3x4 '//2, 3' 1,1
//   printf '//2, 3 3x4\n7 2x5\n' | ui-core sub2ind

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command.h"
#include "krel/array_size.h"
#include "lang/core/container_path.h"
#include "lang/core/value_path.h"
#include "ui/core/indexing.h"
#include "ui/core/lang_path.h"
#include "ui/core/node_path.h"
#include "ui/core/object_path_subscript.h"

namespace ui_core_tool {
namespace {

// A decimal number that fits in size_t, or nothing.
std::optional<std::size_t> parse_count(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return {};
  std::size_t value = 0;
  for (char c : text) {
    const auto digit = static_cast<std::size_t>(c - '0');
    if (value > (std::numeric_limits<std::size_t>::max() - digit) / 10) return {};
    value = value * 10 + digit;
  }
  return value;
}

krel::ArraySize parse_size(std::string_view text) {
  std::vector<std::size_t> dims;
  std::size_t start = 0;
  while (true) {
    const std::size_t x = text.find('x', start);
    const auto dim = parse_count(text.substr(start, x == std::string_view::npos ? x : x - start));
    if (!dim) {
      const std::string shown(text);
      throw InputError("InvalidSize", {krel::utf8_string_to_ustring(text)});
    }
    dims.push_back(*dim);
    if (x == std::string_view::npos) break;
    start = x + 1;
  }
  return krel::ArraySize(dims.data(), dims.size());
}

std::size_t parse_index(std::string_view text) {
  const auto index = parse_count(text);
  if (!index) {
    throw InputError("InvalidIndex", {krel::utf8_string_to_ustring(text)});
  }
  return *index;
}

// The subscript's path text: as given when it starts with "//", else with
// "//" in front. The subscript's own parser then refuses anything else.
ui::core::ObjectPathSubscript parse_subscript(std::string_view text) {
  const std::string path_text =
      text.substr(0, 2) == "//" ? std::string(text) : "//" + std::string(text);
  return ui::core::ObjectPathSubscript(from_arg(path_text));
}

constexpr std::string_view blanks = " \t";

// "<first> <size>": the size is the last word. Blanks at the end are ignored.
std::pair<std::string_view, std::string_view> split_size(std::string_view input,
                                                         std::string_view what) {
  const std::size_t last = input.find_last_not_of(blanks);
  input = input.substr(0, last == std::string_view::npos ? 0 : last + 1);
  const std::size_t blank = input.find_last_of(blanks);
  if (blank == std::string_view::npos) {
    throw InputError("MissingSize", {krel::utf8_string_to_ustring(input)}, true,
                     {krel::utf8_string_to_ustring(what)});
  }
  std::string_view first = input.substr(0, blank);
  first = first.substr(0, first.find_last_not_of(blanks) + 1);
  return {first, input.substr(blank + 1)};
}

nlohmann::ordered_json size_json(const krel::ArraySize& size) {
  auto dims = nlohmann::ordered_json::array();
  for (const std::size_t d : size) dims.push_back(json_integer(std::uint64_t{d}));
  return dims;
}

// The size given with --size, or nothing; checked before any input is read.
std::optional<krel::ArraySize> fixed_size(const std::string& text, bool given) {
  if (!given) return std::nullopt;
  return read_option("--size", [&] { return parse_size(text); });
}

// The language's text of a container path, value path or value tail.
template <class Path>
std::string user_text(const Path& path) {
  return to_out(lang::core::to_user_string(path));
}

void setup_conversion(CLI::App& app, CommandState& state) {
  {
    auto size_text = state.fresh<std::string>();
    CLI::App* cmd = app.add_subcommand(
        "sub2ind", "Print the 0-based column-major index of 1-based subscripts into an array");
    auto io =
        add_inputs(cmd, state,
                   {"inputs",
                    "Pairs <subscript> <size>, e.g. \"//2, 3\" 3x4, or with --size the subscripts; "
                    "a line of input holds both, the size last",
                    "  ui-core sub2ind '//2, 3' 3x4\n"
                    "  ui-core sub2ind --size 3x4 2,3 '//1, 4'\n"
                    "  printf '//2, 3 3x4\\n4 1x5\\n' | ui-core sub2ind --json\n"});
    CLI::Option* size_option =
        cmd->add_option("--size", *size_text,
                        "The array size of every input, e.g. 3x4; the inputs are then "
                        "subscripts only");
    cmd->callback([io, size_text, size_option, &state] {
      const auto size = fixed_size(*size_text, size_option->count() != 0);
      io->grouping = size ? ArgGrouping::each : ArgGrouping::pairs;
      state.exit_code = run_inputs(*io, [&size](const Input& input, Result& out) {
        std::string_view subscript_text = input.bytes;
        std::optional<krel::ArraySize> line_size;
        if (!size) {
          const auto [first, size_part] = split_size(input.bytes, "subscript");
          subscript_text = first;
          line_size = parse_size(size_part);
        }
        const krel::ArraySize& array = size ? *size : *line_size;
        const ui::core::ObjectPathSubscript subscript = parse_subscript(subscript_text);
        const std::size_t index = ui::core::sub_to_ind(subscript, array).index();
        const std::string shown = std::to_string(index);
        out.json("subscript", values_json(subscript));
        out.json("size", size_json(array));
        out.add({"index", json_integer(std::uint64_t{index}), shown, shown});
      });
    });
  }
  {
    auto size_text = state.fresh<std::string>();
    CLI::App* cmd = app.add_subcommand(
        "ind2sub", "Print the 1-based subscripts of a 0-based column-major index into an array");
    auto io =
        add_inputs(cmd, state,
                   {"inputs",
                    "Pairs <index> <size>, e.g. 7 3x4, or with --size the indices; a line of input "
                    "holds both, the size last",
                    "  ui-core ind2sub 7 3x4\n"
                    "  ui-core ind2sub --size 2x3x4 0 23\n"
                    "  seq 0 11 | ui-core ind2sub --size 3x4 --json\n"});
    CLI::Option* size_option =
        cmd->add_option("--size", *size_text,
                        "The array size of every input, e.g. 3x4; the inputs are then "
                        "indices only");
    cmd->callback([io, size_text, size_option, &state] {
      const auto size = fixed_size(*size_text, size_option->count() != 0);
      io->grouping = size ? ArgGrouping::each : ArgGrouping::pairs;
      state.exit_code = run_inputs(*io, [&size](const Input& input, Result& out) {
        std::string_view index_text = input.bytes;
        std::optional<krel::ArraySize> line_size;
        if (!size) {
          const auto [first, size_part] = split_size(input.bytes, "index");
          index_text = first;
          line_size = parse_size(size_part);
        }
        const krel::ArraySize& array = size ? *size : *line_size;
        const std::size_t index = parse_index(index_text);
        const auto sub = ui::core::ind_to_sub(lang::core::PathElementIndex(index, array));
        out.json("index", json_integer(std::uint64_t{index}));
        out.json("size", size_json(array));
        out.json("subscript", values_json(sub));
        out.text("text", to_out(static_cast<krel::ustring>(sub)));
      });
    });
  }
  {
    CLI::App* cmd = app.add_subcommand(
        "lang-path", "Print the language container and value paths of node paths, and back");
    auto io = add_inputs(cmd, state,
                         {"paths", "Non-empty node paths, e.g. Body//Frame/mass",
                          "  ui-core lang-path Body//Frame/mass\n"
                          "  ui-core lang-path --json a/b/c mass\n"
                          "  ui-core lang-path --file paths.txt\n"});
    cmd->callback([io, &state] {
      state.exit_code = run_inputs(*io, [](const Input& input, Result& out) {
        const ui::core::NodePath1 path(input.text);
        const lang::core::ContainerPath container =
            ui::core::to_container_path(ui::core::NodePath(path));
        const lang::core::ValuePath value = ui::core::to_value_path(path);
        const std::string back = to_out(ui::core::to_node_path1(value).ustring());
        const std::string head = user_text(value.head());
        const std::string tail = user_text(value.tail());
        out.add({"container", user_text(container), "container path: " + user_text(container),
                 "container: " + user_text(container)});
        out.add({"value", user_text(value),
                 "value path: " + user_text(value) + " (head '" + head + "', tail '" + tail + "')",
                 "value: " + user_text(value)});
        out.json("head", head);
        out.json("tail", tail);
        out.add({"node_path", back, "node path: " + back, "node path: " + back});
      });
    });
  }
}

const Registration conversion_registration{"conversion", &setup_conversion};

}  // namespace
}  // namespace ui_core_tool
