// ui-core block-name, block-path-without-model, escape-xml, access,
// unit-conversion-type: the enumerations and text utilities of the library.
//
//   ui-core block-name model/sub/Gain
//   ui-core escape-xml < page.html
//   ui-core access --json --file access.txt

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "command.h"
#include "line_io.h"
#include "render.h"
#include "ui/core/enumerations.h"
#include "ui/core/errors.h"
#include "ui/core/text_utils.h"

namespace ui_core_tool {
namespace {

using ui::core::ustring;

// Where the bytes in `buffer` can be cut so that no UTF-8 sequence is split:
// a sequence whose lead byte is among the last four bytes and whose claimed
// length runs past the end is held back for the next read. Decoding never
// takes a non-continuation byte into an earlier sequence, so cutting before a
// lead byte decodes the same as the whole stream, invalid bytes included. A
// complete sequence never ends in half a surrogate pair, so the UTF-16 of each
// piece holds whole pairs.
std::size_t complete_prefix(std::string_view buffer) noexcept {
  const std::size_t n = buffer.size();
  for (std::size_t back = 1; back <= 4 && back <= n; ++back) {
    const auto byte = static_cast<unsigned char>(buffer[n - back]);
    if ((byte & 0xC0) == 0x80) continue;  // a continuation byte: look further back
    const std::size_t claimed = krel::utf8_claimed_length(byte);
    return claimed > back ? n - back : n;
  }
  return n;
}

// Escapes `source` to standard output piece by piece, so that input of
// any size runs in constant memory.
int escape_stream(const InputSource& source, std::size_t chunk_size, Progress& progress) {
  std::string buffer;
  std::string block(chunk_size, '\0');
  std::uint64_t bytes = 0;
  std::uint64_t lines = 0;
  Output& out = standard_output();
  for (;;) {
    const ssize_t got = ::read(source.fd, block.data(), block.size());
    if (got < 0) {
      if (errno == EINTR) continue;
      report_read_error(source, errno);
      return exit_io;
    }
    const bool at_end = got == 0;
    const auto size = static_cast<std::size_t>(got);
    buffer.append(block, 0, size);
    bytes += size;
    lines += static_cast<std::uint64_t>(std::count(block.begin(), block.begin() + got, '\n'));
    progress.update_chunk(bytes, lines);
    const std::size_t cut = at_end ? buffer.size() : complete_prefix(buffer);
    if (cut > 0) {
      const ustring text = krel::utf8_string_to_ustring(std::string_view(buffer).substr(0, cut));
      out.text() += krel::ustring_to_utf8_string(ui::core::escape_xml(text));
      out.commit();
      buffer.erase(0, cut);
    }
    if (at_end) break;
  }
  return exit_ok;
}

// A subcommand that maps each input text to one output text.
void add_text_command(CLI::App& app, CommandState& state, const std::string& name,
                      const std::string& description, const InputHelp& help,
                      const std::string& json_field, ustring (*function)(const ustring&)) {
  CLI::App* cmd = app.add_subcommand(name, description);
  auto io = add_inputs(cmd, state, help);
  cmd->callback([io, json_field, function, &state] {
    state.exit_code = run_inputs(*io, [&json_field, function](const Input& input, Result& out) {
      out.text(json_field, to_out(function(input.text)));
    });
  });
}

// The user text of a unit conversion kind in the message locale (the
// library's own looks at the global locale, which --locale may not reach).
std::string unit_conversion_text(ui::core::UnitConversionType type) {
  if (type != ui::core::UnitConversionType::unknown) return to_out(ui::core::to_user_string(type));
  resource_core::BaseMsgID id;
  id.catalogue = ui::core::error_catalogue(ui::core::ErrorId::UnitConversionUnknown);
  id.key = std::string(ui::core::error_info(ui::core::ErrorId::UnitConversionUnknown).key);
  return message_text(id);
}

void setup_text(CLI::App& app, CommandState& state) {
  add_text_command(app, state, "block-name",
                   "Print the last block name of block paths (\"//\" is a \"/\" in a name)",
                   {"paths", "Block paths, e.g. model/sub/Gain",
                    "  ui-core block-name model/sub/Gain 'a///b'\n"
                    "  ui-core block-name --file paths.txt\n"
                    "  ui-core block-name --json < paths.txt\n"},
                   "name", &ui::core::block_name);
  add_text_command(app, state, "block-path-without-model",
                   "Print block paths without their first component, the model",
                   {"paths", "Block paths, e.g. model/sub/Gain",
                    "  ui-core block-path-without-model model/sub/Gain\n"
                    "  ui-core block-path-without-model --json --file paths.txt\n"},
                   "path", &ui::core::block_path_without_model);
  {
    auto chunk = state.fresh<std::size_t>(std::size_t{1} << 16);
    CLI::App* cmd = app.add_subcommand(
        "escape-xml",
        "Escape & ' \" > < for XML: arguments one per line, or standard input / --file copied "
        "as a stream (invalid UTF-8 becomes U+FFFD); --json escapes line by line");
    auto io = add_inputs(cmd, state,
                         {"texts", "Texts to escape, each printed on its own line",
                          "  printf '<a href=\"x&y\">\\n' | ui-core escape-xml\n"
                          "  ui-core escape-xml --file page.html > page.txt\n"
                          "  ui-core escape-xml 'a<b' \"it's\"\n"
                          "  ui-core escape-xml --json --file lines.txt\n"});
    cmd->add_option("--chunk-size", *chunk,
                    "Bytes read at a time when copying a stream (default 65536)")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1} << 26));
    cmd->callback([chunk, io, &state] {
      const bool from_args =
          io->file.empty() && !io->args.empty() && !(io->args.size() == 1 && io->args[0] == "-");
      if (io->json || from_args || (!io->file.empty() && !io->args.empty())) {
        state.exit_code = run_inputs(*io, [](const Input& input, Result& out) {
          out.text("escaped", to_out(ui::core::escape_xml(input.text)));
        });
        return;
      }
      const std::optional<InputSource> source = open_input(io->file);
      if (!source) {
        state.exit_code = exit_usage;
        return;
      }
      Progress progress(source->name, source->size,
                        !source->is_standard_input() && ::isatty(STDERR_FILENO) == 1);
      const ProgressScope scope(progress);
      state.exit_code = escape_stream(*source, *chunk, progress);
    });
  }
  {
    CLI::App* cmd = app.add_subcommand(
        "access", "Read access texts (internal or external, exactly) and print them back");
    auto io = add_inputs(cmd, state,
                         {"texts", "Access texts",
                          "  ui-core access internal external\n"
                          "  ui-core access --json --file access.txt\n"
                          "  ui-core access --locale de_DE.UTF-8 intern\n"});
    cmd->callback([io, &state] {
      state.exit_code = run_inputs(*io, [](const Input& input, Result& out) {
        out.text("access", to_out(ui::core::to_user_string(ui::core::to_access(input.text))));
      });
    });
  }
  {
    CLI::App* cmd = app.add_subcommand(
        "unit-conversion-type",
        "Read unit conversion kinds (absolute or relative, exactly); any other text is the "
        "unknown kind, printed in the user's language");
    auto io = add_inputs(cmd, state,
                         {"texts", "Unit conversion kinds",
                          "  ui-core unit-conversion-type relative Relative\n"
                          "  ui-core unit-conversion-type --locale de --json delta\n"});
    cmd->callback([io, &state] {
      state.exit_code = run_inputs(*io, [](const Input& input, Result& out) {
        const ui::core::UnitConversionType type = ui::core::to_unit_conversion_type(input.text);
        const std::string text = unit_conversion_text(type);
        const auto value = static_cast<std::int32_t>(type);
        const std::string shown = text + " (" + std::to_string(value) + ")";
        out.add({"type", text, shown, shown});
        out.json("value", value);
      });
    });
  }
}

const Registration text_registration{"text", &setup_text};

}  // namespace
}  // namespace ui_core_tool
