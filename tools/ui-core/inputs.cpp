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
#include "ui/core/object_path_subscript.h"

namespace ui_core_tool {
namespace {

// The catalogue name of the tool's own refusals (InputError).
constexpr std::string_view tool_catalogue = "ui-core";

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
    nlohmann::ordered_json operator()(const std::u16string& v) const {
      std::string text;
      append_utf8(text, v);
      return text;
    }
  };
  return std::visit(Visitor{}, argument);
}

// A refusal, whoever made it, as the driver writes it.
struct Refusal {
  std::string_view catalogue;
  std::string_view key;
  nlohmann::ordered_json arguments;
  std::string text;
};

constexpr auto json_dump_replace = nlohmann::ordered_json::error_handler_t::replace;

// Runs the handler over inputs one at a time and keeps the counts.
class Runner {
 public:
  Runner(const Handler& handler, const RefusalNote& note, Format format, Output& output)
      : handler_(handler), note_(note), format_(format), output_(output) {}

  // False when the input is bad usage (only possible for arguments): the run
  // ends with exit code 2.
  bool process(std::string_view bytes, bool from_args) {
    ++inputs_;
    std::string& out = output_.text();
    const std::size_t mark = out.size();
    const std::size_t bad = decode_utf8(bytes, text_);
    try {
      if (bad != std::string_view::npos) {
        const std::string shown = escaped(bytes);
        const std::string at = std::to_string(bad);
        throw InputError("InvalidUtf8",
                         nlohmann::ordered_json::array({shown, json_integer(std::uint64_t{bad})}),
                         "'" + shown + "' is not valid UTF-8 (at byte " + at + ")",
                         "'" + shown + "' ist kein gültiges UTF-8 (bei Byte " + at + ")", false);
      }
      const Input input{bytes, text_};
      switch (format_) {
        case Format::detail: {
          Record record{format_, out, json_};
          handler_(input, record);
          break;
        }
        case Format::line: {
          append_escaped(out, bytes, Escape::bytes);
          Record record{format_, out, json_};
          handler_(input, record);
          out += '\n';
          break;
        }
        case Format::json: {
          start_json(bytes);
          json_["ok"] = true;
          Record record{format_, out, json_};
          handler_(input, record);
          out += json_.dump(-1, ' ', false, json_dump_replace);
          out += '\n';
          break;
        }
      }
    } catch (const krel::MessageException& e) {
      const resource_core::BaseMsgID& id = e.message().id();
      Refusal refusal{id.catalogue, id.key, nlohmann::ordered_json::array(), message_text(id)};
      for (const auto& a : id.arguments) refusal.arguments.push_back(argument_json(a));
      refuse(mark, bytes, refusal);
      if (note_ && !noted_) {
        noted_ = true;
        note_(e);
      }
    } catch (const InputError& e) {
      if (from_args && e.usage()) {
        write_error("error: " + e.text() + "\nRun with --help for more information.\n");
        return false;
      }
      Refusal refusal{tool_catalogue, e.key(), e.arguments(), e.text()};
      refuse(mark, bytes, refusal);
    }
    output_.commit();
    return true;
  }

  [[nodiscard]] std::uint64_t inputs() const noexcept { return inputs_; }
  [[nodiscard]] std::uint64_t refused() const noexcept { return refused_; }

 private:
  void start_json(std::string_view bytes) {
    if (json_.is_object()) {
      json_.clear();
    } else {
      json_ = nlohmann::ordered_json::object();
    }
    // Invalid UTF-8 comes out as U+FFFD when the record is written.
    json_["input"] = bytes;
  }

  void refuse(std::size_t mark, std::string_view bytes, Refusal& refusal) {
    ++refused_;
    std::string& out = output_.text();
    std::string line = "error: ";
    line.append(refusal.catalogue).append(":").append(refusal.key).append(": ");
    line += refusal.text;
    switch (format_) {
      case Format::detail: {
        // What the handler printed before the refusal stays, and comes first
        // (write_error writes standard output first).
        line += '\n';
        write_error(line);
        break;
      }
      case Format::line: {
        out.resize(mark);
        append_escaped(out, bytes, Escape::bytes);
        add_field(out, line);
        out += '\n';
        break;
      }
      case Format::json: {
        out.resize(mark);
        start_json(bytes);
        json_["ok"] = false;
        nlohmann::ordered_json error = nlohmann::ordered_json::object();
        error["catalogue"] = std::string(refusal.catalogue);
        error["key"] = std::string(refusal.key);
        error["arguments"] = std::move(refusal.arguments);
        error["message"] = std::move(refusal.text);
        json_["error"] = std::move(error);
        out += json_.dump(-1, ' ', false, json_dump_replace);
        out += '\n';
        break;
      }
    }
  }

  const Handler& handler_;
  const RefusalNote& note_;
  Format format_;
  Output& output_;
  krel::ustring text_;
  nlohmann::ordered_json json_;
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
        throw InputError(
            "OddArguments", nlohmann::ordered_json::array({args.size()}),
            "the arguments are pairs <value> <size> (or give --size), but " +
                std::to_string(args.size()) + " arguments were given",
            "die Argumente sind Paare <Wert> <Größe> (oder --size angeben), aber es sind " +
                std::to_string(args.size()) + " Argumente");
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

int read_lines(int fd, const std::string& name, Runner& runner, Progress& progress) {
  LineReader reader(fd);
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
    write_error("error: cannot read " + name + ": " + std::strerror(reader.error()) + "\n");
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
  std::string text;
  append_utf8(text, msgcat::format(id, message_locale()));
  return text;
}

std::string message_line(const krel::MessageException& e) {
  return e.message().identifier() + ": " + message_text(e.message().id());
}

void report(const krel::MessageException& e) {
  write_error("error: " + message_line(e) + "\n");
}

InputError::InputError(std::string key, nlohmann::ordered_json arguments, const std::string& text,
                       std::string text_de, bool usage)
    : std::runtime_error(text),
      key_(std::move(key)),
      arguments_(std::move(arguments)),
      text_de_(std::move(text_de)),
      usage_(usage) {}

std::string InputError::text() const {
  return msgcat::language_of(message_locale()) == "de" ? text_de_ : std::string(what());
}

void append_utf8(std::string& out, std::u16string_view text) {
  const std::size_t n = text.size();
  for (std::size_t i = 0; i < n; ++i) {
    char32_t c = text[i];
    if (c < 0x80) {
      out += static_cast<char>(c);
      continue;
    }
    if (c >= 0xD800 && c <= 0xDFFF) {
      if (c <= 0xDBFF && i + 1 < n && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
        c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
        ++i;
      } else {
        c = 0xFFFD;  // a lone surrogate
      }
    }
    if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    }
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

void append_quoted(std::string& out, std::u16string_view text) {
  out += '\'';
  append_utf8(out, text);
  out += '\'';
}

void add_field(std::string& line, std::string_view text) {
  line += '\t';
  append_escaped(line, text, Escape::field);
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
      write_error(
          "error: give the inputs as arguments or with --file, not both\n"
          "Run with --help for more information.\n");
      return exit_usage;
    }
    use_stdin = options.file == "-";
  } else {
    use_stdin = options.args.empty() || (options.args.size() == 1 && options.args[0] == "-");
  }
  const bool from_args = options.file.empty() && !use_stdin;
  const Format format = options.json ? Format::json : from_args ? Format::detail : Format::line;

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

  const FileDescriptor file(use_stdin ? -1 : ::open(options.file.c_str(), O_RDONLY | O_CLOEXEC));
  const int fd = use_stdin ? command_input() : file.get();
  const std::string name = use_stdin ? std::string("standard input") : options.file;
  std::uint64_t total = 0;
  if (!use_stdin) {
    if (fd < 0) {
      write_error("error: cannot open " + options.file + ": " + std::strerror(errno) + "\n");
      return exit_usage;
    }
    struct stat info {};
    if (::fstat(fd, &info) == 0) {
      if (S_ISDIR(info.st_mode)) {
        write_error("error: " + options.file + " is a directory\n");
        return exit_usage;
      }
      if (S_ISREG(info.st_mode)) total = static_cast<std::uint64_t>(info.st_size);
    }
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
  } else if (::isatty(fd) == 1 && ::isatty(STDERR_FILENO) == 1) {
    write_error("(reading inputs from standard input, one per line; end with Ctrl-D)\n");
  }
  int code = exit_ok;
  std::uint64_t inputs = 0;
  std::uint64_t refused = 0;
  {
    // The progress line is for a person waiting on a file being worked through.
    Progress progress(name, total, !use_stdin && ::isatty(STDERR_FILENO) == 1);
    const ProgressScope scope(progress);
    Runner runner(handler, note, format, standard_output());
    code = read_lines(fd, name, runner, progress);
    progress.clear();
    inputs = runner.inputs();
    refused = runner.refused();
  }
  if (refused > 0) {
    const std::string counts = std::to_string(refused) +
                               (msgcat::language_of(message_locale()) == "de" ? " von " : " of ") +
                               std::to_string(inputs);
    write_error(msgcat::language_of(message_locale()) == "de"
                    ? "ui-core: " + counts + (inputs == 1 ? " Eingabe" : " Eingaben") +
                          " abgelehnt\n"
                    : "ui-core: " + counts + (inputs == 1 ? " input" : " inputs") + " refused\n");
    if (code == exit_ok) code = exit_refused;
  }
  return code;
}

}  // namespace ui_core_tool
