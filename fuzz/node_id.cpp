// fuzz/node_id.cpp - node identifiers and the separator rule
//
// The character functions are compared with the separator rule written out
// here on its own: a "/" followed by "/" is an escaped pair (pairs taken from
// the left), any other "/" separates. Properties:
// - find_node_sep (whole text and sub-ranges), is_node_sep_escaped, is_node_id,
//   is_node_path and the head/tail tests answer as that rule says;
// - clean_white_space replaces each POSIX white-space unit by a space and
//   nothing else;
// - NodeId(text) throws exactly when is_node_id(text) is false, and then
//   InvalidNodeId carrying the text as given; NodeId::make accepts exactly the
//   same texts; an accepted identifier stores the cleaned text and is equal to
//   its copies and to an identifier built again from its own text;
// - operator<< writes the text in the local encoding.

#include <cstdint>
#include <sstream>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/errors.h"
#include "ui/core/node_id.h"

namespace {

using fuzz::ustring;
using ui::core::ErrorId;
using ui::core::NodeId;

// The first unescaped "/" in [first, last) as an offset from `first`.
std::size_t reference_find_sep(const ustring& text, std::size_t first, std::size_t last) {
  for (std::size_t i = first; i < last; ++i) {
    if (text[i] != u'/') continue;
    if (i + 1 < last && text[i + 1] == u'/') {
      ++i;  // an escaped pair
      continue;
    }
    return i;
  }
  return last;
}

bool reference_is_node_path(const ustring& text) {
  if (!text.empty() && text[0] == u'/') return false;
  if (text.size() < 2) return true;
  if (text.back() != u'/') return true;
  return text[text.size() - 2] == u'/';
}

void check_character_functions(const ustring& text) {
  const std::size_t n = text.size();
  fuzz::require(static_cast<std::size_t>(ui::core::find_node_sep(text) - text.begin()) ==
                    reference_find_sep(text, 0, n),
                "find_node_sep(text) finds the first unescaped separator", text);
  // Sub-ranges: a pair cut in half by the range's end is a separator.
  const std::size_t starts[] = {0, n > 0 ? 1u : 0u, n / 2};
  for (const std::size_t first : starts) {
    for (const std::size_t last : {n, n > first ? n - 1 : n, first + (n - first) / 2}) {
      const auto found = ui::core::find_node_sep(text.begin() + static_cast<std::ptrdiff_t>(first),
                                                 text.begin() + static_cast<std::ptrdiff_t>(last));
      fuzz::require(
          static_cast<std::size_t>(found - text.begin()) == reference_find_sep(text, first, last),
          "find_node_sep(first, last) stays inside its range", text);
    }
  }
  const bool escaped = reference_find_sep(text, 0, n) == n;
  fuzz::require(ui::core::is_node_sep_escaped(text) == escaped,
                "is_node_sep_escaped is true exactly without an unescaped separator", text);
  fuzz::require(ui::core::is_node_id_head_char(text) == (n == 0 || text[0] != u'/'),
                "is_node_id_head_char tests the first unit", text);
  fuzz::require(ui::core::is_node_id_tail_char(text) == (n == 0 || text[n - 1] != u'/'),
                "is_node_id_tail_char tests the last unit", text);
  const bool id = n > 0 && text[0] != u'/' && text[n - 1] != u'/' && escaped;
  fuzz::require(ui::core::is_node_id(text) == id, "is_node_id follows the identifier rule", text);
  fuzz::require(ui::core::is_node_path(text) == reference_is_node_path(text),
                "is_node_path looks at the ends only", text);
  for (const char16_t c : {n > 0 ? text[0] : u'a', n > 0 ? text[n - 1] : u'/'}) {
    fuzz::require(ui::core::is_node_sep(c) == (c == u'/'), "is_node_sep is true only for '/'",
                  text);
  }
  fuzz::require(ui::core::clean_white_space(text) == fuzz::cleaned(text),
                "clean_white_space replaces POSIX white space by spaces, one for one", text);
}

void check_node_id(const ustring& text) {
  std::optional<NodeId> built;
  const auto thrown = fuzz::message_thrown_by([&] { built.emplace(text); }, text);
  const std::optional<NodeId> made = NodeId::make(text);
  fuzz::require(thrown.has_value() != ui::core::is_node_id(text),
                "NodeId throws exactly when is_node_id is false", text);
  fuzz::require(made.has_value() == built.has_value(),
                "NodeId::make accepts exactly the texts the constructor accepts", text);
  if (thrown) {
    fuzz::require(ui::core::is_error(*thrown, ErrorId::InvalidNodeId) &&
                      fuzz::has_text_argument(*thrown, text),
                  "a refused identifier throws InvalidNodeId with the text as given", text);
    return;
  }
  fuzz::require(built->ustring() == fuzz::cleaned(text), "an identifier stores the cleaned text",
                text);
  fuzz::require(made->ustring() == built->ustring(), "make stores what the constructor stores",
                text);
  const NodeId copy = *built;  // NOLINT(performance-unnecessary-copy-initialization)
  fuzz::require(copy == *built && copy.shares_record_with(*built), "a copy shares and is equal",
                text);
  const NodeId again(built->ustring());
  fuzz::require(again == *built && again.ustring() == built->ustring(),
                "an identifier rebuilt from its text is equal", text);
  fuzz::require(*made == *built, "equal texts give equal identifiers", text);
  std::ostringstream out;
  out << *built;
  fuzz::require(out.str() == krel::ustring_to_local_encoded_string(built->ustring()),
                "operator<< writes the text in the local encoding", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) {
    check_character_functions(text);
    check_node_id(text);
  }
  return 0;
}
