// fuzz/object_path_name.cpp - the names of object paths
//
// The name rule is written out here on its own (not empty, first and last
// code unit not "/", every maximal run of "/" of even length). Properties:
// - the constructor, ObjectPathName::make and the check object accept exactly
//   the texts the rule accepts; the constructor and the check refuse the
//   others with InvalidObjectPathName carrying the text as given;
// - an accepted name stores the text with POSIX white space made spaces, and a
//   name built again from its stored text is the same text;
// - operator<< writes the stored text as UTF-8 whatever the locale.

#include <cstdint>
#include <optional>
#include <sstream>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/errors.h"
#include "ui/core/object_path_name.h"

namespace {

using fuzz::ustring;
using ui::core::ErrorId;
using ui::core::ObjectPathName;

bool reference_is_name(const ustring& text) {
  if (text.empty() || text.front() == u'/' || text.back() == u'/') return false;
  std::size_t run = 0;
  for (const char16_t c : text) {
    if (c == u'/') {
      ++run;
    } else {
      if (run % 2 != 0) return false;
      run = 0;
    }
  }
  return true;  // the text does not end in "/", so the last run was closed
}

void check(const ustring& text) {
  const bool valid = reference_is_name(text);
  std::optional<ObjectPathName> built;
  const auto thrown = fuzz::message_thrown_by([&] { built.emplace(text); }, text);
  const std::optional<ObjectPathName> made = ObjectPathName::make(text);
  std::optional<krel::BasicTableString<char16_t>> checked;
  const auto check_thrown = fuzz::message_thrown_by(
      [&] { checked = ui::core::detail::ObjectPathNameCheck{}(text); }, text);

  fuzz::require(built.has_value() == valid, "the constructor follows the name rule", text);
  fuzz::require(made.has_value() == valid, "make accepts exactly the texts the constructor accepts",
                text);
  fuzz::require(checked.has_value() == valid, "the check object follows the name rule", text);
  if (!valid) {
    for (const auto* e : {&thrown, &check_thrown}) {
      fuzz::require(ui::core::is_error(**e, ErrorId::InvalidObjectPathName) &&
                        fuzz::has_text_argument(**e, text),
                    "a refused name throws InvalidObjectPathName with the raw text", text);
    }
    return;
  }
  const ustring stored = built->text();
  fuzz::require(stored == fuzz::cleaned(text), "a name stores its text with white space cleaned",
                text);
  fuzz::require(ustring(made->text()) == stored && ustring(*checked) == stored,
                "make and the check store what the constructor stores", text);
  fuzz::require(ustring(ObjectPathName(stored).text()) == stored,
                "a name rebuilt from its stored text keeps it", text);
  std::ostringstream out;
  out << *built;
  fuzz::require(out.str() == krel::ustring_to_utf8_string(stored),
                "operator<< writes the name as UTF-8", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) check(text);
  return 0;
}
