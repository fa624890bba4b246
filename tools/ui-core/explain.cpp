// ui-core explain: the text of a message identifier in the user's locale.
//
//   ui-core explain kalder:common:ui:core:kernel:path:InvalidNodePath /mass
//   ui-core explain --locale de --file ids.txt   # lines "<identifier>[<TAB><argument>...]"

#include <iostream>

#include "command.h"
#include "msgcat/catalogue.h"

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

// One input: "<catalogue>:<key>", then its arguments, each after a tab.
void explain(const Input& input, Record& out) {
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
    throw InputError("InvalidIdentifier", nlohmann::ordered_json::array({identifier}),
                     "expected <catalogue>:<key>, e.g. "
                     "kalder:common:ui:core:kernel:path:InvalidNodePath, got '" +
                         identifier + "'",
                     "erwartet wird <Katalog>:<Schlüssel>, z. B. "
                     "kalder:common:ui:core:kernel:path:InvalidNodePath, nicht '" +
                         identifier + "'");
  }
  resource_core::BaseMsgID id;
  id.catalogue = identifier.substr(0, colon);
  id.key = identifier.substr(colon + 1);
  const auto pattern = msgcat::find_pattern(id.catalogue, id.key, "en");
  if (!pattern) {
    throw InputError("UnknownMessage", nlohmann::ordered_json::array({identifier}),
                     "the catalogue has no message " + identifier,
                     "der Katalog hat keine Meldung " + identifier, false);
  }
  for (std::size_t i = 1; i < fields.size(); ++i) {
    id.arguments.push_back(argument_for(*pattern, i - 1, fields[i]));
  }
  const std::string text = message_text(id);
  switch (out.format) {
    case Format::detail:
      out.text += text + "\n";
      break;
    case Format::line:
      out.text += "\t" + text;
      break;
    case Format::json: {
      out.json["identifier"] = identifier;
      auto arguments = nlohmann::ordered_json::array();
      for (std::size_t i = 1; i < fields.size(); ++i) arguments.push_back(fields[i]);
      out.json["arguments"] = std::move(arguments);
      out.json["message"] = text;
      break;
    }
  }
}

void setup_explain(CLI::App& app, Outcome& outcome) {
  auto list = std::make_shared<bool>(false);
  CLI::App* cmd = app.add_subcommand(
      "explain", "Print the text of message identifiers (catalogue:key) with their arguments");
  auto io = add_inputs(
      cmd,
      {"identifier",
       "A full identifier, e.g. kalder:common:ui:core:kernel:path:InvalidNodePath, followed by "
       "the message's arguments in order (one input); a line of input holds the same, "
       "separated by tabs",
       "  ui-core explain kalder:common:ui:core:kernel:path:InvalidNodePath /mass\n"
       "  ui-core explain --locale de_DE.UTF-8 kalder:common:ui:core:kernel:path:InvalidNodePath "
       "/mass\n"
       "  printf 'kalder:common:ui:core:kernel:path:InvalidNodeId\\ta//\\n' | ui-core explain "
       "--json\n"
       "  ui-core explain --list\n"});
  io->grouping = ArgGrouping::all;
  cmd->add_flag("--list", *list, "List every identifier the catalogue knows");
  cmd->callback([io, list, &outcome] {
    if (*list) {
      std::string last;
      for (const auto& e : msgcat::entries()) {
        std::string id = e.catalogue + ":" + e.key;
        if (id != last) std::cout << id << '\n';
        last = std::move(id);
      }
      return;
    }
    outcome.exit_code = run_inputs(*io, &explain);
  });
}

const Registration explain_registration{"explain", &setup_explain};

}  // namespace
}  // namespace ui_core_tool
