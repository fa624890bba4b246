// XML escaping of prose (about one special character in 200) and of markup
// (one in 8): escape_xml next to libxml2's xmlEncodeSpecialChars, pugixml's
// text output and a plain per-character loop, with memcpy and memchr over the
// same bytes as the floor. Throughput is reported in characters per second
// (items) and bytes of input per second.

#include <benchmark/benchmark.h>
#include <libxml/entities.h>
#include <libxml/globals.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "ui/core/text_utils.h"
#include "workloads.h"

namespace {

using ui::core::ustring;

// The definition: each of & < > " ' replaced by its entity, every other code
// unit kept.
ustring escape_by_definition(const ustring& text) {
  ustring out;
  for (char16_t c : text) {
    switch (c) {
      case u'&':
        out += u"&amp;";
        break;
      case u'<':
        out += u"&lt;";
        break;
      case u'>':
        out += u"&gt;";
        break;
      case u'"':
        out += u"&quot;";
        break;
      case u'\'':
        out += u"&apos;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

struct Corpus {
  ustring text;
  std::string utf8;
  std::size_t characters;
};

// The corpus, after checking once that escape_xml gives exactly what the
// definition gives; a mismatch ends the run.
Corpus checked(ustring text) {
  if (ui::core::escape_xml(text) != escape_by_definition(text)) {
    std::fprintf(stderr, "escape_xml disagrees with the per-character definition\n");
    std::abort();
  }
  Corpus c{std::move(text), {}, 0};
  c.utf8 = bench::to_utf8(c.text);
  c.characters = c.text.size();  // no surrogates: one code unit per character
  return c;
}

const Corpus& prose() {
  static const Corpus c = checked(bench::xml_prose());
  return c;
}
const Corpus& markup() {
  static const Corpus c = checked(bench::xml_markup());
  return c;
}
const Corpus& corpus(const benchmark::State& state) {
  return state.range(0) == 0 ? prose() : markup();
}

void set_rates(benchmark::State& state, const Corpus& c, std::size_t bytes) {
  state.SetItemsProcessed(bench::times_iterations(state.iterations(), c.characters));
  state.SetBytesProcessed(bench::times_iterations(state.iterations(), bytes));
  state.SetLabel(state.range(0) == 0 ? "prose" : "markup");
}

void EscapeXml_kernel(benchmark::State& state) {
  const Corpus& c = corpus(state);
  for (auto _ : state) {
    ustring out = ui::core::escape_xml(c.text);
    benchmark::DoNotOptimize(out.data());
  }
  set_rates(state, c, c.text.size() * sizeof(char16_t));
}
BENCHMARK(EscapeXml_kernel)->Arg(0)->Arg(1);

void EscapeXml_per_character(benchmark::State& state) {
  const Corpus& c = corpus(state);
  for (auto _ : state) {
    ustring out = escape_by_definition(c.text);
    benchmark::DoNotOptimize(out.data());
  }
  set_rates(state, c, c.text.size() * sizeof(char16_t));
}
BENCHMARK(EscapeXml_per_character)->Arg(0)->Arg(1);

void EscapeXml_libxml2(benchmark::State& state) {
  const Corpus& c = corpus(state);
  const auto* input = reinterpret_cast<const xmlChar*>(c.utf8.c_str());
  for (auto _ : state) {
    xmlChar* out = xmlEncodeSpecialChars(nullptr, input);
    benchmark::DoNotOptimize(out);
    xmlFree(out);
  }
  set_rates(state, c, c.utf8.size());
}
BENCHMARK(EscapeXml_libxml2)->Arg(0)->Arg(1);

struct StringWriter : pugi::xml_writer {
  std::string out;
  void write(const void* data, size_t size) override {
    out.append(static_cast<const char*>(data), size);
  }
};

void EscapeXml_pugixml(benchmark::State& state) {
  const Corpus& c = corpus(state);
  pugi::xml_document doc;
  doc.append_child(pugi::node_pcdata).set_value(c.utf8.c_str());
  StringWriter writer;
  for (auto _ : state) {
    writer.out.clear();
    doc.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    benchmark::DoNotOptimize(writer.out.data());
  }
  set_rates(state, c, c.utf8.size());
}
BENCHMARK(EscapeXml_pugixml)->Arg(0)->Arg(1);

// The floors: copying the UTF-16 bytes, and scanning them for one byte value
// that never occurs.
void EscapeXml_memcpy(benchmark::State& state) {
  const Corpus& c = corpus(state);
  const std::size_t bytes = c.text.size() * sizeof(char16_t);
  std::string out(bytes, '\0');
  for (auto _ : state) {
    std::memcpy(out.data(), c.text.data(), bytes);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  set_rates(state, c, bytes);
}
BENCHMARK(EscapeXml_memcpy)->Arg(0)->Arg(1);

void EscapeXml_memchr(benchmark::State& state) {
  const Corpus& c = corpus(state);
  const std::size_t bytes = c.text.size() * sizeof(char16_t);
  for (auto _ : state) {
    const void* hit = std::memchr(c.text.data(), 0x7f, bytes);
    benchmark::DoNotOptimize(hit);
  }
  set_rates(state, c, bytes);
}
BENCHMARK(EscapeXml_memchr)->Arg(0)->Arg(1);

}  // namespace
