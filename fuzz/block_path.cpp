// fuzz/block_path.cpp - block_name and block_path_without_model
//
// Both functions are compared with the block path rule written out here: in
// block_name escaped pairs are matched from the right and a separator at the
// first unit does not count; in block_path_without_model pairs are matched
// from the left and a separator at the first unit does count. Properties
// beyond that comparison: each result is a suffix of the path, the argument is
// left unchanged, and nothing is thrown for any text.

#include <cstdint>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/text_utils.h"

namespace {

using fuzz::ustring;

ustring reference_block_name(const ustring& path) {
  if (path.empty()) return {};
  // Scan from the right; a "/" preceded by "/" is the second half of a pair.
  std::size_t p = path.rfind(u'/');
  while (p != ustring::npos && p >= 1 && path[p - 1] == u'/') {
    p = p >= 2 ? path.rfind(u'/', p - 2) : ustring::npos;
  }
  if (p == ustring::npos || p == 0) return path;
  return path.substr(p + 1);
}

ustring reference_without_model(const ustring& path) {
  if (path.empty()) return {};
  std::size_t p = path.find(u'/');
  while (p != ustring::npos && p + 1 < path.size() && path[p + 1] == u'/') {
    p = path.find(u'/', p + 2);
  }
  if (p == ustring::npos) return path;
  return path.substr(p + 1);
}

bool is_suffix(const ustring& part, const ustring& whole) {
  return part.size() <= whole.size() &&
         whole.compare(whole.size() - part.size(), ustring::npos, part) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) {
    const ustring copy = text;
    ustring name;
    ustring rest;
    fuzz::require_no_throw([&] { name = ui::core::block_name(text); }, "block_name never throws",
                           text);
    fuzz::require_no_throw([&] { rest = ui::core::block_path_without_model(text); },
                           "block_path_without_model never throws", text);
    fuzz::require(text == copy, "the argument is left unchanged", text);
    fuzz::require(name == reference_block_name(text),
                  "block_name matches pairs from the right and ignores a separator at 0", text);
    fuzz::require(rest == reference_without_model(text),
                  "block_path_without_model matches pairs from the left", text);
    fuzz::require(is_suffix(name, text) && is_suffix(rest, text),
                  "both results are suffixes of the path", text);
  }
  return 0;
}
