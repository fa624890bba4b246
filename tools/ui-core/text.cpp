// ui-core block-name, block-path-without-model, escape-xml, access,
// unit-conversion-type: the enumerations and text utilities of the library.

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "command.h"
#include "ui/core/enumerations.h"
#include "ui/core/text_utils.h"

namespace ui_core_tool {
namespace {

using ui::core::ustring;

// How many bytes a UTF-8 sequence that starts with `lead` claims, or 0 when
// `lead` cannot start one (a continuation byte or a byte never used).
std::size_t sequence_length(unsigned char lead) noexcept {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

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
    const std::size_t claimed = sequence_length(byte);
    return claimed > back ? n - back : n;
  }
  return n;
}

// Escapes standard input to standard output piece by piece, so that input of
// any size runs in constant memory.
int escape_stream(std::FILE* in, std::FILE* out, std::size_t chunk_size) {
  std::string buffer;
  std::string block(chunk_size, '\0');
  for (;;) {
    const std::size_t got = std::fread(block.data(), 1, block.size(), in);
    if (std::ferror(in)) {
      std::cerr << "error: cannot read standard input\n";
      return exit_refused;
    }
    // fread comes back short only at the end of the input (or on an error).
    const bool at_end = got < block.size();
    buffer.append(block, 0, got);
    const std::size_t cut = at_end ? buffer.size() : complete_prefix(buffer);
    if (cut > 0) {
      const ustring text = krel::utf8_string_to_ustring(std::string_view(buffer).substr(0, cut));
      const std::string escaped = krel::ustring_to_utf8_string(ui::core::escape_xml(text));
      if (std::fwrite(escaped.data(), 1, escaped.size(), out) != escaped.size()) {
        std::cerr << "error: cannot write standard output\n";
        return exit_refused;
      }
      buffer.erase(0, cut);
    }
    if (at_end) break;
  }
  if (std::fflush(out) != 0) {
    std::cerr << "error: cannot write standard output\n";
    return exit_refused;
  }
  return exit_ok;
}

void setup_text(CLI::App& app, Outcome& outcome) {
  {
    auto path = std::make_shared<std::string>();
    CLI::App* cmd = app.add_subcommand(
        "block-name", "Print the last block name of a block path (\"//\" is a \"/\" in a name)");
    cmd->add_option("path", *path, "Block path, e.g. model/sub/Gain")->required();
    cmd->callback([path] { std::cout << to_out(ui::core::block_name(from_arg(*path))) << '\n'; });
  }
  {
    auto path = std::make_shared<std::string>();
    CLI::App* cmd = app.add_subcommand("block-path-without-model",
                                       "Print a block path without its first component, the model");
    cmd->add_option("path", *path, "Block path, e.g. model/sub/Gain")->required();
    cmd->callback([path] {
      std::cout << to_out(ui::core::block_path_without_model(from_arg(*path))) << '\n';
    });
  }
  {
    auto chunk = std::make_shared<std::size_t>(std::size_t{1} << 16);
    CLI::App* cmd = app.add_subcommand(
        "escape-xml",
        "Copy standard input (UTF-8) to standard output with & ' \" > < escaped for XML; "
        "invalid UTF-8 becomes U+FFFD");
    cmd->add_option("--chunk-size", *chunk, "Bytes read at a time (default 65536)")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1} << 26));
    cmd->callback([chunk, &outcome] { outcome.exit_code = escape_stream(stdin, stdout, *chunk); });
  }
  {
    auto text = std::make_shared<std::string>();
    CLI::App* cmd = app.add_subcommand(
        "access", "Read an access text (internal or external, exactly) and print it back");
    cmd->add_option("text", *text, "Access text")->required();
    cmd->callback([text] { std::cout << ui::core::to_access(from_arg(*text)) << '\n'; });
  }
  {
    auto text = std::make_shared<std::string>();
    CLI::App* cmd = app.add_subcommand(
        "unit-conversion-type",
        "Read a unit conversion kind (absolute or relative, exactly); any other text is the "
        "unknown kind, printed in the user's language");
    cmd->add_option("text", *text, "Unit conversion kind")->required();
    cmd->callback([text] {
      const ui::core::UnitConversionType type = ui::core::to_unit_conversion_type(from_arg(*text));
      std::cout << type << " (" << static_cast<std::int32_t>(type) << ")\n";
    });
  }
}

const Registration text_registration{"text", &setup_text};

}  // namespace
}  // namespace ui_core_tool
