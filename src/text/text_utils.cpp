#include "ui/core/text_utils.h"

#include <array>
#include <cassert>
#include <unordered_map>

namespace ui::core {
namespace {

constexpr char16_t solidus = u'/';

// The replacements of escape_xml. The hash table is what every call looks a
// replacement up in; `flagged` says, for each ASCII code unit, whether the
// table has an entry for it, so the scan can skip ordinary text without a
// lookup per code unit. Both are filled from the same list, and every key is
// ASCII, so the two always agree.
struct XmlEscapes {
  std::unordered_map<char16_t, ustring> replacements;
  std::array<bool, 128> flagged{};
};

const XmlEscapes& xml_escapes() {
  // Built once, by the first caller; concurrent first callers wait for it.
  // It is only read afterwards and lives until the process exits.
  static const XmlEscapes escapes = [] {
    XmlEscapes e;
    e.replacements.emplace(u'&', u"&amp;");
    e.replacements.emplace(u'\'', u"&apos;");
    e.replacements.emplace(u'"', u"&quot;");
    e.replacements.emplace(u'>', u"&gt;");
    e.replacements.emplace(u'<', u"&lt;");
    for (const auto& [unit, replacement] : e.replacements) {
      assert(unit < e.flagged.size() && "the scan only flags ASCII code units");
      e.flagged[unit] = true;
    }
    return e;
  }();
  return escapes;
}

// The first code unit in [p, end) that has a replacement, or `end`.
const char16_t* find_escaped(const char16_t* p, const char16_t* end,
                             const std::array<bool, 128>& flagged) noexcept {
  for (; p != end; ++p) {
    if (*p < flagged.size() && flagged[*p]) break;
  }
  return p;
}

}  // namespace

ustring block_name(const ustring& path) {
  if (path.empty()) return ustring();
  std::size_t p = path.rfind(solidus);
  // A solidus preceded by another is the second half of an escaped pair; the
  // search resumes before the pair. Matching from the right makes the last
  // two of "///" the pair and the first the separator.
  while (p != ustring::npos && p >= 1 && path[p - 1] == solidus) {
    p = path.rfind(solidus, p >= 2 ? p - 2 : 0);
  }
  // A leading separator would leave the model name empty; such a path is
  // taken as one name.
  if (p == ustring::npos || p == 0) return path;
  return path.substr(p + 1);
}

ustring block_path_without_model(const ustring& path) {
  if (path.empty()) return ustring();
  std::size_t p = path.find(solidus);
  // A solidus followed by another starts an escaped pair; skip both. Matching
  // from the left makes the first two of "///" the pair and the third the
  // separator.
  while (p != ustring::npos && p + 1 < path.size() && path[p + 1] == solidus) {
    p = path.find(solidus, p + 2);
  }
  if (p == ustring::npos) return path;
  if (p + 1 >= path.size()) return ustring();
  return path.substr(p + 1);
}

ustring escape_xml(const ustring& text) {
  const XmlEscapes& escapes = xml_escapes();
  ustring result;
  const char16_t* run = text.data();
  const char16_t* const end = run + text.size();
  // Copy each stretch of ordinary code units in one append, then the
  // replacement of the code unit that ended it.
  for (;;) {
    const char16_t* const hit = find_escaped(run, end, escapes.flagged);
    result.append(run, static_cast<std::size_t>(hit - run));
    if (hit == end) break;
    result += escapes.replacements.find(*hit)->second;
    run = hit + 1;
  }
  return result;
}

}  // namespace ui::core
