// The counts and the failure switch behind the replaced operator new and
// delete of alloc_replace.cpp.

#include "alloc_counter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace alloc_counter {
namespace {

std::atomic<bool> replaced{false};
std::atomic<long> live_count{0};
std::atomic<long> total_count{0};
std::atomic<long> live_byte_count{0};

long usable_size(void* p) noexcept {
  return static_cast<long>(malloc_usable_size(p));
}

// Allocations still allowed on this thread; negative means no limit.
thread_local long remaining = -1;
thread_local bool refused = false;

}  // namespace

namespace internal {

void* allocate(std::size_t size, std::size_t alignment) {
  if (remaining == 0) {
    refused = true;
    throw std::bad_alloc();
  }
  if (remaining > 0) --remaining;
  if (size == 0) size = 1;
  void* p = nullptr;
  if (alignment > alignof(std::max_align_t)) {
    // aligned_alloc needs a size that is a multiple of the alignment.
    p = std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  } else {
    p = std::malloc(size);
  }
  if (p == nullptr) throw std::bad_alloc();
  // Relaxed: the counts are read after the threads that changed them joined.
  live_count.fetch_add(1, std::memory_order_relaxed);
  total_count.fetch_add(1, std::memory_order_relaxed);
  live_byte_count.fetch_add(usable_size(p), std::memory_order_relaxed);
  return p;
}

void deallocate(void* p) noexcept {
  if (p == nullptr) return;
  live_count.fetch_sub(1, std::memory_order_relaxed);
  live_byte_count.fetch_sub(usable_size(p), std::memory_order_relaxed);
  std::free(p);
}

void mark_counting() noexcept {
  replaced.store(true, std::memory_order_relaxed);
}

}  // namespace internal

bool counting() noexcept {
  return replaced.load(std::memory_order_relaxed);
}
long live() noexcept {
  return live_count.load(std::memory_order_relaxed);
}
long total() noexcept {
  return total_count.load(std::memory_order_relaxed);
}
long live_bytes() noexcept {
  return live_byte_count.load(std::memory_order_relaxed);
}

FailAfter::FailAfter(long allowed) noexcept : previous_(remaining) {
  remaining = allowed;
  refused = false;
}
FailAfter::~FailAfter() {
  remaining = previous_;
}
bool FailAfter::failed() const noexcept {
  return refused;
}

}  // namespace alloc_counter
