// The replaceable global allocation functions of the benchmark executable:
// malloc and free underneath, with a per-thread count on the way.

#include "counting.h"

#include <cstdlib>
#include <new>

namespace bench {
namespace {
thread_local AllocationCount counted;

void* counted_alloc(std::size_t size) {
  ++counted.allocations;
  counted.bytes += size;
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
}  // namespace

AllocationCount allocations_so_far() noexcept {
  return counted;
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
