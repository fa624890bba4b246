#include "krel/shared_vector.h"

#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

// The header of a block: a reference count and two sizes, one word each.
constexpr std::size_t header_bytes = 3 * sizeof(std::size_t);

// The capacity the growth rule gives a block that must hold n elements of T.
template <class T>
std::size_t expected_capacity(std::size_t n) {
  const std::size_t offset = (header_bytes + alignof(T) - 1) / alignof(T) * alignof(T);
  return (std::bit_ceil(offset + n * sizeof(T)) - offset) / sizeof(T);
}

// Counts live instances, copies and moves, and records the order in which
// instances are destroyed; a copy throws when `throw_on_copy` counts down to 0.
struct Tracked {
  static inline std::atomic<int> live{0};
  static inline int copies = 0;
  static inline int moves = 0;
  static inline int throw_on_copy = -1;
  static inline std::vector<int>* destroyed = nullptr;

  int value;
  explicit Tracked(int v) : value(v) { ++live; }
  Tracked(const Tracked& other) : value(other.value) {
    if (throw_on_copy >= 0 && throw_on_copy-- == 0) throw std::runtime_error("copy failed");
    ++copies;
    ++live;
  }
  Tracked(Tracked&& other) noexcept : value(other.value) {
    ++moves;
    ++live;
  }
  Tracked& operator=(const Tracked&) = delete;
  ~Tracked() {
    if (destroyed != nullptr) destroyed->push_back(value);
    --live;
  }
};

class SharedVectorTracked : public ::testing::Test {
 protected:
  void SetUp() override {
    Tracked::copies = 0;
    Tracked::moves = 0;
    Tracked::throw_on_copy = -1;
    Tracked::destroyed = nullptr;
    live_before_ = Tracked::live;
  }
  void TearDown() override {
    Tracked::throw_on_copy = -1;
    Tracked::destroyed = nullptr;
    EXPECT_EQ(Tracked::live, live_before_) << "an element leaked or was destroyed twice";
  }
  int live_before_ = 0;
};

std::vector<int> values_of(const krel::SharedVector<Tracked>& v) {
  std::vector<int> out;
  for (const Tracked& t : v) out.push_back(t.value);
  return out;
}

TEST(SharedVector, EmptyVectorReadsTheStaticEmptyBlock) {
  const krel::SharedVector<std::uint64_t> a;
  const krel::SharedVector<std::uint64_t> b;
  EXPECT_TRUE(a.empty());
  EXPECT_EQ(a.size(), 0u);
  EXPECT_EQ(a.capacity(), 0u);
  EXPECT_EQ(a.use_count(), 1u);
  EXPECT_NE(a.data(), nullptr);
  EXPECT_EQ(a.begin(), a.end());
  EXPECT_EQ(a.data(), b.data());  // one block for every empty vector
}

TEST(SharedVector, CapacityFollowsThePowerOfTwoBlockRule) {
  krel::SharedVector<std::uint64_t> v;
  std::size_t capacity = 0;
  for (std::uint64_t n = 1; n <= 300; ++n) {
    v.push_back(n);
    // A block is replaced only when it is full; the new one is sized for the
    // element count that did not fit.
    if (n > capacity) capacity = expected_capacity<std::uint64_t>(n);
    EXPECT_EQ(v.capacity(), capacity) << "after " << n << " appends";
  }
  ASSERT_EQ(v.size(), 300u);
  for (std::uint64_t n = 0; n < 300; ++n) EXPECT_EQ(v[n], n + 1);

  // The same rule for an element size that does not divide the block sizes.
  struct Odd {
    char bytes[12];
  };
  krel::SharedVector<Odd> odd;
  capacity = 0;
  for (std::size_t n = 1; n <= 100; ++n) {
    odd.push_back(Odd{});
    if (n > capacity) capacity = expected_capacity<Odd>(n);
    EXPECT_EQ(odd.capacity(), capacity) << "after " << n << " appends";
  }
}

TEST(SharedVector, GrowsThroughTheExpectedCapacities) {
  // With 8-byte elements and a 24-byte header: 1 element needs 32 bytes
  // (capacity 1), 2 need 64 (capacity 5), 6 need 128 (capacity 13), 14 need 256
  // (capacity 29).
  krel::SharedVector<std::uint64_t> v;
  std::vector<std::size_t> seen;
  for (std::uint64_t n = 1; n <= 30; ++n) {
    v.push_back(n);
    if (seen.empty() || seen.back() != v.capacity()) seen.push_back(v.capacity());
  }
  const std::vector<std::size_t> expected = {
      expected_capacity<std::uint64_t>(1), expected_capacity<std::uint64_t>(2),
      expected_capacity<std::uint64_t>(6), expected_capacity<std::uint64_t>(14),
      expected_capacity<std::uint64_t>(30)};
  EXPECT_EQ(seen, expected);
  if (sizeof(std::size_t) == 8) {
    EXPECT_EQ(expected, (std::vector<std::size_t>{1, 5, 13, 29, 61}));
    EXPECT_EQ(krel::SharedVector<std::uint64_t>::block_bytes(1), 32u);
    EXPECT_EQ(krel::SharedVector<std::uint64_t>::block_bytes(2), 64u);
    EXPECT_EQ(krel::SharedVector<std::uint64_t>::block_bytes(5), 64u);
    EXPECT_EQ(krel::SharedVector<std::uint64_t>::block_bytes(6), 128u);
    EXPECT_EQ(krel::SharedVector<std::uint16_t>::block_bytes(4), 32u);
    EXPECT_EQ(krel::SharedVector<std::uint16_t>::block_bytes(5), 64u);
  }
}

TEST(SharedVector, OwnBlockWithRoomIsUsedInPlace) {
  krel::SharedVector<std::uint64_t> v;
  v.push_back(1);
  v.push_back(2);  // capacity 5 now
  const std::uint64_t* before = v.data();
  v.push_back(3);
  v.push_back(4);
  v.push_back(5);
  EXPECT_EQ(v.data(), before);
  v.push_back(6);
  EXPECT_NE(v.data(), before);
}

TEST(SharedVector, CopySharesTheBlock) {
  krel::SharedVector<std::uint64_t> a{1, 2, 3};
  const krel::SharedVector<std::uint64_t> b = a;
  EXPECT_TRUE(a.shares_with(b));
  EXPECT_EQ(a.use_count(), 2u);
  EXPECT_EQ(a.data(), b.data());
}

TEST(SharedVector, ChangeToACopyLeavesTheOriginalUnchanged) {
  krel::SharedVector<std::uint64_t> a{1, 2, 3};
  a.reserve(10);  // room to spare: a shared block is still not written in place
  krel::SharedVector<std::uint64_t> b = a;
  b.push_back(4);
  EXPECT_FALSE(a.shares_with(b));
  EXPECT_EQ(a, (krel::SharedVector<std::uint64_t>{1, 2, 3}));
  EXPECT_EQ(b, (krel::SharedVector<std::uint64_t>{1, 2, 3, 4}));
  EXPECT_EQ(a.use_count(), 1u);
  EXPECT_EQ(b.use_count(), 1u);
  // The new block is sized for the elements it must hold, not for a's spare room.
  EXPECT_EQ(b.capacity(), expected_capacity<std::uint64_t>(4));
}

TEST_F(SharedVectorTracked, GrowingCopiesElementsEvenFromItsOwnBlock) {
  krel::SharedVector<Tracked> v;
  v.push_back(Tracked(0));
  const std::size_t capacity = v.capacity();
  for (int i = 1; static_cast<std::size_t>(i) < capacity; ++i) v.push_back(Tracked(i));
  Tracked::copies = 0;
  Tracked::moves = 0;
  v.push_back(Tracked(99));  // the block is full and is replaced
  EXPECT_EQ(Tracked::copies, static_cast<int>(capacity) + 1);
  EXPECT_EQ(Tracked::moves, 0);
}

TEST_F(SharedVectorTracked, MovedPushBackMovesIntoRoomAndCopiesOtherwise) {
  krel::SharedVector<Tracked> v;
  v.reserve(4);
  const Tracked* data = v.data();
  Tracked first(1);
  v.push_back(std::move(first));  // own block with room: moved in place
  EXPECT_EQ(Tracked::moves, 1);
  EXPECT_EQ(Tracked::copies, 0);
  EXPECT_EQ(v.data(), data);
  krel::SharedVector<Tracked> copy = v;
  v.push_back(Tracked(2));  // shared block: copied into a block of its own
  EXPECT_EQ(Tracked::moves, 1);
  EXPECT_EQ(Tracked::copies, 2);
  EXPECT_FALSE(v.shares_with(copy));
  EXPECT_EQ(values_of(v), (std::vector<int>{1, 2}));
  EXPECT_EQ(values_of(copy), std::vector<int>{1});
}

TEST_F(SharedVectorTracked, LastReferenceDestroysElementsLastToFirst) {
  std::vector<int> order;
  {
    krel::SharedVector<Tracked> v;
    for (int i = 1; i <= 4; ++i) v.push_back(Tracked(i));
    krel::SharedVector<Tracked> copy = v;
    Tracked::destroyed = &order;
    v = krel::SharedVector<Tracked>();
    EXPECT_TRUE(order.empty());  // the copy still holds the block
  }
  EXPECT_EQ(order, (std::vector<int>{4, 3, 2, 1}));
}

TEST_F(SharedVectorTracked, NothingLeaksAcrossCopiesAndGrowth) {
  krel::SharedVector<Tracked> a;
  for (int i = 0; i < 10; ++i) {
    krel::SharedVector<Tracked> b = a;
    b.push_back(Tracked(i));
    a = b;
    a.append(b);
  }
  EXPECT_EQ(a.size(), 2046u);
}

TEST_F(SharedVectorTracked, ThrowingCopyWhileGrowingLeavesTheVectorUnchanged) {
  krel::SharedVector<Tracked> v;
  v.push_back(Tracked(1));
  v.push_back(Tracked(2));
  while (v.size() < v.capacity()) v.push_back(Tracked(static_cast<int>(v.size()) + 1));
  const Tracked* data = v.data();
  const std::size_t capacity = v.capacity();
  const std::vector<int> before = values_of(v);
  const int live = Tracked::live;
  Tracked::throw_on_copy = 1;  // the second copy into the new block fails
  EXPECT_THROW(v.push_back(Tracked(100)), std::runtime_error);
  EXPECT_EQ(values_of(v), before);
  EXPECT_EQ(v.data(), data);
  EXPECT_EQ(v.capacity(), capacity);
  EXPECT_EQ(Tracked::live, live);
}

TEST_F(SharedVectorTracked, ThrowingCopyWhileAppendingInPlaceLeavesTheVectorUnchanged) {
  krel::SharedVector<Tracked> v;
  v.push_back(Tracked(1));
  v.reserve(10);
  krel::SharedVector<Tracked> extra;
  for (int i = 2; i <= 4; ++i) extra.push_back(Tracked(i));
  const Tracked* data = v.data();
  const int live = Tracked::live;
  Tracked::throw_on_copy = 2;  // the third element fails
  EXPECT_THROW(v.append(extra), std::runtime_error);
  EXPECT_EQ(values_of(v), std::vector<int>{1});
  EXPECT_EQ(v.data(), data);
  EXPECT_EQ(Tracked::live, live);
}

TEST_F(SharedVectorTracked, ThrowingCopyOfASharedBlockLeavesBothUnchanged) {
  krel::SharedVector<Tracked> a;
  for (int i = 1; i <= 3; ++i) a.push_back(Tracked(i));
  krel::SharedVector<Tracked> b = a;
  Tracked::throw_on_copy = 0;
  EXPECT_THROW(b.push_back(Tracked(4)), std::runtime_error);
  EXPECT_TRUE(a.shares_with(b));
  EXPECT_EQ(values_of(b), (std::vector<int>{1, 2, 3}));
}

TEST(SharedVector, PushBackOfItsOwnElementSurvivesGrowth) {
  krel::SharedVector<std::string> v;
  v.push_back(std::string(100, 'x'));  // long enough to live on the heap
  for (int i = 0; i < 40; ++i) v.push_back(v.front());
  EXPECT_EQ(v.size(), 41u);
  for (const std::string& s : v) EXPECT_EQ(s, std::string(100, 'x'));
}

TEST(SharedVector, AppendingItselfDoublesTheElements) {
  krel::SharedVector<std::string> v{"a", "b", "c"};
  v.append(v);
  EXPECT_EQ(v, (krel::SharedVector<std::string>{"a", "b", "c", "a", "b", "c"}));
  v.reserve(20);
  v.append(v);
  EXPECT_EQ(v.size(), 12u);
  EXPECT_EQ(v[11], "c");
}

TEST(SharedVector, AppendingAnEmptyVectorKeepsTheSharing) {
  krel::SharedVector<int> a{1};
  const krel::SharedVector<int> b = a;
  a.append(krel::SharedVector<int>());
  EXPECT_TRUE(a.shares_with(b));
}

TEST(SharedVector, ReserveMakesTheBlockOwnWithRoom) {
  krel::SharedVector<int> a{1, 2};
  const krel::SharedVector<int> b = a;
  a.reserve(1);  // shared: the block is replaced although it has room
  EXPECT_FALSE(a.shares_with(b));
  a.reserve(100);
  EXPECT_GE(a.capacity(), 100u);
  const int* data = a.data();
  for (int i = 0; i < 98; ++i) a.push_back(i);
  EXPECT_EQ(a.data(), data);
  krel::SharedVector<int> empty;
  empty.reserve(0);
  EXPECT_EQ(empty.capacity(), 0u);
}

TEST(SharedVector, AtChecksTheIndex) {
  const krel::SharedVector<int> v{7, 8};
  EXPECT_EQ(v.at(1), 8);
  EXPECT_EQ(v.front(), 7);
  EXPECT_EQ(v.back(), 8);
  EXPECT_THROW((void)v.at(2), std::out_of_range);
  EXPECT_THROW((void)krel::SharedVector<int>().at(0), std::out_of_range);
}

TEST(SharedVector, ImpossibleSizesThrowLengthError) {
  EXPECT_THROW((void)krel::SharedVector<std::uint64_t>::block_bytes(SIZE_MAX / 8),
               std::length_error);
  EXPECT_THROW((void)krel::SharedVector<std::uint64_t>::block_bytes(SIZE_MAX / 16 + 1),
               std::length_error);
  krel::SharedVector<std::uint64_t> v;
  EXPECT_THROW(v.reserve(SIZE_MAX), std::length_error);
  EXPECT_TRUE(v.empty());
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KREL_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KREL_TEST_SANITIZED 1
#endif
#endif

TEST(SharedVector, ExhaustedMemoryThrowsBadAlloc) {
#ifdef KREL_TEST_SANITIZED
  GTEST_SKIP() << "sanitizers abort on huge allocations instead of failing them";
#else
  krel::SharedVector<std::uint64_t> v{1, 2};
  // A block of 2^61 bytes is a valid size that no allocator can provide.
  EXPECT_THROW(v.reserve((std::size_t{1} << 60) / 8 + 1), std::bad_alloc);
  EXPECT_EQ(v, (krel::SharedVector<std::uint64_t>{1, 2}));
#endif
}

TEST(SharedVector, CopiesMayBeMadeChangedAndDestroyedOnManyThreads) {
  krel::SharedVector<std::string> shared{"a", "b", "c"};
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (std::size_t t = 0; t < 4; ++t) {
    threads.emplace_back([&shared, &failures, t] {
      for (int i = 0; i < 1000; ++i) {
        krel::SharedVector<std::string> copy = shared;
        copy.push_back("d");
        krel::SharedVector<std::string> second = copy;
        second.append(copy);
        if (copy.size() != 4 || second.size() != 8 || second[7] != "d") ++failures[t];
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
  EXPECT_EQ(shared, (krel::SharedVector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(shared.use_count(), 1u);
}

}  // namespace
