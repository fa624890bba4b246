// Every shared handle of krel through the same checks (tests/support/
// handle_checks.h): copies share the block, a change to a copy leaves the
// original alone, moves hand the block over, nothing leaks, and copies may be
// made and destroyed on many threads at once.

#include "krel/cow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "handle_checks.h"
#include "krel/shared_vector.h"
#include "krel/table_string.h"

namespace {

// A record without a shared empty record: a moved-from handle holds nothing.
struct Record {
  krel::RefCount<> count;
  std::vector<int> values{1, 2, 3};
};

// A record with a shared empty record, which empty handles read.
struct RecordWithEmpty {
  constexpr explicit RecordWithEmpty(krel::SharedEmptyTag)
      : count(krel::shared_empty_tag), values() {}
  RecordWithEmpty() = default;
  RecordWithEmpty(const RecordWithEmpty&) = default;

  krel::RefCount<> count;
  std::vector<int> values{1, 2, 3};
};

// A record whose count orders every change sequentially consistently.
struct SequentialRecord {
  krel::RefCount<krel::CountOrder::sequential> count;
  std::vector<int> values{1, 2, 3};
};

}  // namespace

// The checks of every Cow: the values of its record.
template <class Rep>
struct CowTraits {
  static krel::Cow<Rep> make() { return krel::Cow<Rep>::make(); }
  static bool shares(const krel::Cow<Rep>& a, const krel::Cow<Rep>& b) { return a.shares_with(b); }
  static std::vector<int> observe(const krel::Cow<Rep>& c) { return c.read().values; }
  static void change(krel::Cow<Rep>& c) { c.write().values.push_back(4); }
};

template <>
struct test_support::HandleTraits<krel::Cow<Record>> : CowTraits<Record> {
  static void expect_moved_from(const krel::Cow<Record>& c) { EXPECT_FALSE(c.has_record()); }
};

template <>
struct test_support::HandleTraits<krel::Cow<RecordWithEmpty>> : CowTraits<RecordWithEmpty> {
  static void expect_moved_from(const krel::Cow<RecordWithEmpty>& c) {
    EXPECT_TRUE(c.read().values.empty());
    EXPECT_TRUE(c.shares_with(krel::Cow<RecordWithEmpty>()));
  }
};

template <>
struct test_support::HandleTraits<krel::Cow<SequentialRecord>> : CowTraits<SequentialRecord> {
  static void expect_moved_from(const krel::Cow<SequentialRecord>& c) {
    EXPECT_FALSE(c.has_record());
  }
};

template <>
struct test_support::HandleTraits<krel::SharedVector<std::string>> {
  using Vector = krel::SharedVector<std::string>;
  static Vector make() { return Vector{"a", std::string(100, 'b'), "c"}; }
  static bool shares(const Vector& a, const Vector& b) { return a.shares_with(b); }
  static std::vector<std::string> observe(const Vector& v) { return {v.begin(), v.end()}; }
  static void change(Vector& v) { v.push_back("d"); }
  static void expect_moved_from(const Vector& v) {
    EXPECT_TRUE(v.empty());
    EXPECT_TRUE(v.shares_with(Vector()));
  }
};

// The checks of every BasicTableString. The text never changes, so a change
// is the assignment of another text.
template <class CharT>
struct TableStringTraits {
  using Text = krel::BasicTableString<CharT>;
  static Text make() { return Text(std::basic_string<CharT>(3, CharT{'x'})); }
  static bool shares(const Text& a, const Text& b) { return a.shares_with(b); }
  static std::basic_string<CharT> observe(const Text& t) { return t; }
  static void change(Text& t) { t = Text(std::basic_string<CharT>(4, CharT{'y'})); }
  static void expect_moved_from(const Text& t) {
    EXPECT_TRUE(t.empty());
    EXPECT_EQ(t.data()[0], CharT{});
    EXPECT_TRUE(t.shares_with(Text()));
  }
};

template <>
struct test_support::HandleTraits<krel::BasicTableString<char16_t>> : TableStringTraits<char16_t> {
};
template <>
struct test_support::HandleTraits<krel::BasicTableString<char>> : TableStringTraits<char> {};

namespace {

static_assert(test_support::is_pointer_sized_handle<krel::Cow<Record>>);
static_assert(test_support::is_pointer_sized_handle<krel::Cow<RecordWithEmpty>>);
static_assert(test_support::is_pointer_sized_handle<krel::Cow<SequentialRecord>>);
static_assert(test_support::is_pointer_sized_handle<krel::SharedVector<std::string>>);
static_assert(test_support::is_pointer_sized_handle<krel::BasicTableString<char16_t>>);
static_assert(test_support::is_pointer_sized_handle<krel::BasicTableString<char>>);

using KrelHandles =
    ::testing::Types<krel::Cow<Record>, krel::Cow<RecordWithEmpty>, krel::Cow<SequentialRecord>,
                     krel::SharedVector<std::string>, krel::BasicTableString<char16_t>,
                     krel::BasicTableString<char>>;
}  // namespace

// The suite lives in test_support, where its instantiation must be named.
namespace test_support {
INSTANTIATE_TYPED_TEST_SUITE_P(Krel, SharedHandle, KrelHandles);
}  // namespace test_support
