// ui-core explain: the text of a message identifier in the user's locale.
//
//   ui-core explain kalder:common:ui:core:kernel:path:InvalidNodePath /mass
//   ui-core explain --locale de --file ids.txt   # lines "<identifier>[<TAB><argument>...]"

#include <unicode/messagepattern.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <string>
#include <vector>

#include "command.h"
#include "line_io.h"
#include "msgcat/catalogue.h"
#include "render.h"

namespace ui_core_tool {
namespace {

// A digit-only argument fills a placeholder the pattern formats as a number
// ("{0,number,...}") as a number; every other argument is text.
resource_core::BaseMsgID::Argument argument_for(const std::u16string& pattern, std::size_t index,
                                                const std::string& arg) {
  const bool digits =
      !arg.empty() && arg.size() <= 20 && arg.find_first_not_of("0123456789") == std::string::npos;
  // Appended piece by piece: g++ 12 warns (-Wrestrict, a false positive)
  // about the inlined copy in `u"{" + text`.
  std::u16string marker = u"{";
  marker += krel::utf8_string_to_ustring(std::to_string(index));
  marker += u",number";
  if (digits && pattern.find(marker) != std::u16string::npos) {
    try {
      return std::uint64_t{std::stoull(arg)};
    } catch (const std::out_of_range&) {
    }
  }
  return from_arg(arg);
}

// How many arguments a message pattern takes: one more than the highest
// placeholder number ({0}, {1,number} ...), as ICU reads the pattern, so that
// quoted braces and nested messages count the way they format.
std::size_t arguments_needed(const std::u16string& pattern) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString text(reinterpret_cast<const UChar*>(pattern.data()),
                                static_cast<int32_t>(pattern.size()));
  const icu::MessagePattern parsed(text, nullptr, status);
  if (U_FAILURE(status)) return 0;
  std::size_t needed = 0;
  for (int32_t i = 0; i < parsed.countParts(); ++i) {
    if (parsed.getPartType(i) == UMSGPAT_PART_TYPE_ARG_NUMBER) {
      needed = std::max(needed, static_cast<std::size_t>(parsed.getPart(i).getValue()) + 1);
    }
  }
  return needed;
}

// The placeholders from `first` up to `end` as a list in the message
// locale: "{1}", "{1} and {2}", "{0}, {1} and {2}".
krel::ustring missing_list(std::size_t first, std::size_t end) {
  const auto placeholder = [](std::size_t i) {
    return krel::utf8_string_to_ustring("{" + std::to_string(i) + "}");
  };
  krel::ustring list = placeholder(first);
  for (std::size_t i = first + 1; i + 1 < end; ++i) list += u", " + placeholder(i);
  if (end - first < 2) return list;
  return krel::utf8_string_to_ustring(tool_text("ListAnd", {list, placeholder(end - 1)}));
}

// Refuses an identifier given fewer arguments than its text has placeholders:
// the text would show a raw "{1}" where a value belongs.
void check_argument_count(const krel::ustring& identifier, const std::u16string& pattern,
                          std::size_t given) {
  const std::size_t needed = arguments_needed(pattern);
  if (given >= needed) return;
  throw InputError("MissingArguments", {identifier, needed, given}, true,
                   {missing_list(given, needed), std::uint64_t{needed - given}});
}

// One input: "<catalogue>:<key>", then its arguments, each after a tab.
void explain(const Input& input, Result& out) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t tab = input.bytes.find('\t', start);
    fields.emplace_back(
        input.bytes.substr(start, tab == std::string_view::npos ? tab : tab - start));
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
  const std::string& identifier = fields.front();
  const std::size_t colon = identifier.rfind(':');
  if (identifier.empty() || colon == std::string::npos || colon == 0 ||
      colon + 1 == identifier.size()) {
    throw InputError("InvalidIdentifier", {krel::utf8_string_to_ustring(identifier)});
  }
  resource_core::BaseMsgID id;
  id.catalogue = identifier.substr(0, colon);
  id.key = identifier.substr(colon + 1);
  const auto pattern = msgcat::find_pattern(id.catalogue, id.key, "en");
  if (!pattern) {
    throw InputError("UnknownMessage", {krel::utf8_string_to_ustring(identifier)}, false);
  }
  check_argument_count(krel::utf8_string_to_ustring(identifier), *pattern, fields.size() - 1);
  for (std::size_t i = 1; i < fields.size(); ++i) {
    id.arguments.push_back(argument_for(*pattern, i - 1, fields[i]));
  }
  const std::string text = message_text(id);
  out.json("identifier", identifier);
  auto arguments = nlohmann::ordered_json::array();
  for (std::size_t i = 1; i < fields.size(); ++i) arguments.push_back(fields[i]);
  out.json("arguments", std::move(arguments));
  out.text("message", text);
}

void setup_explain(CLI::App& app, CommandState& state) {
  auto list = state.fresh<bool>(false);
  CLI::App* cmd = app.add_subcommand(
      "explain", "Print the text of message identifiers (catalogue:key) with their arguments");
  auto io = add_inputs(
      cmd, state,
      {"identifier",
       "A full identifier, e.g. kalder:common:ui:core:kernel:path:InvalidNodePath, followed by "
       "the message's arguments in order (one input); a line of input holds the same, "
       "separated by tabs",
       "  ui-core explain kalder:common:ui:core:kernel:path:InvalidNodePath /mass\n"
       "  ui-core explain --locale de_DE.UTF-8 kalder:common:ui:core:kernel:path:InvalidNodePath "
       "/mass\n"
       "  printf 'kalder:common:ui:core:kernel:path:InvalidNodeId\\ta//\\n' | ui-core explain "
       "--json\n"
       "  ui-core explain --list\n"},
      ArgGrouping::all);
  cmd->add_flag("--list", *list,
                "List every identifier the catalogue knows (with --json one object each)");
  cmd->callback([io, list, &state] {
    if (*list) {
      Renderer renderer(io->json ? Format::json : Format::line, standard_output());
      Result entry;
      std::string last;
      for (const auto& e : msgcat::entries()) {
        std::string id = e.catalogue + ":" + e.key;
        if (id == last) continue;  // the same message in another language
        entry.clear();
        entry.text("identifier", id);
        renderer.write_entry(entry);
        last = std::move(id);
      }
      return;
    }
    state.exit_code = run_inputs(*io, &explain);
  });
}

const Registration explain_registration{"explain", &setup_explain};

}  // namespace
}  // namespace ui_core_tool
