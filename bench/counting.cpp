// The replaceable global allocation functions of the benchmark executable:
// malloc and free underneath, with a per-thread count on the way.

#include "counting.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace bench {
namespace {
thread_local AllocationCount counted;
// Where record_allocations() collects sizes, and whether it is adding one (its
// own vector allocates, which is not recorded).
thread_local std::vector<std::size_t>* recording = nullptr;
thread_local bool recording_busy = false;

// Out of line, so that counting alone stays a few instructions.
[[gnu::noinline]] void record(std::size_t size) {
  recording_busy = true;
  recording->push_back(size);
  recording_busy = false;
}

void* counted_alloc(std::size_t size) {
  ++counted.allocations;
  counted.bytes += size;
  if (recording != nullptr && !recording_busy) record(size);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
}  // namespace

AllocationCount allocations_so_far() noexcept {
  return counted;
}

std::vector<std::size_t> record_allocations(const std::function<void()>& fn) {
  std::vector<std::size_t> sizes;
  recording = &sizes;
  try {
    fn();
  } catch (...) {
    recording = nullptr;
    throw;
  }
  recording = nullptr;
  return sizes;
}

void replay_allocations(const std::vector<std::size_t>& sizes, std::vector<void*>& scratch) {
  scratch.resize(sizes.size());
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    scratch[i] = ::operator new(sizes[i]);
    std::memset(scratch[i], 0, sizes[i]);
  }
  for (void* p : scratch) ::operator delete(p);
}

}  // namespace bench

void* operator new(std::size_t size) {
  return bench::counted_alloc(size);
}
void* operator new[](std::size_t size) {
  return bench::counted_alloc(size);
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete[](void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  std::free(p);
}
