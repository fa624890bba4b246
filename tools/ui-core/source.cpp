// ui-core source: a Source made by the installed bundles, printed.

#include <charconv>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "command.h"
#include "krel/bundles.h"
#include "krel/location.h"
#include "ui/core/errors.h"
#include "ui/core/source.h"

namespace ui_core_tool {
namespace {

std::optional<std::uint32_t> parse_number(const std::string& text) {
  std::uint32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || ptr != end) return std::nullopt;
  return value;
}

// FILE:LINE:COL, split at the last two colons so that FILE may hold colons.
krel::Location parse_location(const std::string& text) {
  const std::size_t col_colon = text.rfind(':');
  const std::size_t line_colon = col_colon == std::string::npos || col_colon == 0
                                     ? std::string::npos
                                     : text.rfind(':', col_colon - 1);
  if (line_colon == std::string::npos) {
    throw CLI::ValidationError("--location", "expected FILE:LINE:COL, got '" + text + "'");
  }
  const auto line = parse_number(text.substr(line_colon + 1, col_colon - line_colon - 1));
  const auto column = parse_number(text.substr(col_colon + 1));
  if (!line || !column) {
    throw CLI::ValidationError("--location",
                               "LINE and COL must be whole numbers below 2^32, in '" + text + "'");
  }
  return krel::Location(from_arg(text.substr(0, line_colon)), *line, *column);
}

void setup_source(CLI::App& app, Outcome& outcome) {
  struct Options {
    std::string location;
    std::string block;
    bool open_dialog = false;
  };
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "source", "Create a source through the installed service bundles and print it");
  CLI::Option* location =
      cmd->add_option("--location", opts->location, "A file position, FILE:LINE:COL");
  CLI::Option* block = cmd->add_option("--block", opts->block, "The id of a block");
  CLI::Option* dialog = cmd->add_flag("--open-dialog", opts->open_dialog,
                                      "With --block: the source that opens the block's dialog");
  location->excludes(block);
  dialog->needs(block);
  cmd->callback([opts, location, block, &outcome] {
    if (location->count() == 0 && block->count() == 0) {
      throw CLI::ValidationError("source", "give --location FILE:LINE:COL or --block ID");
    }
    boost::shared_ptr<ui::core::Source> source;
    try {
      if (location->count() != 0) {
        source = ui::core::create_source(parse_location(opts->location));
      } else if (opts->open_dialog) {
        source = ui::core::create_source(krel::DravikId(from_arg(opts->block)), true);
      } else {
        source = ui::core::create_source(krel::DravikId(from_arg(opts->block)));
      }
    } catch (const krel::MessageException& e) {
      if (!ui::core::is_error(e, ui::core::ErrorId::CannotCreateSource)) throw;
      report(e);
      std::cerr << "note: no bundle of the set kalder_ui_create_source provides this service; "
                   "folders searched:";
      const auto path = krel::bundle_search_path();
      if (path.empty()) std::cerr << " none";
      for (const auto& folder : path) std::cerr << ' ' << folder.string();
      std::cerr << '\n';
      outcome.exit_code = exit_refused;
      return;
    }
    if (!source) {
      std::cout << "(the service made no source for this key)\n";
      return;
    }
    std::cout << *source << '\n';
  });
}

const Registration source_registration{"source", &setup_source};

}  // namespace
}  // namespace ui_core_tool
