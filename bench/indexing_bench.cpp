// Subscripts to linear indices and back for arrays of 2, 3 and 5 dimensions,
// next to the plain loops a caller would write over raw arrays, which check
// the same ranges but build no library values.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <vector>

#include "ui/core/indexing.h"
#include "workloads.h"

namespace {

using ui::core::ObjectPathSubscript;

constexpr std::size_t cases = 1024;

struct Workload {
  krel::ArraySize size;
  std::vector<std::size_t> dims;
  std::vector<ObjectPathSubscript> subscripts;
  std::vector<std::vector<std::size_t>> raw;  // the same subscripts as numbers
  std::vector<lang::core::PathElementIndex> indices;
};

Workload make_workload(std::size_t rank, bool huge) {
  Workload w;
  bench::SplitMix64 rng(0x5eed0007 + rank);
  // Small dimensions, or (for the magnitude test) dimensions whose product is
  // near 2^60 so that the indices are huge.
  for (std::size_t k = 0; k < rank; ++k)
    w.dims.push_back(huge ? (std::size_t{1} << (60 / rank)) : 7 + k);
  w.size = krel::ArraySize(w.dims.data(), w.dims.size());
  for (std::size_t i = 0; i < cases; ++i) {
    std::vector<std::size_t> s;
    for (std::size_t k = 0; k < rank; ++k) s.push_back(rng.between(1, w.dims[k]));
    w.subscripts.emplace_back(s);
    w.indices.push_back(ui::core::sub_to_ind(w.subscripts.back(), w.size));
    w.raw.push_back(std::move(s));
  }
  return w;
}

const Workload& workload(std::size_t rank, bool huge = false) {
  static std::array<Workload, 6> small = {};
  static std::array<Workload, 6> large = {};
  static std::array<bool, 12> made = {};
  auto& w = huge ? large[rank] : small[rank];
  if (!made[rank + (huge ? 6 : 0)]) {
    w = make_workload(rank, huge);
    made[rank + (huge ? 6 : 0)] = true;
  }
  return w;
}

void SubToInd_kernel(benchmark::State& state) {
  const Workload& w = workload(static_cast<std::size_t>(state.range(0)));
  std::size_t i = 0;
  for (auto _ : state) {
    auto index = ui::core::sub_to_ind(w.subscripts[i], w.size);
    benchmark::DoNotOptimize(index.index());
    i = (i + 1) % cases;
  }
}
BENCHMARK(SubToInd_kernel)->Arg(2)->Arg(3)->Arg(5);

// The column-major loop with the range checks, over numbers.
void SubToInd_plain(benchmark::State& state) {
  const Workload& w = workload(static_cast<std::size_t>(state.range(0)));
  std::size_t i = 0;
  for (auto _ : state) {
    const std::vector<std::size_t>& s = w.raw[i];
    std::size_t index = 0;
    std::size_t stride = 1;
    bool ok = true;
    for (std::size_t k = 0; k < w.dims.size(); ++k) {
      ok &= s[k] >= 1 && s[k] <= w.dims[k];
      index += (s[k] - 1) * stride;
      stride *= w.dims[k];
    }
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(index);
    i = (i + 1) % cases;
  }
}
BENCHMARK(SubToInd_plain)->Arg(2)->Arg(3)->Arg(5);

void IndToSub_kernel(benchmark::State& state) {
  const Workload& w = workload(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
  std::size_t i = 0;
  for (auto _ : state) {
    ObjectPathSubscript s = ui::core::ind_to_sub(w.indices[i]);
    benchmark::DoNotOptimize(&s);
    i = (i + 1) % cases;
  }
}
BENCHMARK(IndToSub_kernel)->ArgsProduct({{2, 3, 5}, {0, 1}});

// The division loop a caller writes: quotient and remainder by each stride.
void IndToSub_plain(benchmark::State& state) {
  const Workload& w = workload(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
  const std::size_t rank = w.dims.size();
  std::array<std::size_t, 8> stride{};
  stride[0] = 1;
  for (std::size_t k = 1; k < rank; ++k) stride[k] = stride[k - 1] * w.dims[k - 1];
  std::size_t i = 0;
  for (auto _ : state) {
    std::array<std::size_t, 8> s{};
    std::size_t rest = w.indices[i].index();
    for (std::size_t k = rank; k-- > 0;) {
      s[k] = rest / stride[k] + 1;
      rest %= stride[k];
    }
    benchmark::DoNotOptimize(s.data());
    benchmark::ClobberMemory();
    i = (i + 1) % cases;
  }
}
BENCHMARK(IndToSub_plain)->ArgsProduct({{2, 3, 5}, {0, 1}});

// The floor of sub_to_ind: what its by-value interface costs before any
// arithmetic: the caller's copies of the two parameters and the copy of the
// size that the returned index carries.
void SubToInd_floor(benchmark::State& state) {
  const Workload& w = workload(static_cast<std::size_t>(state.range(0)));
  std::size_t i = 0;
  for (auto _ : state) {
    ObjectPathSubscript sub = w.subscripts[i];  // the by-value parameter
    krel::ArraySize size = w.size;              // the by-value parameter
    benchmark::DoNotOptimize(&sub);
    lang::core::PathElementIndex index(i, size);  // the result holds the size
    benchmark::DoNotOptimize(index.index());
    i = (i + 1) % cases;
  }
}
BENCHMARK(SubToInd_floor)->Arg(2)->Arg(3)->Arg(5);

// The floor of ind_to_sub: the subscript it returns is a new shared record,
// one allocation (two past four dimensions), freed when the result is dropped.
void IndToSub_floor(benchmark::State& state) {
  const Workload& w = workload(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
  std::size_t i = 0;
  for (auto _ : state) {
    const std::vector<std::size_t>& s = w.raw[i];
    std::unique_ptr<ui::core::detail::ObjectPathSubscriptRep> record(
        new ui::core::detail::ObjectPathSubscriptRep(s.size(), s.data(), s.size()));
    benchmark::DoNotOptimize(record.get());
    i = (i + 1) % cases;
  }
}
BENCHMARK(IndToSub_floor)->ArgsProduct({{2, 3, 5}, {0, 1}});

}  // namespace
