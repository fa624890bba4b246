#include "ui/core/text_utils.h"

#include <array>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <unordered_map>

namespace ui::core {
namespace {

constexpr char16_t solidus = u'/';

// Eight code units compared at once (one SSE2 register on x86-64; the
// compilers map it to whatever the target has).
using Lanes = std::uint16_t __attribute__((vector_size(16)));
constexpr std::size_t lane_count = sizeof(Lanes) / sizeof(std::uint16_t);

// The replacements of escape_xml. The hash table holds them, and every
// replacement written is looked up in it. The scan that finds the next code
// unit to replace uses two quicker views of the table's keys, filled from its
// entries so they can never disagree with it: each key repeated in every lane,
// to test eight code units against all keys at once, and a flag per ASCII code
// unit for the few code units looked at one by one. Every key is ASCII.
struct XmlEscapes {
  std::unordered_map<char16_t, ustring> replacements;
  std::array<bool, 128> flagged{};
  Lanes key_lanes[5];
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
    assert(e.replacements.size() == std::size(e.key_lanes));
    std::size_t k = 0;
    for (const auto& entry : e.replacements) {
      const char16_t unit = entry.first;
      assert(unit < e.flagged.size() && "the scan only knows ASCII keys");
      e.flagged[unit] = true;
      for (std::size_t lane = 0; lane < lane_count; ++lane) e.key_lanes[k][lane] = unit;
      ++k;
    }
    return e;
  }();
  return escapes;
}

// True when code unit `c` has a replacement.
bool is_flagged(char16_t c, const XmlEscapes& escapes) noexcept {
  return c < escapes.flagged.size() && escapes.flagged[c];
}

// The first code unit in [p, end) that has a replacement, or `end`. Blocks of
// eight code units without any key are skipped whole; the block holding a
// key, and the last few code units, are looked at one by one.
const char16_t* find_escaped(const char16_t* p, const char16_t* end,
                             const XmlEscapes& escapes) noexcept {
  while (static_cast<std::size_t>(end - p) >= lane_count) {
    Lanes units;
    std::memcpy(&units, p, sizeof units);
    auto hits = units == escapes.key_lanes[0];
    for (std::size_t k = 1; k < std::size(escapes.key_lanes); ++k) {
      hits |= units == escapes.key_lanes[k];
    }
    std::uint64_t halves[2];
    std::memcpy(halves, &hits, sizeof halves);
    if ((halves[0] | halves[1]) != 0) break;
    p += lane_count;
  }
  for (; p != end; ++p) {
    if (is_flagged(*p, escapes)) break;
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
    const char16_t* const hit = find_escaped(run, end, escapes);
    result.append(run, static_cast<std::size_t>(hit - run));
    if (hit == end) break;
    result += escapes.replacements.find(*hit)->second;
    run = hit + 1;
  }
  return result;
}

}  // namespace ui::core
