// Counts the heap allocations of the benchmark process, so that a benchmark
// can report how many allocations and bytes one operation costs.

#ifndef UI_CORE_BENCH_COUNTING_H
#define UI_CORE_BENCH_COUNTING_H

#include <cstddef>

namespace bench {

struct AllocationCount {
  std::size_t allocations = 0;
  std::size_t bytes = 0;
};

/// Allocations made through operator new on this thread so far.
AllocationCount allocations_so_far() noexcept;

}  // namespace bench

#endif  // UI_CORE_BENCH_COUNTING_H
