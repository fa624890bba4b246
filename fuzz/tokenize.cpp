// fuzz/tokenize.cpp - the foundation library's tokenize and trim
//
// The first byte of the input is a delimiter (together with ',', which the
// subscript parser splits at); the rest is the text. Properties:
// - tokenize keeps empty pieces: there is one piece more than there are
//   delimiter characters, no piece holds a delimiter, and the pieces joined
//   with the delimiters that stood between them give the text back;
// - trim removes exactly the leading and trailing POSIX white space: the
//   result is the text between them, has none at either end, and trimming it
//   again changes nothing.

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "krel/ustring.h"

namespace {

bool is_space_byte(char c) {
  return fuzz::is_space_unit(static_cast<unsigned char>(c));
}

void check(const std::string& text, const std::string& delimiters) {
  const fuzz::ustring shown = fuzz::u(delimiters + " | ") + fuzz::ustring(text.begin(), text.end());

  const std::vector<std::string> pieces = krel::tokenize(text, delimiters);
  std::size_t delimiter_count = 0;
  for (const char c : text) {
    if (delimiters.find(c) != std::string::npos) ++delimiter_count;
  }
  fuzz::require(pieces.size() == delimiter_count + 1,
                "tokenize gives one piece more than there are delimiters", shown);
  std::string joined;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    fuzz::require(pieces[i].find_first_of(delimiters) == std::string::npos,
                  "no piece holds a delimiter", shown);
    joined += pieces[i];
    if (i + 1 < pieces.size()) {
      if (joined.size() >= text.size()) fuzz::fail("pieces are longer than the text", shown);
      joined += text[joined.size()];  // the delimiter that stood here
    }
  }
  fuzz::require(joined == text, "the pieces and delimiters give the text back", shown);

  const std::string trimmed = krel::trim(text);
  std::size_t first = 0;
  while (first < text.size() && is_space_byte(text[first])) ++first;
  std::size_t last = text.size();
  while (last > first && is_space_byte(text[last - 1])) --last;
  fuzz::require(trimmed == text.substr(first, last - first),
                "trim removes exactly the white space at both ends", shown);
  fuzz::require(krel::trim(trimmed) == trimmed, "trimming twice changes nothing", shown);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    check(std::string(), ",");
    return 0;
  }
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::string delimiters(1, static_cast<char>(data[0]));
  if (delimiters[0] != ',') delimiters.push_back(',');
  check(text, delimiters);
  return 0;
}
