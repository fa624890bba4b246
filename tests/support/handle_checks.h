// handle_checks.h - the checks that every shared handle type goes through
//
// A handle is a value that holds one counted reference to a shared block or
// record: a copy shares the storage, and a change copies it first when it is
// shared. The typed suite SharedHandle runs each handle type through the same
// claims:
//
//   - a copy shares the storage and allocates nothing;
//   - changing a copy leaves the original unchanged;
//   - a move hands the storage over, and the moved-from handle is in the state
//     its type documents until it is assigned to;
//   - the allocation counter returns to its start once the handles are gone;
//   - copies made, changed and destroyed on many threads at once leave the
//     original intact (the ThreadSanitizer run checks the counting).
//
// A test program describes each type with a specialisation of HandleTraits,
// links ui_core_alloc_counter, and instantiates the suite:
//
//   template <>
//   struct test_support::HandleTraits<krel::TableString> {
//     static krel::TableString make();                  // holds a block of its own
//     static bool shares(const krel::TableString& a, const krel::TableString& b);
//     static std::u16string observe(const krel::TableString& s);  // its value
//     static void change(krel::TableString& s);         // a change of value
//     static void expect_moved_from(const krel::TableString& s);
//   };
//   INSTANTIATE_TYPED_TEST_SUITE_P(Krel, SharedHandle, ::testing::Types<krel::TableString>);
//
// `change` uses the type's own way of changing a value (push_back, write()),
// or assigns another value for a type whose values never change.

#ifndef UI_CORE_TESTS_HANDLE_CHECKS_H
#define UI_CORE_TESTS_HANDLE_CHECKS_H

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "alloc_counter.h"

namespace test_support {

/// How the checks make, compare, change and inspect values of a handle type;
/// specialised by each test program for its types (see the top of this file).
template <class T>
struct HandleTraits;

/// True for a handle that is one pointer wide and whose copies, moves and
/// destruction never throw.
template <class T>
inline constexpr bool is_pointer_sized_handle =
    sizeof(T) == sizeof(void*) &&
    std::conjunction_v<std::is_nothrow_copy_constructible<T>, std::is_nothrow_copy_assignable<T>,
                       std::is_nothrow_move_constructible<T>, std::is_nothrow_move_assignable<T>,
                       std::is_nothrow_destructible<T>>;

template <class T>
class SharedHandle : public ::testing::Test {};

TYPED_TEST_SUITE_P(SharedHandle);

TYPED_TEST_P(SharedHandle, CopySharesTheStorageWithoutAllocating) {
  using Traits = HandleTraits<TypeParam>;
  const TypeParam original = Traits::make();
  TypeParam assigned = Traits::make();
  const long allocations = alloc_counter::total();
  const TypeParam copy = original;  // NOLINT(performance-unnecessary-copy-initialization)
  assigned = copy;
  if (alloc_counter::counting()) {
    EXPECT_EQ(alloc_counter::total(), allocations);
  }
  EXPECT_TRUE(Traits::shares(copy, original));
  EXPECT_TRUE(Traits::shares(assigned, original));
  EXPECT_EQ(Traits::observe(copy), Traits::observe(original));
}

TYPED_TEST_P(SharedHandle, ChangingACopyLeavesTheOriginalUnchanged) {
  using Traits = HandleTraits<TypeParam>;
  const TypeParam original = Traits::make();
  const auto value = Traits::observe(original);
  TypeParam copy = original;
  Traits::change(copy);
  EXPECT_FALSE(Traits::shares(copy, original));
  EXPECT_EQ(Traits::observe(original), value);
  // A second change finds the copy's storage its own and leaves the original
  // alone as well.
  TypeParam second = copy;
  Traits::change(copy);
  Traits::change(second);
  EXPECT_EQ(Traits::observe(original), value);
}

TYPED_TEST_P(SharedHandle, MoveHandsTheStorageOverAndLeavesTheDocumentedState) {
  using Traits = HandleTraits<TypeParam>;
  TypeParam source = Traits::make();
  const TypeParam keep = source;
  TypeParam assigned = Traits::make();
  const long allocations = alloc_counter::total();
  TypeParam target(std::move(source));
  const bool taken_over = Traits::shares(target, keep);
  assigned = std::move(target);
  if (alloc_counter::counting()) {
    EXPECT_EQ(alloc_counter::total(), allocations);
  }
  EXPECT_TRUE(taken_over);
  EXPECT_TRUE(Traits::shares(assigned, keep));
  Traits::expect_moved_from(source);  // NOLINT(bugprone-use-after-move): the state is the contract
  Traits::expect_moved_from(target);  // NOLINT(bugprone-use-after-move)
  // A moved-from handle takes a value again.
  source = keep;
  target = std::move(assigned);
  EXPECT_TRUE(Traits::shares(source, keep));
  EXPECT_TRUE(Traits::shares(target, keep));
  EXPECT_EQ(Traits::observe(target), Traits::observe(keep));
}

TYPED_TEST_P(SharedHandle, LeakCounterReturnsToItsStart) {
  using Traits = HandleTraits<TypeParam>;
  if (!alloc_counter::counting()) GTEST_SKIP() << "the sanitizer checks for leaks here";
  const long live = alloc_counter::live();
  {
    TypeParam a = Traits::make();
    TypeParam b = a;
    TypeParam c = std::move(b);
    Traits::change(c);
    b = c;
    a = std::move(c);
    const TypeParam& self = a;
    a = self;
    TypeParam d = Traits::make();
    d = a;
    Traits::change(d);
    Traits::change(d);
  }
  EXPECT_EQ(alloc_counter::live(), live);
}

TYPED_TEST_P(SharedHandle, CopiesAreMadeChangedAndDestroyedOnManyThreads) {
  using Traits = HandleTraits<TypeParam>;
  const long live = alloc_counter::live();
  {
    const TypeParam original = Traits::make();
    const auto value = Traits::observe(original);
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&original, &value, &mismatches, t] {
        for (int i = 0; i < 1000; ++i) {
          TypeParam copy = original;
          if (!Traits::shares(copy, original) || !(Traits::observe(copy) == value)) ++mismatches;
          TypeParam other = std::move(copy);
          if ((i + t) % 3 == 0) {
            Traits::change(other);  // this thread's copy only
            if (Traits::shares(other, original)) ++mismatches;
          }
          copy = other;
        }
      });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(mismatches.load(), 0);
    EXPECT_EQ(Traits::observe(original), value);
  }
  if (alloc_counter::counting()) {
    EXPECT_EQ(alloc_counter::live(), live);
  }
}

REGISTER_TYPED_TEST_SUITE_P(SharedHandle, CopySharesTheStorageWithoutAllocating,
                            ChangingACopyLeavesTheOriginalUnchanged,
                            MoveHandsTheStorageOverAndLeavesTheDocumentedState,
                            LeakCounterReturnsToItsStart,
                            CopiesAreMadeChangedAndDestroyedOnManyThreads);

}  // namespace test_support

#endif  // UI_CORE_TESTS_HANDLE_CHECKS_H
