// ui-core sub2ind, ind2sub, lang-path: array subscripts, linear indices and
// language paths.
//
// Sizes are written as their dimensions joined by "x" ("3x4", "2x3x4", "5").
// A subscript is written in its path text form ("//2, 3") or plainly as its
// values joined by commas ("2,3" or "2, 3"), to which "//" is prefixed.
// Indices are 0-based, subscripts 1-based, storage column-major.

#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
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
std::optional<std::size_t> parse_count(const std::string& text) {
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return {};
  std::size_t value = 0;
  for (char c : text) {
    const auto digit = static_cast<std::size_t>(c - '0');
    if (value > (std::numeric_limits<std::size_t>::max() - digit) / 10) return {};
    value = value * 10 + digit;
  }
  return value;
}

krel::ArraySize parse_size(const std::string& text) {
  std::vector<std::size_t> dims;
  std::size_t start = 0;
  while (true) {
    const std::size_t x = text.find('x', start);
    const std::string piece = text.substr(start, x == std::string::npos ? x : x - start);
    const auto dim = parse_count(piece);
    if (!dim) {
      throw CLI::ValidationError("size",
                                 "expected dimensions joined by 'x', e.g. 3x4, got '" + text + "'");
    }
    dims.push_back(*dim);
    if (x == std::string::npos) break;
    start = x + 1;
  }
  return krel::ArraySize(dims.data(), dims.size());
}

std::size_t parse_index(const std::string& text) {
  const auto index = parse_count(text);
  if (!index) {
    throw CLI::ValidationError("index", "expected a 0-based decimal index, got '" + text + "'");
  }
  return *index;
}

// The subscript's path text: as given when it starts with "//", else with
// "//" in front. The subscript's own parser then refuses anything else.
ui::core::ObjectPathSubscript parse_subscript(const std::string& text) {
  const std::string path_text = text.rfind("//", 0) == 0 ? text : "//" + text;
  return ui::core::ObjectPathSubscript(from_arg(path_text));
}

void setup_conversion(CLI::App& app, Outcome& /*outcome*/) {
  struct Options {
    std::string subscript;
    std::string index;
    std::string size;
    std::string path;
  };
  auto opts = std::make_shared<Options>();

  CLI::App* sub2ind = app.add_subcommand(
      "sub2ind", "Print the 0-based column-major index of 1-based subscripts into an array");
  sub2ind->add_option("subscript", opts->subscript, "Subscripts, e.g. \"//2, 3\" or 2,3")
      ->required();
  sub2ind->add_option("size", opts->size, "Array size, e.g. 3x4")->required();
  sub2ind->callback([opts] {
    const krel::ArraySize size = parse_size(opts->size);
    const auto index = ui::core::sub_to_ind(parse_subscript(opts->subscript), size);
    std::cout << index.index() << '\n';
  });

  CLI::App* ind2sub = app.add_subcommand(
      "ind2sub", "Print the 1-based subscripts of a 0-based column-major index into an array");
  ind2sub->add_option("index", opts->index, "0-based linear index, e.g. 7")->required();
  ind2sub->add_option("size", opts->size, "Array size, e.g. 3x4")->required();
  ind2sub->callback([opts] {
    const std::size_t index = parse_index(opts->index);
    const krel::ArraySize size = parse_size(opts->size);
    const auto sub = ui::core::ind_to_sub(lang::core::PathElementIndex(index, size));
    std::cout << to_out(static_cast<krel::ustring>(sub)) << '\n';
  });

  CLI::App* lang_path = app.add_subcommand(
      "lang-path", "Print the language container and value paths of a node path, and back");
  lang_path->add_option("path", opts->path, "Non-empty node path, e.g. Body//Frame/mass")
      ->required();
  lang_path->callback([opts] {
    const ui::core::NodePath1 path(from_arg(opts->path));
    const lang::core::ContainerPath container =
        ui::core::to_container_path(ui::core::NodePath(path));
    const lang::core::ValuePath value = ui::core::to_value_path(path);
    std::cout << "container path: " << to_out(lang::core::to_user_string(container)) << '\n'
              << "value path: " << to_out(lang::core::to_user_string(value)) << " (head '"
              << to_out(lang::core::to_user_string(value.head())) << "', tail '"
              << to_out(lang::core::to_user_string(value.tail())) << "')\n"
              << "node path: " << to_out(ui::core::to_node_path1(value).ustring()) << '\n';
  });
}

const Registration conversion_registration{"conversion", &setup_conversion};

}  // namespace
}  // namespace ui_core_tool
