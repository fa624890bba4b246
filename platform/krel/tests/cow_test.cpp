#include "krel/cow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

std::atomic<int> live_records{0};

struct Rep {
  krel::RefCount<> count;
  std::vector<int> values;
  Rep() { ++live_records; }
  Rep(const Rep& other) : values(other.values) { ++live_records; }
  ~Rep() { --live_records; }
};

struct RepWithEmpty {
  krel::RefCount<> count;
  std::vector<int> values;
  constexpr explicit RepWithEmpty(krel::SharedEmptyTag) : count(krel::shared_empty_tag) {}
  RepWithEmpty() = default;
  RepWithEmpty(const RepWithEmpty& other) = default;
};

struct SeqRep {
  krel::RefCount<krel::CountOrder::sequential> count;
  int value = 0;
};

TEST(Cow, CopySharesTheRecord) {
  auto a = krel::Cow<Rep>::make();
  auto b = a;
  EXPECT_TRUE(a.shares_with(b));
  EXPECT_EQ(a.read().count.value(), 2u);
}

TEST(Cow, WriteToCopyLeavesOriginalUnchanged) {
  auto a = krel::Cow<Rep>::make();
  a.write().values.push_back(1);
  auto b = a;
  b.write().values.push_back(2);
  EXPECT_FALSE(a.shares_with(b));
  EXPECT_EQ(a.read().values, std::vector<int>{1});
  EXPECT_EQ(b.read().values, (std::vector<int>{1, 2}));
}

TEST(Cow, WriteToSoleOwnerDoesNotCopy) {
  auto a = krel::Cow<Rep>::make();
  const void* before = a.identity();
  a.write().values.push_back(1);
  EXPECT_EQ(a.identity(), before);
}

TEST(Cow, ReadNeverCopies) {
  auto a = krel::Cow<Rep>::make();
  auto b = a;
  (void)a.read().values.size();
  EXPECT_TRUE(a.shares_with(b));
}

TEST(Cow, LeakCounterReturnsToZero) {
  {
    auto a = krel::Cow<Rep>::make();
    auto b = a;
    auto c = std::move(b);
    c.write().values.push_back(3);
    a = c;
    EXPECT_EQ(live_records.load(), 1);
  }
  EXPECT_EQ(live_records.load(), 0);
}

TEST(Cow, MovedFromHandleWithoutEmptyHoldsNothing) {
  auto a = krel::Cow<Rep>::make();
  auto b = std::move(a);
  EXPECT_FALSE(a.has_record());  // NOLINT(bugprone-use-after-move): the state is the contract
  a = b;
  EXPECT_TRUE(a.shares_with(b));
}

TEST(Cow, DefaultAndMovedFromShareTheEmptyRecord) {
  krel::Cow<RepWithEmpty> a;
  krel::Cow<RepWithEmpty> b;
  EXPECT_TRUE(a.shares_with(b));
  EXPECT_EQ(a.identity(), b.identity());
  EXPECT_TRUE(a.has_record());
  b.write().values.push_back(1);
  EXPECT_FALSE(a.shares_with(b));
  EXPECT_TRUE(krel::Cow<RepWithEmpty>().read().values.empty());
  krel::Cow<RepWithEmpty> c = std::move(b);
  EXPECT_TRUE(b.shares_with(a));  // NOLINT(bugprone-use-after-move)
  EXPECT_TRUE(b.has_record());
  EXPECT_EQ(c.read().values, std::vector<int>{1});
}

TEST(Cow, CopiesAcrossThreadsAreRaceFree) {
  auto shared = krel::Cow<SeqRep>::make();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([shared, t]() mutable {
      for (int i = 0; i < 5000; ++i) {
        auto copy = shared;
        if (i % 7 == 0) copy.write().value = t;
        ASSERT_GE(copy.read().value, 0);
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(shared.read().value, 0);
  EXPECT_EQ(shared.read().count.value(), 1u);
}

}  // namespace
