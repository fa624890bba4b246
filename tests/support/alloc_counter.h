// alloc_counter.h - counts the program's heap allocations, for leak and
// no-allocation checks, and makes chosen allocations fail
//
// The test program replaces the global operator new and delete
// (alloc_replace.cpp), so every allocation made through them, in the library as
// in the tests, is counted. Under AddressSanitizer and ThreadSanitizer the
// sanitizer owns operator new; the program is then built without the
// replacement, `counting()` is false, and leaks are the sanitizer's to find.
//
//   if (!alloc_counter::counting()) GTEST_SKIP() << "allocations are not counted";
//   const long before = alloc_counter::live();
//   { ui::core::NodePath p(u"a/b"); }
//   EXPECT_EQ(alloc_counter::live(), before);  // nothing leaked
//   // live_bytes() does the same for the memory the live allocations hold.

#ifndef UI_CORE_TESTS_SUPPORT_ALLOC_COUNTER_H
#define UI_CORE_TESTS_SUPPORT_ALLOC_COUNTER_H

#include <cstddef>

namespace alloc_counter {

/// True when operator new and delete are replaced, so the counts mean something
/// and FailAfter takes effect.
[[nodiscard]] bool counting() noexcept;

/// Allocations made and not yet freed, on all threads.
[[nodiscard]] long live() noexcept;

/// Allocations made so far, on all threads.
[[nodiscard]] long total() noexcept;

/// Bytes held by the allocations made and not yet freed, on all threads: what
/// the allocator reserved for each (malloc_usable_size), which is what holding
/// it costs.
[[nodiscard]] long live_bytes() noexcept;

/// While it lives, the calling thread's allocations after the first `allowed`
/// throw std::bad_alloc; other threads are not affected.
class FailAfter {
 public:
  explicit FailAfter(long allowed) noexcept;
  ~FailAfter();
  FailAfter(const FailAfter&) = delete;
  FailAfter& operator=(const FailAfter&) = delete;

  /// True when an allocation was refused.
  [[nodiscard]] bool failed() const noexcept;

 private:
  long previous_;
};

namespace internal {
// What the replaced operators call; `alignment` 0 means the default.
void* allocate(std::size_t size, std::size_t alignment);
void deallocate(void* p) noexcept;
void mark_counting() noexcept;
}  // namespace internal

}  // namespace alloc_counter

#endif  // UI_CORE_TESTS_SUPPORT_ALLOC_COUNTER_H
