#include "msgcat/catalogue.h"

#include <algorithm>
#include <clocale>
#include <locale>
#include <map>
#include <memory>
#include <stdexcept>
#include <tuple>

#include <unicode/fmtable.h>
#include <unicode/msgfmt.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include "catalogue_data.h"

namespace msgcat {
namespace {

std::u16string to_u16(std::string_view utf8) {
  icu::UnicodeString u = icu::UnicodeString::fromUTF8(
      icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
  return std::u16string(reinterpret_cast<const char16_t*>(u.getBuffer()),
                        static_cast<std::size_t>(u.length()));
}

std::string_view strip(std::string_view s) {
  const auto is_space = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!s.empty() && is_space(s.front())) s.remove_prefix(1);
  while (!s.empty() && is_space(s.back())) s.remove_suffix(1);
  return s;
}

// Reads one data file: "@catalogue <name>" and "@language <code>" lines set the
// context, "Key = pattern" lines add texts, '#' starts a comment line. A
// malformed file is a build defect, so it throws (and the tests catch it).
void parse_file(const detail::DataFile& file, std::vector<Entry>& out) {
  std::string catalogue;
  std::string language;
  std::string_view rest = file.text;
  while (!rest.empty()) {
    const std::size_t nl = rest.find('\n');
    std::string_view line = strip(rest.substr(0, nl));
    rest = nl == std::string_view::npos ? std::string_view() : rest.substr(nl + 1);
    if (line.empty() || line.front() == '#') continue;
    if (line.starts_with("@catalogue ")) {
      catalogue = std::string(strip(line.substr(11)));
    } else if (line.starts_with("@language ")) {
      language = std::string(strip(line.substr(10)));
    } else {
      const std::size_t eq = line.find('=');
      if (eq == std::string_view::npos || catalogue.empty() || language.empty()) {
        throw std::logic_error("msgcat: malformed line in " + std::string(file.name) + ": " +
                               std::string(line));
      }
      out.push_back(Entry{catalogue, std::string(strip(line.substr(0, eq))), language,
                          to_u16(strip(line.substr(eq + 1)))});
    }
  }
}

struct Catalogue {
  std::vector<Entry> entries;
  std::map<std::tuple<std::string_view, std::string_view, std::string_view>, const Entry*> index;
};

const Catalogue& catalogue() {
  static const Catalogue built = [] {
    Catalogue c;
    for (const auto& file : detail::data_files()) parse_file(file, c.entries);
    std::stable_sort(c.entries.begin(), c.entries.end(), [](const Entry& a, const Entry& b) {
      return std::tie(a.catalogue, a.key, a.language) < std::tie(b.catalogue, b.key, b.language);
    });
    for (const Entry& e : c.entries) c.index.emplace(std::tie(e.catalogue, e.key, e.language), &e);
    return c;
  }();
  return built;
}

const Entry* find_entry(std::string_view catalogue_name, std::string_view key,
                        std::string_view language) {
  const auto& index = catalogue().index;
  auto it = index.find(std::make_tuple(catalogue_name, key, language));
  return it == index.end() ? nullptr : it->second;
}

icu::Formattable to_formattable(const resource_core::BaseMsgID::Argument& arg) {
  struct Visitor {
    icu::Formattable operator()(std::uint64_t v) const {
      // Formattable has no unsigned 64-bit constructor; a decimal number keeps
      // values above INT64_MAX exact.
      UErrorCode status = U_ZERO_ERROR;
      const std::string digits = std::to_string(v);
      icu::Formattable f(icu::StringPiece(digits.c_str()), status);
      return U_SUCCESS(status) ? f : icu::Formattable(static_cast<double>(v));
    }
    icu::Formattable operator()(std::int64_t v) const {
      return icu::Formattable(static_cast<int64_t>(v));
    }
    icu::Formattable operator()(const std::u16string& v) const {
      return icu::Formattable(icu::UnicodeString(reinterpret_cast<const UChar*>(v.data()),
                                                 static_cast<int32_t>(v.size())));
    }
    icu::Formattable operator()(double v) const { return icu::Formattable(v); }
  };
  return std::visit(Visitor{}, arg);
}

std::u16string argument_text(const resource_core::BaseMsgID::Argument& arg) {
  struct Visitor {
    std::u16string operator()(std::uint64_t v) const { return to_u16(std::to_string(v)); }
    std::u16string operator()(std::int64_t v) const { return to_u16(std::to_string(v)); }
    std::u16string operator()(const std::u16string& v) const { return v; }
    std::u16string operator()(double v) const { return to_u16(std::to_string(v)); }
  };
  return std::visit(Visitor{}, arg);
}

// What an identifier that has no text reads as: "catalogue:key(arg, arg)".
std::u16string identifier_text(const resource_core::BaseMsgID& id) {
  std::u16string text = to_u16(id.catalogue + ":" + id.key);
  if (!id.arguments.empty()) {
    text += u'(';
    for (std::size_t i = 0; i < id.arguments.size(); ++i) {
      if (i != 0) text += u", ";
      text += argument_text(id.arguments[i]);
    }
    text += u')';
  }
  return text;
}

}  // namespace

std::string language_of(std::string_view locale_name) {
  // A composite name lists each category; the messages category decides.
  if (const std::size_t pos = locale_name.find("LC_MESSAGES="); pos != std::string_view::npos) {
    locale_name.remove_prefix(pos + 12);
    locale_name = locale_name.substr(0, locale_name.find(';'));
  }
  const std::size_t end = locale_name.find_first_of("_.@-");
  std::string language(locale_name.substr(0, end));
  for (char& c : language) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (language.empty() || language == "c" || language == "posix" || language == "*") return "en";
  return language;
}

std::string global_locale_name() {
  // The C library's messages category: setlocale(LC_ALL, "") sets it, and so
  // does std::locale::global with a named locale. It is also the locale the
  // narrow text conversions follow (their character category), so a program
  // that sets either gets messages and bytes from the same setting.
  const char* name = std::setlocale(LC_MESSAGES, nullptr);
  return name != nullptr ? std::string(name) : std::string("C");
}

std::optional<std::u16string> find_pattern(std::string_view catalogue_name, std::string_view key,
                                           std::string_view language) {
  if (const Entry* e = find_entry(catalogue_name, key, language)) return e->pattern;
  return std::nullopt;
}

std::u16string format(const resource_core::BaseMsgID& id, std::string_view locale_name) {
  std::string language = language_of(locale_name);
  const Entry* entry = find_entry(id.catalogue, id.key, language);
  if (entry == nullptr) {
    language = "en";
    entry = find_entry(id.catalogue, id.key, language);
  }
  if (entry == nullptr) return identifier_text(id);

  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString pattern(reinterpret_cast<const UChar*>(entry->pattern.data()),
                             static_cast<int32_t>(entry->pattern.size()));
  icu::MessageFormat formatter(pattern, icu::Locale(language.c_str()), status);
  if (U_FAILURE(status)) return identifier_text(id);
  std::vector<icu::Formattable> args;
  args.reserve(id.arguments.size());
  for (const auto& a : id.arguments) args.push_back(to_formattable(a));
  icu::UnicodeString result;
  icu::FieldPosition ignore(icu::FieldPosition::DONT_CARE);
  formatter.format(args.data(), static_cast<int32_t>(args.size()), result, ignore, status);
  if (U_FAILURE(status)) return identifier_text(id);
  return std::u16string(reinterpret_cast<const char16_t*>(result.getBuffer()),
                        static_cast<std::size_t>(result.length()));
}

std::u16string format(const resource_core::BaseMsgID& id) {
  return format(id, global_locale_name());
}

const std::vector<Entry>& entries() {
  return catalogue().entries;
}

}  // namespace msgcat
