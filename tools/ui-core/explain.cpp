// ui-core explain: the text of a message identifier in the user's locale.

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
  const std::u16string marker =
      u"{" + krel::utf8_string_to_ustring(std::to_string(index)) + u",number";
  if (digits && pattern.find(marker) != std::u16string::npos) {
    try {
      return std::uint64_t{std::stoull(arg)};
    } catch (const std::out_of_range&) {
    }
  }
  return from_arg(arg);
}

void setup_explain(CLI::App& app, Outcome& outcome) {
  struct Options {
    std::string identifier;
    std::vector<std::string> args;
    std::string locale;
    bool list = false;
  };
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "explain", "Print the text of a message identifier (catalogue:key) with its arguments");
  cmd->add_option("identifier", opts->identifier,
                  "Full identifier, e.g. kalder:common:ui:core:kernel:path:InvalidNodePath");
  cmd->add_option("args", opts->args, "The message's arguments, in order");
  cmd->add_option("--locale", opts->locale,
                  "Locale to read the text in (default: the environment's, e.g. LC_ALL)");
  cmd->add_flag("--list", opts->list, "List every identifier the catalogue knows");
  cmd->callback([opts, &outcome] {
    if (opts->list) {
      std::string last;
      for (const auto& e : msgcat::entries()) {
        std::string id = e.catalogue + ":" + e.key;
        if (id != last) std::cout << id << '\n';
        last = std::move(id);
      }
      return;
    }
    const std::size_t colon = opts->identifier.rfind(':');
    if (opts->identifier.empty() || colon == std::string::npos || colon == 0 ||
        colon + 1 == opts->identifier.size()) {
      throw CLI::ValidationError("identifier",
                                 "expected <catalogue>:<key>, e.g. "
                                 "kalder:common:ui:core:kernel:path:InvalidNodePath");
    }
    resource_core::BaseMsgID id;
    id.catalogue = opts->identifier.substr(0, colon);
    id.key = opts->identifier.substr(colon + 1);
    const auto pattern = msgcat::find_pattern(id.catalogue, id.key, "en");
    if (!pattern) {
      std::cerr << "error: the catalogue has no message " << opts->identifier << '\n';
      outcome.exit_code = exit_refused;
      return;
    }
    for (std::size_t i = 0; i < opts->args.size(); ++i) {
      id.arguments.push_back(argument_for(*pattern, i, opts->args[i]));
    }
    const std::string locale = opts->locale.empty() ? msgcat::global_locale_name() : opts->locale;
    std::cout << to_out(msgcat::format(id, locale)) << '\n';
  });
}

const Registration explain_registration{"explain", &setup_explain};

}  // namespace
}  // namespace ui_core_tool
