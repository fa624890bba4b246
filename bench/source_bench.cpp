// create_source through the registry, after the first call has installed and
// started the bundle set.

#include <benchmark/benchmark.h>

#include <exception>

#include "ui/core/source.h"

namespace {

// The first call installs the bundle set; a machine without the bundle skips.
template <class Key>
bool first_call(benchmark::State& state, const Key& key) {
  try {
    if (ui::core::create_source(key)) return true;
    state.SkipWithError("create_source gave no source");
  } catch (const std::exception& e) {
    state.SkipWithError(e.what());
  }
  return false;
}

void CreateSource_location(benchmark::State& state) {
  const krel::Location where(u"plant.model", 12, 5);
  if (!first_call(state, where)) return;
  for (auto _ : state) {
    auto source = ui::core::create_source(where);
    benchmark::DoNotOptimize(source.get());
  }
}
BENCHMARK(CreateSource_location);

void CreateSource_block(benchmark::State& state) {
  const krel::DravikId block(u"plant/Controller");
  if (!first_call(state, block)) return;
  for (auto _ : state) {
    auto source = ui::core::create_source(block);
    benchmark::DoNotOptimize(source.get());
  }
}
BENCHMARK(CreateSource_block);

}  // namespace
