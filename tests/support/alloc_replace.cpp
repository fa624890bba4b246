// Replaces every form of the global operator new and delete with malloc and
// free plus counting, so that the counts include the library's allocations.
// Left out of sanitizer builds, whose runtime defines these operators itself.

#include <cstddef>
#include <new>

#include "alloc_counter.h"

using alloc_counter::internal::allocate;
using alloc_counter::internal::deallocate;

namespace {
// Runs before main(): from then on the counts include every allocation.
[[maybe_unused]] const bool counting_marked = (alloc_counter::internal::mark_counting(), true);
}  // namespace

void* operator new(std::size_t n) {
  return allocate(n, 0);
}
void* operator new[](std::size_t n) {
  return allocate(n, 0);
}
void* operator new(std::size_t n, std::align_val_t a) {
  return allocate(n, static_cast<std::size_t>(a));
}
void* operator new[](std::size_t n, std::align_val_t a) {
  return allocate(n, static_cast<std::size_t>(a));
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  try {
    return allocate(n, 0);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  try {
    return allocate(n, 0);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new(std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  try {
    return allocate(n, static_cast<std::size_t>(a));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  try {
    return allocate(n, static_cast<std::size_t>(a));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* p) noexcept {
  deallocate(p);
}
void operator delete[](void* p) noexcept {
  deallocate(p);
}
void operator delete(void* p, std::size_t) noexcept {
  deallocate(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  deallocate(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
  deallocate(p);
}
void operator delete[](void* p, std::align_val_t) noexcept {
  deallocate(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
  deallocate(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
  deallocate(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
  deallocate(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
  deallocate(p);
}
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept {
  deallocate(p);
}
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept {
  deallocate(p);
}
