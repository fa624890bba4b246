// msgcat/catalogue.h - the message catalogue: texts of messages by locale
//
// Every message text lives in a data file per catalogue and language, built
// into this library. A text is an ICU message pattern whose placeholders {0},
// {1}, ... take the identifier's arguments in order. Lookup falls back to
// English; an identifier the catalogue does not know formats as the identifier
// itself followed by its arguments, so a message never reads as empty.
//
//   resource_core::BaseMsgID id{{std::u16string(u"/mass")},
//                               "kalder:common:ui:core:kernel:path", "InvalidNodePath"};
//   msgcat::format(id, "de_DE.UTF-8");  // the German text with '/mass' in it

#ifndef MSGCAT_CATALOGUE_H
#define MSGCAT_CATALOGUE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "resource_core/base_msg_id.h"

namespace msgcat {

/// The language a locale name selects: "de_DE.UTF-8" and "de" give "de";
/// "C", "POSIX" and the empty name give "en". A composite name such as
/// "LC_CTYPE=...;LC_MESSAGES=de_DE.UTF-8;..." is read at its LC_MESSAGES part.
[[nodiscard]] std::string language_of(std::string_view locale_name);

/// The name of the C library's messages category (setlocale(LC_MESSAGES,
/// nullptr)): set by setlocale(LC_ALL, "") and by std::locale::global with a
/// named locale alike, and the same setting the narrow text conversions use.
[[nodiscard]] std::string global_locale_name();

/// The pattern stored for (catalogue, key) in exactly that language, if any.
[[nodiscard]] std::optional<std::u16string> find_pattern(std::string_view catalogue,
                                                         std::string_view key,
                                                         std::string_view language);

/// The text of the message in the language of `locale_name`, falling back to
/// English, with its arguments filled in.
[[nodiscard]] std::u16string format(const resource_core::BaseMsgID& id,
                                    std::string_view locale_name);

/// The same, in the language of global_locale_name().
[[nodiscard]] std::u16string format(const resource_core::BaseMsgID& id);

/// One entry of the built-in catalogue.
struct Entry {
  std::string catalogue;
  std::string key;
  std::string language;
  std::u16string pattern;
};

/// Every entry, in a stable order (for tests and tools).
[[nodiscard]] const std::vector<Entry>& entries();

}  // namespace msgcat

#endif  // MSGCAT_CATALOGUE_H
