// Throughput of escape_xml on prose and on markup, next to the plain loop that
// looks every code unit up in the replacement table.

#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <string_view>
#include <unordered_map>

#include "ui/core/text_utils.h"

namespace {

using ui::core::ustring;

constexpr std::size_t one_mib_of_code_units = (std::size_t{1} << 20) / sizeof(char16_t);

// Sentences of words with the punctuation of ordinary prose: commas and full
// stops everywhere, now and then an apostrophe, a quotation or an ampersand,
// and some letters outside ASCII.
ustring prose_text() {
  static constexpr std::array<std::u16string_view, 24> words = {
      u"the",    u"model",     u"carries", u"units",   u"and",      u"each",
      u"block",  u"converts",  u"its",     u"inputs",  u"Größe",    u"vitesse",
      u"mass",   u"of",        u"a",       u"frame",   u"régime",   u"between",
      u"signal", u"parameter", u"is",      u"written", u"together", u"when"};
  static constexpr std::array<std::u16string_view, 10> after = {
      u" ", u" ", u" ", u" ", u" ", u", ", u". ", u"'s ", u" & ", u"\" "};
  std::mt19937 rng(42);
  std::uniform_int_distribution<std::size_t> word(0, words.size() - 1);
  std::uniform_int_distribution<int> gap(0, 99);
  ustring text;
  while (text.size() < one_mib_of_code_units) {
    text += words[word(rng)];
    const int g = gap(rng);
    // Mostly blanks; about one in six gaps is punctuation, and one in fifty
    // needs escaping.
    text += g < 83 ? after[0] : g < 91 ? after[5] : g < 98 ? after[6] : after[7 + (g - 98)];
  }
  text.resize(one_mib_of_code_units);
  return text;
}

// Element tags with attributes and entities, about one special character in
// every six code units.
ustring markup_text() {
  static constexpr std::u16string_view piece =
      u"<p class=\"note\" id='n1'>Tom &amp; Jerry's <b>5 > 3</b> & \"x\" < y</p>\n";
  ustring text;
  while (text.size() < one_mib_of_code_units) text += piece;
  text.resize(one_mib_of_code_units);
  return text;
}

// The straightforward way: one table lookup and one append per code unit.
ustring per_code_unit_escape(const ustring& text) {
  static const std::unordered_map<char16_t, ustring> table = {
      {u'&', u"&amp;"}, {u'\'', u"&apos;"}, {u'"', u"&quot;"}, {u'>', u"&gt;"}, {u'<', u"&lt;"}};
  ustring out;
  for (char16_t c : text) {
    const auto it = table.find(c);
    if (it != table.end()) {
      out += it->second;
    } else {
      out += c;
    }
  }
  return out;
}

template <ustring (*make)(), ustring (*escape)(const ustring&)>
void run(benchmark::State& state) {
  const ustring text = make();
  for (auto _ : state) {
    ustring out = escape(text);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size() * sizeof(char16_t)));
}

ustring library_escape(const ustring& text) {
  return ui::core::escape_xml(text);
}

BENCHMARK(run<prose_text, library_escape>)->Name("EscapeXml/Prose1MiB");
BENCHMARK(run<prose_text, per_code_unit_escape>)->Name("PerCodeUnitReference/Prose1MiB");
BENCHMARK(run<markup_text, library_escape>)->Name("EscapeXml/Markup1MiB");
BENCHMARK(run<markup_text, per_code_unit_escape>)->Name("PerCodeUnitReference/Markup1MiB");

}  // namespace
