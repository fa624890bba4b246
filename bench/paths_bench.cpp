// Parsing node paths and object paths, next to what a caller would otherwise
// use: a hand-written split into a vector of strings, std::filesystem::path,
// boost::filesystem::path and a JSON Pointer. Every benchmark of a family runs
// over the same generated texts, so their times compare directly. The
// allocation counters give allocations and bytes per parsed path.

#include <benchmark/benchmark.h>

#include <boost/filesystem/path.hpp>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "counting.h"
#include "ui/core/node_path.h"
#include "ui/core/object_path.h"
#include "workloads.h"

namespace {

const std::vector<std::u16string>& node_texts() {
  static const std::vector<std::u16string> texts = bench::node_path_texts();
  return texts;
}

const std::vector<std::string>& node_texts_utf8() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> out;
    for (const auto& t : node_texts()) out.push_back(bench::to_utf8(t));
    return out;
  }();
  return texts;
}

const std::vector<std::u16string>& object_texts() {
  static const std::vector<std::u16string> texts = bench::object_path_texts();
  return texts;
}

const std::vector<std::string>& pointer_texts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> out;
    for (const auto& t : object_texts()) out.push_back(bench::json_pointer_text(t));
    return out;
  }();
  return texts;
}

std::size_t code_units(const std::vector<std::u16string>& texts) {
  std::size_t n = 0;
  for (const auto& t : texts) n += t.size();
  return n;
}

// Reports allocations and bytes per path, and the throughput in paths and in
// bytes of UTF-16 text.
void report(benchmark::State& state, const bench::AllocationCount& before,
            std::size_t paths_per_iteration, std::size_t units_per_iteration) {
  const bench::AllocationCount after = bench::allocations_so_far();
  const auto paths =
      static_cast<double>(bench::times_iterations(state.iterations(), paths_per_iteration));
  state.counters["allocs_per_path"] =
      static_cast<double>(after.allocations - before.allocations) / paths;
  state.counters["bytes_per_path"] = static_cast<double>(after.bytes - before.bytes) / paths;
  state.SetItemsProcessed(bench::times_iterations(state.iterations(), paths_per_iteration));
  state.SetBytesProcessed(
      bench::times_iterations(state.iterations(), units_per_iteration * sizeof(char16_t)));
}

// The split a caller writes by hand: identifiers between unescaped "/", pairs
// "//" taken from the left as escapes, into a vector of strings.
std::vector<std::u16string> hand_split(const std::u16string& text) {
  std::vector<std::u16string> ids;
  std::size_t start = 0;
  std::size_t i = 0;
  const std::size_t n = text.size();
  while (i < n) {
    if (text[i] == u'/') {
      if (i + 1 < n && text[i + 1] == u'/') {
        i += 2;
        continue;
      }
      ids.emplace_back(text, start, i - start);
      start = i + 1;
    }
    ++i;
  }
  if (start < n) ids.emplace_back(text, start, n - start);
  return ids;
}

void NodePath_kernel(benchmark::State& state) {
  const auto& texts = node_texts();
  const auto before = bench::allocations_so_far();
  for (auto _ : state) {
    for (const auto& t : texts) {
      ui::core::NodePath p(t);
      benchmark::DoNotOptimize(p.size());
    }
  }
  report(state, before, texts.size(), code_units(texts));
}
BENCHMARK(NodePath_kernel)->Unit(benchmark::kMillisecond);

void NodePath_hand_split(benchmark::State& state) {
  const auto& texts = node_texts();
  const auto before = bench::allocations_so_far();
  for (auto _ : state) {
    for (const auto& t : texts) {
      auto ids = hand_split(t);
      benchmark::DoNotOptimize(ids.size());
    }
  }
  report(state, before, texts.size(), code_units(texts));
}
BENCHMARK(NodePath_hand_split)->Unit(benchmark::kMillisecond);

void NodePath_std_filesystem(benchmark::State& state) {
  const auto& texts = node_texts();
  const auto before = bench::allocations_so_far();
  for (auto _ : state) {
    for (const auto& t : texts) {
      const std::filesystem::path p(t);
      std::size_t n = 0;
      for (const auto& component : p) n += component.native().size();
      benchmark::DoNotOptimize(n);
    }
  }
  report(state, before, texts.size(), code_units(texts));
}
BENCHMARK(NodePath_std_filesystem)->Unit(benchmark::kMillisecond);

// boost::filesystem::path has no UTF-16 constructor on POSIX; it gets the same
// text as UTF-8, converted before the timing, which favours it.
void NodePath_boost_filesystem(benchmark::State& state) {
  const auto& texts = node_texts_utf8();
  const auto before = bench::allocations_so_far();
  for (auto _ : state) {
    for (const auto& t : texts) {
      const boost::filesystem::path p(t);
      std::size_t n = 0;
      for (const auto& component : p) n += component.native().size();
      benchmark::DoNotOptimize(n);
    }
  }
  report(state, before, texts.size(), code_units(node_texts()));
}
BENCHMARK(NodePath_boost_filesystem)->Unit(benchmark::kMillisecond);

void ObjectPath_kernel(benchmark::State& state) {
  const auto& texts = object_texts();
  const auto before = bench::allocations_so_far();
  for (auto _ : state) {
    for (const auto& t : texts) {
      ui::core::ObjectPath p = ui::core::to_object_path(t);
      benchmark::DoNotOptimize(p.size());
    }
  }
  report(state, before, texts.size(), code_units(texts));
}
BENCHMARK(ObjectPath_kernel)->Unit(benchmark::kMillisecond);

void ObjectPath_json_pointer(benchmark::State& state) {
  const auto& texts = pointer_texts();
  const auto before = bench::allocations_so_far();
  for (auto _ : state) {
    for (const auto& t : texts) {
      const nlohmann::json::json_pointer p(t);
      benchmark::DoNotOptimize(p.empty());
    }
  }
  report(state, before, texts.size(), code_units(object_texts()));
}
BENCHMARK(ObjectPath_json_pointer)->Unit(benchmark::kMillisecond);

// Scaling: one text of n identifiers or elements. The time per code unit
// (bytes_per_second) should not fall as n grows.
void NodePath_scaling(benchmark::State& state) {
  const std::u16string text = bench::long_node_path_text(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    ui::core::NodePath p(text);
    benchmark::DoNotOptimize(p.size());
  }
  state.SetBytesProcessed(
      bench::times_iterations(state.iterations(), text.size() * sizeof(char16_t)));
  state.counters["code_units"] = static_cast<double>(text.size());
}
BENCHMARK(NodePath_scaling)->RangeMultiplier(10)->Range(10, 100000);
// The same with a fixed number of iterations, for counting instructions
// (scripts/bench_instructions.sh): every parse it makes is one it reports.
BENCHMARK(NodePath_scaling)
    ->Name("NodePath_scaling_counted")
    ->RangeMultiplier(10)
    ->Range(10, 100000)
    ->Iterations(4);

// The same texts split by hand, to tell the cost of the memory a long path
// needs (which any representation pays) from the parser's own.
void NodePath_hand_split_scaling(benchmark::State& state) {
  const std::u16string text = bench::long_node_path_text(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto ids = hand_split(text);
    benchmark::DoNotOptimize(ids.size());
  }
  state.SetBytesProcessed(
      bench::times_iterations(state.iterations(), text.size() * sizeof(char16_t)));
}
BENCHMARK(NodePath_hand_split_scaling)->RangeMultiplier(10)->Range(10, 100000);

void ObjectPath_scaling(benchmark::State& state) {
  const std::u16string text =
      bench::long_object_path_text(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    ui::core::ObjectPath p = ui::core::to_object_path(text);
    benchmark::DoNotOptimize(p.size());
  }
  state.SetBytesProcessed(
      bench::times_iterations(state.iterations(), text.size() * sizeof(char16_t)));
  state.counters["code_units"] = static_cast<double>(text.size());
}
BENCHMARK(ObjectPath_scaling)->RangeMultiplier(10)->Range(10, 100000);
BENCHMARK(ObjectPath_scaling)
    ->Name("ObjectPath_scaling_counted")
    ->RangeMultiplier(10)
    ->Range(10, 100000)
    ->Iterations(4);

// Object path texts split by hand at the same separators into a vector of
// strings: the memory cost of a long path that any representation pays.
void ObjectPath_hand_split_scaling(benchmark::State& state) {
  const std::u16string text =
      bench::long_object_path_text(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::vector<std::u16string> segments;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] != u'/') continue;
      std::size_t run = i;
      while (run < text.size() && text[run] == u'/') ++run;
      if ((run - i) % 2 != 0) {  // an odd run: its first "/" separates
        segments.emplace_back(text, start, i - start);
        start = i + 1;
      }
      i = run - 1;
    }
    segments.emplace_back(text, start, text.size() - start);
    benchmark::DoNotOptimize(segments.size());
  }
  state.SetBytesProcessed(
      bench::times_iterations(state.iterations(), text.size() * sizeof(char16_t)));
}
BENCHMARK(ObjectPath_hand_split_scaling)->RangeMultiplier(10)->Range(10, 100000);

// Appending n elements one by one: the time per element (items_per_second)
// should not fall as n grows.
void ObjectPath_append(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const ui::core::ObjectPathElement name(ui::core::ObjectPathName(u"signal"));
  const ui::core::ObjectPathElement sub(ui::core::ObjectPathSubscript({2, 3}));
  for (auto _ : state) {
    ui::core::ObjectPath p;
    for (std::size_t i = 0; i < n; ++i) p.push_back(i % 2 == 0 ? name : sub);
    benchmark::DoNotOptimize(p.size());
  }
  state.SetItemsProcessed(bench::times_iterations(state.iterations(), n));
}
BENCHMARK(ObjectPath_append)->RangeMultiplier(10)->Range(10, 100000);

// Appending a path of one identifier n times, with +=, with + into the moved
// path itself, and to a NodePath1: the time per identifier (items_per_second)
// should not fall as n grows.
void NodePath_append(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const ui::core::NodePath one(u"signal");
  for (auto _ : state) {
    ui::core::NodePath p;
    for (std::size_t i = 0; i < n; ++i) p += one;
    benchmark::DoNotOptimize(p.size());
  }
  state.SetItemsProcessed(bench::times_iterations(state.iterations(), n));
}
BENCHMARK(NodePath_append)->RangeMultiplier(10)->Range(10, 100000);

void NodePath_append_plus(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const ui::core::NodePath one(u"signal");
  for (auto _ : state) {
    ui::core::NodePath p;
    for (std::size_t i = 0; i < n; ++i) p = std::move(p) + one;
    benchmark::DoNotOptimize(p.size());
  }
  state.SetItemsProcessed(bench::times_iterations(state.iterations(), n));
}
BENCHMARK(NodePath_append_plus)->RangeMultiplier(10)->Range(10, 100000);

void NodePath1_append(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const ui::core::NodePath one(u"signal");
  for (auto _ : state) {
    ui::core::NodePath1 p(one.front());
    for (std::size_t i = 1; i < n; ++i) p += one;
    benchmark::DoNotOptimize(p.size());
  }
  state.SetItemsProcessed(bench::times_iterations(state.iterations(), n));
}
BENCHMARK(NodePath1_append)->RangeMultiplier(10)->Range(10, 100000);

}  // namespace
