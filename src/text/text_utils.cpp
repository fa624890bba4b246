#include "ui/core/text_utils.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "../common/slash_runs_impl.h"
#include "xml_scan_impl.h"

namespace ui::core {
namespace {

// What escape_xml writes for one ASCII code unit: its replacement, or the
// unit itself. Padded to eight units so that it is copied with one fixed-size
// copy and the output pointer then advances by `length`.
struct XmlOutput {
  char16_t units[8];
  std::size_t length;
};

// The replacements of escape_xml, built once from the table of five entries.
// The hash table is the definition; `by_unit` is the view of it by ASCII code
// unit that the loop reads.
struct XmlEscapes {
  std::unordered_map<char16_t, ustring> replacements;
  std::array<XmlOutput, 128> by_unit{};
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
    for (std::size_t unit = 0; unit < e.by_unit.size(); ++unit) {
      e.by_unit[unit] = XmlOutput{{static_cast<char16_t>(unit)}, 1};
    }
    for (const auto& [unit, replacement] : e.replacements) {
      assert(unit < e.by_unit.size() && detail::is_xml_special(unit) &&
             replacement.size() <= std::size(XmlOutput{}.units) &&
             "the scans know exactly the table's keys");
      XmlOutput& out = e.by_unit[unit];
      std::copy(replacement.begin(), replacement.end(), out.units);
      out.length = replacement.size();
    }
    return e;
  }();
  return escapes;
}

// Writes the `count` code units at p (at most one block) to `out` with the
// special ones, at the set bits of `mask`, replaced, and returns the end of
// what it wrote; `out` needs room for xml_block_room code units. Every copy
// has one fixed size (xml_block code units) whatever the distance between two
// specials, and the output pointer then advances by the length that counts;
// so the copies may read up to two blocks from p, which must be readable
// (`readable` code units from p; with fewer, the block is first copied into a
// buffer of two blocks).
constexpr std::size_t xml_block_room = detail::xml_block * 7;

char16_t* write_block(char16_t* out, const char16_t* p, std::size_t count, std::size_t readable,
                      unsigned mask, const XmlEscapes& escapes) noexcept {
  constexpr std::size_t n = detail::xml_block;
  char16_t padded[2 * n] = {};
  const char16_t* block = p;
  if (readable < 2 * n) {
    std::memcpy(padded, p, count * sizeof(char16_t));
    block = padded;
  }
  const char16_t* from = block;
  for (; mask != 0; mask &= mask - 1) {
    const char16_t* const hit = block + __builtin_ctz(mask);
    std::memcpy(out, from, n * sizeof(char16_t));
    out += hit - from;
    const XmlOutput& o = escapes.by_unit[*hit];
    std::memcpy(out, o.units, sizeof o.units);
    out += o.length;
    from = hit + 1;
  }
  std::memcpy(out, from, n * sizeof(char16_t));
  return out + ((block + count) - from);
}

}  // namespace

ustring block_name(const ustring& path) {
  const char16_t* const begin = path.data();
  const char16_t* separator = nullptr;
  detail::SlashRuns runs(begin, begin + path.size());
  while (const std::optional<detail::SlashRun> run = runs.next()) {
    // Pairs are taken from the right: the separator of an odd run is its first
    // "/", so in "a///b" the last two are the pair and the name is "//b". The
    // last such run holds the separator before the name.
    if (run->is_odd()) separator = run->first;
  }
  // A leading separator would leave the model name empty; such a path is
  // taken as one name.
  if (separator == nullptr || separator == begin) return path;
  return ustring(separator + 1, begin + path.size());
}

ustring block_path_without_model(const ustring& path) {
  const char16_t* const begin = path.data();
  const char16_t* const end = begin + path.size();
  detail::SlashRuns runs(begin, end);
  while (const std::optional<detail::SlashRun> run = runs.next()) {
    // Pairs are taken from the left: the separator of an odd run is its last
    // "/", so in "a///b" the first two are the pair and the model is "a//".
    // The first such run holds the separator after the model name.
    if (run->is_odd()) return ustring(run->last, end);
  }
  return path;
}

ustring escape_xml(const ustring& text) {
  const XmlEscapes& escapes = xml_escapes();
  const char16_t* p = text.data();
  const char16_t* const end = p + text.size();
  ustring result;
  // Room for the text and a few replacements: prose fits without growing,
  // and text dense with specials grows geometrically like any string.
  result.reserve(text.size() + text.size() / 16);
  // Blocks without a special code unit join the current run, which is copied
  // in one append. Blocks with specials are written to a buffer on the stack,
  // which collects consecutive such blocks (text dense with specials) and is
  // appended when it is full or a block without specials follows.
  char16_t staged[64 * detail::xml_block];
  char16_t* out = staged;
  auto flush_staged = [&] {
    result.append(staged, static_cast<std::size_t>(out - staged));
    out = staged;
  };
  const char16_t* run = p;
  for (; static_cast<std::size_t>(end - p) >= detail::xml_block; p += detail::xml_block) {
    const unsigned mask = detail::xml_special_mask(p);
    if (mask == 0) {
      if (out != staged) flush_staged();
      continue;
    }
    if (run != p) {
      result.append(run, static_cast<std::size_t>(p - run));
    } else if (static_cast<std::size_t>(std::end(staged) - out) < xml_block_room) {
      flush_staged();
    }
    out = write_block(out, p, detail::xml_block, static_cast<std::size_t>(end - p), mask, escapes);
    run = p + detail::xml_block;
  }
  flush_staged();
  result.append(run, static_cast<std::size_t>(p - run));
  if (p != end) {
    // The last units, fewer than a block, padded with code units that are
    // never special.
    const auto count = static_cast<std::size_t>(end - p);
    char16_t tail[detail::xml_block] = {};
    std::memcpy(tail, p, count * sizeof(char16_t));
    out = write_block(out, tail, count, count, detail::xml_special_mask(tail), escapes);
    flush_staged();
  }
  return result;
}

}  // namespace ui::core
