// Where a subcommand's inputs come from, and how its results and refusals are
// written: the part every input-taking subcommand shares.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <stdexcept>
#include <string>
#include <utility>

#include "command.h"
#include "line_io.h"
#include "msgcat/catalogue.h"
#include "render.h"
#include "ui/core/object_path_subscript.h"

namespace ui_core_tool {
namespace {

std::string& locale_slot() {
  static std::string name = "C";
  return name;
}

// The process locale the tool runs under for a message locale: everything of
// "C" (numbers with a '.', no grouping), but UTF-8 characters, and the
// messages category of `name` when the system has that locale. The library
// reads the C library's messages category for the texts it looks
// up itself, and the character set of the C library's locale for the bytes
// it writes, so both then agree with the tool, which writes UTF-8 whatever
// the environment says.
std::locale process_locale(const std::string& name) {
  std::locale locale = std::locale::classic();
  try {
    locale = std::locale(locale, std::locale("C.UTF-8"), std::locale::ctype);
  } catch (const std::runtime_error&) {
    // No UTF-8 "C" locale: characters stay ASCII for the library's own output.
  }
  try {
    locale = std::locale(locale, std::locale(name), std::locale::messages);
  } catch (const std::runtime_error&) {
    // A name the system has no locale for (such as "de") still selects the
    // catalogue's language for every text the tool writes.
  }
  return locale;
}

nlohmann::ordered_json argument_json(const resource_core::BaseMsgID::Argument& argument) {
  struct Visitor {
    nlohmann::ordered_json operator()(std::uint64_t v) const { return json_integer(v); }
    nlohmann::ordered_json operator()(std::int64_t v) const { return json_integer(v); }
    nlohmann::ordered_json operator()(double v) const { return v; }
    nlohmann::ordered_json operator()(const std::u16string& v) const { return to_out(v); }
  };
  return std::visit(Visitor{}, argument);
}

// Runs the handler over inputs one at a time, has each result written and
// keeps the counts.
class Runner {
 public:
  Runner(const Handler& handler, const RefusalNote& note, Format format, Output& output)
      : handler_(handler), note_(note), renderer_(format, output) {}

  // False when the input is bad usage (only possible for arguments): the run
  // ends with exit code 2.
  bool process(std::string_view bytes, bool from_args) {
    ++inputs_;
    result_.clear();
    try {
      // Decoding would quietly turn bad bytes into U+FFFD and the tool would
      // answer for a text nobody typed, so such an input is refused instead.
      if (const std::size_t bad = krel::first_invalid_utf8(bytes); bad != std::string_view::npos) {
        throw InputError("InvalidUtf8",
                         {krel::utf8_string_to_ustring(escaped(bytes)), std::uint64_t{bad}}, false);
      }
      text_ = krel::utf8_string_to_ustring(bytes);
      handler_(Input{bytes, text_}, result_);
    } catch (const krel::MessageException& e) {
      const resource_core::BaseMsgID& id = e.message().id();
      Refusal refusal{id.catalogue, id.key, nlohmann::ordered_json::array(), message_text(id)};
      for (const auto& a : id.arguments) refusal.arguments.push_back(argument_json(a));
      result_.refuse(std::move(refusal));
      write(bytes);
      if (note_ && !noted_) {
        noted_ = true;
        note_(e);
      }
      return true;
    } catch (const InputError& e) {
      if (from_args && e.usage()) {
        write_error("error: " + e.text() + "\nRun with --help for more information.\n");
        return false;
      }
      result_.refuse(Refusal{std::string(tool_catalogue), e.key(), e.arguments(), e.text()});
    }
    write(bytes);
    return true;
  }

  [[nodiscard]] std::uint64_t inputs() const noexcept { return inputs_; }
  [[nodiscard]] std::uint64_t refused() const noexcept { return refused_; }

 private:
  void write(std::string_view bytes) {
    if (result_.error()) ++refused_;
    renderer_.write(bytes, result_);
  }

  const Handler& handler_;
  const RefusalNote& note_;
  Renderer renderer_;
  // Kept between inputs so that their storage is reused.
  krel::ustring text_;
  Result result_;
  std::uint64_t inputs_ = 0;
  std::uint64_t refused_ = 0;
  bool noted_ = false;
};

// The arguments as inputs, grouped as the subcommand reads them.
std::vector<std::string> group_arguments(const std::vector<std::string>& args,
                                         ArgGrouping grouping) {
  switch (grouping) {
    case ArgGrouping::each:
      return args;
    case ArgGrouping::pairs: {
      if (args.size() % 2 != 0) {
        throw InputError("OddArguments", {std::uint64_t{args.size()}});
      }
      std::vector<std::string> inputs;
      for (std::size_t i = 0; i < args.size(); i += 2)
        inputs.push_back(args[i] + " " + args[i + 1]);
      return inputs;
    }
    case ArgGrouping::all: {
      std::string joined;
      for (std::size_t i = 0; i < args.size(); ++i) {
        if (i != 0) joined += '\t';
        joined += args[i];
      }
      return {joined};
    }
  }
  return args;
}

int read_lines(const InputSource& source, Runner& runner, Progress& progress) {
  LineReader reader(source.fd);
  std::string_view line;
  std::uint64_t fills = 0;
  while (reader.next(line)) {
    runner.process(line, false);
    // A read that had to wait (a slow pipe) may have taken long: the clock is
    // looked at after each read, and otherwise every so many lines.
    if (reader.fills() != fills) {
      fills = reader.fills();
      progress.update_chunk(reader.bytes(), reader.lines());
    } else {
      progress.update(reader.bytes(), reader.lines());
    }
  }
  if (reader.error() != 0) {
    report_read_error(source, reader.error());
    return exit_io;
  }
  return exit_ok;
}

}  // namespace

const std::string& message_locale() {
  return locale_slot();
}

std::string environment_locale() {
  // The order in which the C library lets these variables decide the
  // messages category.
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return "C";
}

void select_message_locale(const std::string& name) {
  // Every command line of a batch starts from the environment's locale:
  // making a std::locale costs more than most commands, so an unchanged name
  // is not applied again.
  static bool applied = false;
  if (applied && locale_slot() == name) return;
  applied = true;
  locale_slot() = name;
  // std::locale::global also sets the C library's locale to the same
  // categories, which is where the library's narrow text conversion and
  // number parsing look.
  std::locale::global(process_locale(name));
}

std::string message_text(const resource_core::BaseMsgID& id) {
  return krel::ustring_to_utf8_string(msgcat::format(id, message_locale()));
}

std::string message_line(const krel::MessageException& e) {
  return e.message().identifier() + ": " + message_text(e.message().id());
}

void report(const krel::MessageException& e) {
  write_error("error: " + message_line(e) + "\n");
}

InputError::InputError(std::string key, Arguments arguments, bool usage, Arguments details)
    : std::runtime_error(std::string(tool_catalogue) + ":" + key),
      id_{std::move(arguments), std::string(tool_catalogue), std::move(key)},
      shown_arguments_(id_.arguments.size()),
      usage_(usage) {
  id_.arguments.insert(id_.arguments.end(), std::make_move_iterator(details.begin()),
                       std::make_move_iterator(details.end()));
}

nlohmann::ordered_json InputError::arguments() const {
  auto json = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < shown_arguments_; ++i)
    json.push_back(argument_json(id_.arguments[i]));
  return json;
}

std::string InputError::text() const {
  return message_text(id_);
}

std::string tool_text(std::string key, InputError::Arguments arguments) {
  return message_text(
      resource_core::BaseMsgID{std::move(arguments), std::string(tool_catalogue), std::move(key)});
}

std::optional<InputSource> open_input(const std::string& file) {
  if (file.empty() || file == "-") {
    return InputSource{FileDescriptor(-1), command_input(), tool_text("StandardInput", {}), 0};
  }
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  const int open_error = errno;  // before anything else may change it
  InputSource source{FileDescriptor(fd), fd, file, 0};
  if (fd < 0) {
    report_open_error(file, open_error);
    return std::nullopt;
  }
  struct stat info {};
  if (::fstat(source.fd, &info) == 0) {
    if (S_ISDIR(info.st_mode)) {
      write_error("error: " + tool_text("IsDirectory", {krel::utf8_string_to_ustring(file)}) +
                  "\n");
      return std::nullopt;
    }
    if (S_ISREG(info.st_mode)) source.size = static_cast<std::uint64_t>(info.st_size);
  }
  return source;
}

void report_open_error(const std::string& name, int error) {
  const krel::ustring reason = krel::utf8_string_to_ustring(std::strerror(error));
  write_error("error: " + tool_text("CannotOpen", {krel::utf8_string_to_ustring(name), reason}) +
              "\n");
}

void report_read_error(const InputSource& source, int error) {
  const krel::ustring reason = krel::utf8_string_to_ustring(std::strerror(error));
  write_error("error: " +
              tool_text("CannotRead", {krel::utf8_string_to_ustring(source.name), reason}) + "\n");
}

std::string quoted(const krel::ustring& text) {
  return "'" + krel::ustring_to_utf8_string(text) + "'";
}

namespace {
// 2^53 - 1: every integer up to it, and its neighbours, are exact as doubles,
// which is all the numbers jq and JavaScript have.
constexpr std::uint64_t largest_exact_integer = (std::uint64_t{1} << 53) - 1;
}  // namespace

nlohmann::ordered_json json_integer(std::uint64_t value) {
  if (value <= largest_exact_integer) return value;
  return std::to_string(value);
}

nlohmann::ordered_json json_integer(std::int64_t value) {
  const std::uint64_t size =
      value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  if (size <= largest_exact_integer) return value;
  return std::to_string(value);
}

nlohmann::ordered_json values_json(const ui::core::ObjectPathSubscript& subscript) {
  auto values = nlohmann::ordered_json::array();
  for (std::size_t k = 0; k < subscript.size(); ++k) {
    values.push_back(json_integer(std::uint64_t{subscript(k)}));
  }
  return values;
}

std::shared_ptr<InputOptions> add_inputs(CLI::App* cmd, CommandState& state, const InputHelp& help,
                                         ArgGrouping grouping) {
  InputOptions initial;
  initial.grouping = grouping;
  auto options = state.fresh<InputOptions>(initial);
  cmd->add_option(help.name, options->args,
                  help.description +
                      ". Without any (or with a lone '-') the inputs are read from standard "
                      "input, one per line");
  cmd->add_option("-f,--file", options->file,
                  "Read the inputs from this file, one per line ('-': standard input)");
  cmd->add_flag("--json", options->json,
                "Write one JSON object per input and line (JSON Lines), the input included");
  cmd->add_option("--locale",
                  "Locale of the message texts, e.g. de_DE.UTF-8 or en (default: the "
                  "environment's, LC_ALL / LC_MESSAGES / LANG); output stays UTF-8 with "
                  "'.' in numbers")
      ->each([](const std::string& name) { select_message_locale(name); });
  cmd->footer(
      "Inputs come from the arguments; else from the lines of --file; else from standard "
      "input. Results: a report per argument; one line per input line "
      "(\"<input><TAB><result>\", TAB, CR, LF and NUL written as \\t \\r \\n \\0, and in the "
      "input a backslash as \\\\); with --json one JSON object per input. Exit code: 0 all "
      "inputs accepted, 1 some refused (the others are still processed), 2 bad usage, 3 "
      "reading or writing failed.\n\n"
      "Examples:\n" +
      help.examples);
  return options;
}

int run_inputs(const InputOptions& options, const Handler& handler) {
  return run_inputs(options, handler, RefusalNote());
}

int run_inputs(const InputOptions& options, const Handler& handler, const RefusalNote& note) {
  bool use_stdin = false;
  if (!options.file.empty()) {
    if (!options.args.empty()) {
      write_error("error: " + tool_text("ArgumentsAndFile", {}) +
                  "\nRun with --help for more information.\n");
      return exit_usage;
    }
    use_stdin = options.file == "-";
  } else {
    use_stdin = options.args.empty() || (options.args.size() == 1 && options.args[0] == "-");
  }
  const bool from_args = options.file.empty() && !use_stdin;
  const Format format = options.json ? Format::json : from_args ? Format::report : Format::line;

  if (from_args) {
    std::vector<std::string> grouped;
    try {
      grouped = group_arguments(options.args, options.grouping);
    } catch (const InputError& e) {
      write_error("error: " + e.text() + "\nRun with --help for more information.\n");
      return exit_usage;
    }
    Runner runner(handler, note, format, standard_output());
    for (const std::string& arg : grouped) {
      if (!runner.process(arg, true)) return exit_usage;
    }
    return runner.refused() == 0 ? exit_ok : exit_refused;
  }

  const std::optional<InputSource> source = open_input(use_stdin ? std::string() : options.file);
  if (!source) return exit_usage;
  if (!source->is_standard_input()) {
    ::posix_fadvise(source->fd, 0, 0, POSIX_FADV_SEQUENTIAL);
  } else if (::isatty(source->fd) == 1 && ::isatty(STDERR_FILENO) == 1) {
    write_error(tool_text("ReadingStandardInput", {}) + "\n");
  }
  int code = exit_ok;
  std::uint64_t inputs = 0;
  std::uint64_t refused = 0;
  {
    // The progress line is for a person waiting on a file being worked through.
    Progress progress(source->name, source->size,
                      !source->is_standard_input() && ::isatty(STDERR_FILENO) == 1);
    const ProgressScope scope(progress);
    Runner runner(handler, note, format, standard_output());
    code = read_lines(*source, runner, progress);
    progress.clear();
    inputs = runner.inputs();
    refused = runner.refused();
  }
  if (refused > 0) {
    write_error("ui-core: " + tool_text("InputsRefused", {refused, inputs}) + "\n");
    if (code == exit_ok) code = exit_refused;
  }
  return code;
}

}  // namespace ui_core_tool
