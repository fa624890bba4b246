// ui-core source: Sources made by the installed bundles, printed.
//
//   ui-core source --location model/plant.model:12:5
//   ui-core source --kind block model/Sub/Gain model/Sub/Sum
//   ui-core source --kind dialog --json --file blocks.txt

#include <charconv>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "command.h"
#include "krel/bundles.h"
#include "krel/location.h"
#include "line_io.h"
#include "ui/core/errors.h"
#include "ui/core/source.h"

namespace ui_core_tool {
namespace {

enum class Kind { location, block, dialog };

std::optional<std::uint32_t> parse_number(std::string_view text) {
  std::uint32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || ptr != end) return std::nullopt;
  return value;
}

// FILE:LINE:COL, split at the last two colons so that FILE may hold colons.
krel::Location parse_location(std::string_view text) {
  const std::size_t col_colon = text.rfind(':');
  const std::size_t line_colon = col_colon == std::string_view::npos || col_colon == 0
                                     ? std::string_view::npos
                                     : text.rfind(':', col_colon - 1);
  // One key for both problems; the text says which part is wrong.
  const auto refuse = [text](const char16_t* problem) {
    return InputError("InvalidLocation", {krel::utf8_string_to_ustring(text)}, true,
                      {krel::ustring(problem)});
  };
  if (line_colon == std::string_view::npos) throw refuse(u"form");
  const auto line = parse_number(text.substr(line_colon + 1, col_colon - line_colon - 1));
  const auto column = parse_number(text.substr(col_colon + 1));
  if (!line || !column) throw refuse(u"range");
  return krel::Location(from_arg(std::string(text.substr(0, line_colon))), *line, *column);
}

// Where the bundles were looked for: the likely reason no source could be made.
void note_bundle_search(const krel::MessageException& e) {
  if (!ui::core::is_error(e, ui::core::ErrorId::CannotCreateSource)) return;
  std::string note =
      "note: no bundle of the set kalder_ui_create_source provides this service; folders "
      "searched:";
  const auto path = krel::bundle_search_path();
  if (path.empty()) note += " none";
  for (const auto& folder : path) note += ' ' + folder.string();
  write_error(note + '\n');
}

void setup_source(CLI::App& app, CommandState& state) {
  struct Options {
    std::string location;
    std::string block;
    bool open_dialog = false;
    Kind kind = Kind::location;
  };
  auto opts = state.fresh<Options>();
  CLI::App* cmd = app.add_subcommand(
      "source", "Create sources through the installed service bundles and print them");
  auto io = add_inputs(
      cmd, state,
      {"keys", "Keys of the kind --kind: file positions FILE:LINE:COL (the default), or block ids",
       "  ui-core source --location model/plant.model:12:5\n"
       "  ui-core source --block model/Sub/Gain --open-dialog\n"
       "  ui-core source a.model:1:1 b.model:20:3\n"
       "  ui-core source --kind block --json --file blocks.txt\n"});
  CLI::Option* location =
      cmd->add_option("--location", opts->location, "One file position, FILE:LINE:COL");
  CLI::Option* block = cmd->add_option("--block", opts->block, "The id of one block");
  CLI::Option* dialog = cmd->add_flag("--open-dialog", opts->open_dialog,
                                      "With --block: the source that opens the block's dialog");
  CLI::Option* kind =
      cmd->add_option("--kind", opts->kind,
                      "What the keys are: location (FILE:LINE:COL), block (a block id) or "
                      "dialog (a block id, the source opening its dialog)")
          ->transform(CLI::CheckedTransformer(
              std::map<std::string, Kind>{
                  {"location", Kind::location}, {"block", Kind::block}, {"dialog", Kind::dialog}},
              CLI::ignore_case));
  location->excludes(block);
  dialog->needs(block);
  kind->excludes(location);
  kind->excludes(block);
  cmd->callback([opts, io, location, block, &state] {
    Kind key_kind = opts->kind;
    if (location->count() != 0 || block->count() != 0) {
      if (!io->args.empty() || !io->file.empty()) {
        throw CLI::ValidationError("source",
                                   "give one key with --location or --block, or keys as "
                                   "arguments or with --file, not both");
      }
      if (location->count() != 0) {
        io->args = {opts->location};
      } else {
        io->args = {opts->block};
        key_kind = opts->open_dialog ? Kind::dialog : Kind::block;
      }
    }
    state.exit_code = run_inputs(
        *io,
        [key_kind](const Input& input, Result& out) {
          boost::shared_ptr<ui::core::Source> source;
          switch (key_kind) {
            case Kind::location:
              source = ui::core::create_source(parse_location(input.bytes));
              break;
            case Kind::block:
              source = ui::core::create_source(krel::DravikId(input.text));
              break;
            case Kind::dialog:
              source = ui::core::create_source(krel::DravikId(input.text), true);
              break;
          }
          static constexpr const char* kinds[] = {"location", "block", "dialog"};
          out.json("kind", kinds[static_cast<int>(key_kind)]);
          if (!source) {
            out.add(
                {"source", nullptr, "(the service made no source for this key)", "(no source)"});
            return;
          }
          std::ostringstream os;
          os << *source;
          out.text("source", os.str());
          out.json("description", to_out(source->description()));
        },
        &note_bundle_search);
  });
}

const Registration source_registration{"source", &setup_source};

}  // namespace
}  // namespace ui_core_tool
