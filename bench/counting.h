// Counts the heap allocations of the benchmark process, so that a benchmark
// can report how many allocations and bytes one operation costs.

#ifndef UI_CORE_BENCH_COUNTING_H
#define UI_CORE_BENCH_COUNTING_H

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

struct AllocationCount {
  std::size_t allocations = 0;
  std::size_t bytes = 0;
};

/// Allocations made through operator new on this thread so far.
AllocationCount allocations_so_far() noexcept;

/// The sizes of the allocations `fn` makes through operator new on this
/// thread, in the order it makes them.
std::vector<std::size_t> record_allocations(const std::function<void()>& fn);

/// Allocates blocks of `sizes`, in order, writes every byte of each, and
/// frees them in the same order: what the memory of an operation costs on its
/// own, without the work that decides what to put in it.
void replay_allocations(const std::vector<std::size_t>& sizes, std::vector<void*>& scratch);

}  // namespace bench

#endif  // UI_CORE_BENCH_COUNTING_H
