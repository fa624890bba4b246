// alloc_failure_test.cpp - every allocation of a call fails in turn
//
// This program replaces the global operator new (every form) with one that
// counts the blocks it hands out and, when armed with N, throws std::bad_alloc
// at the N-th allocation from then on (a nothrow form returns null instead).
// Each test runs one call of the library for N = 0, 1, 2, ... until the call
// completes without reaching the failure, and checks after every failed run:
// - std::bad_alloc came out, and nothing else: no other exception, no
//   message turned into "invalid input", no swallowed failure, no terminate
//   (a noexcept function that allocates would end the program here);
// - every block allocated during the run was freed again;
// - the object being changed kept its old value where the library promises
//   the strong guarantee (a failed +=, /= or push_back leaves the path as it
//   was), and a copy that shared its storage was not touched.
// Refused inputs are longer than the short-string buffer, so that copying
// the message's text argument allocates and can fail too.
// The first, unarmed run of each call builds the lazily made tables (escape
// map, message catalogue, units service), so the leak count only sees what
// the call itself allocates.
//
// Under AddressSanitizer the replacement stays: it allocates with malloc,
// which ASan intercepts, so LeakSanitizer still checks every block at exit
// (ASan's own operator new is simply not linked in when all forms are
// defined here).

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "krel/array_size.h"
#include "krel/message.h"
#include "lang/core/container_path.h"
#include "ui/core/enumerations.h"
#include "ui/core/errors.h"
#include "ui/core/indexing.h"
#include "ui/core/lang_path.h"
#include "ui/core/node_id.h"
#include "ui/core/node_path.h"
#include "ui/core/object_path.h"
#include "ui/core/object_path_element.h"
#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"
#include "ui/core/text_utils.h"
#include "ui/core/unit_conversion.h"
#include "units2/core/expr.h"

namespace failing_new {

// -1: disarmed. Otherwise the number of allocations still allowed.
std::atomic<long> countdown{-1};
std::atomic<bool> fired{false};
std::atomic<long> live{0};  // blocks handed out and not yet freed

// True when this allocation is the one that is to fail.
bool fail_now() noexcept {
  long left = countdown.load(std::memory_order_relaxed);
  while (left >= 0) {
    if (countdown.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
      if (left == 0) {
        countdown.store(-1, std::memory_order_relaxed);  // one failure per run
        fired.store(true, std::memory_order_relaxed);
        return true;
      }
      return false;
    }
  }
  return false;
}

void* allocate_or_null(std::size_t n, std::size_t alignment) noexcept {
  if (fail_now()) return nullptr;
  void* p = nullptr;
  if (alignment <= alignof(std::max_align_t)) {
    p = std::malloc(n == 0 ? 1 : n);
  } else if (posix_memalign(&p, alignment, n == 0 ? 1 : n) != 0) {
    p = nullptr;
  }
  if (p != nullptr) live.fetch_add(1, std::memory_order_relaxed);
  return p;
}

void* allocate(std::size_t n, std::size_t alignment) {
  void* p = allocate_or_null(n, alignment);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

void deallocate(void* p) noexcept {
  if (p == nullptr) return;
  live.fetch_sub(1, std::memory_order_relaxed);
  std::free(p);
}

void arm(long n) noexcept {
  fired.store(false, std::memory_order_relaxed);
  countdown.store(n, std::memory_order_relaxed);
}

// Disarms and tells whether the failure was reached.
bool disarm() noexcept {
  countdown.store(-1, std::memory_order_relaxed);
  return fired.exchange(false, std::memory_order_relaxed);
}

}  // namespace failing_new

void* operator new(std::size_t n) {
  return failing_new::allocate(n, 0);
}
void* operator new[](std::size_t n) {
  return failing_new::allocate(n, 0);
}
void* operator new(std::size_t n, std::align_val_t a) {
  return failing_new::allocate(n, static_cast<std::size_t>(a));
}
void* operator new[](std::size_t n, std::align_val_t a) {
  return failing_new::allocate(n, static_cast<std::size_t>(a));
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  return failing_new::allocate_or_null(n, 0);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  return failing_new::allocate_or_null(n, 0);
}
void* operator new(std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return failing_new::allocate_or_null(n, static_cast<std::size_t>(a));
}
void* operator new[](std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return failing_new::allocate_or_null(n, static_cast<std::size_t>(a));
}
void operator delete(void* p) noexcept {
  failing_new::deallocate(p);
}
void operator delete[](void* p) noexcept {
  failing_new::deallocate(p);
}
void operator delete(void* p, std::size_t) noexcept {
  failing_new::deallocate(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  failing_new::deallocate(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
  failing_new::deallocate(p);
}
void operator delete[](void* p, std::align_val_t) noexcept {
  failing_new::deallocate(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
  failing_new::deallocate(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
  failing_new::deallocate(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
  failing_new::deallocate(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
  failing_new::deallocate(p);
}
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept {
  failing_new::deallocate(p);
}
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept {
  failing_new::deallocate(p);
}

namespace {

using ui::core::ErrorId;
using ui::core::NodeId;
using ui::core::NodePath;
using ui::core::NodePath1;
using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathName;
using ui::core::ObjectPathSubscript;
using ui::core::ustring;

enum class Ending { returned, bad_alloc, other };

// One run of a call with the failure armed at allocation `fail_at` (never,
// when negative).
class Attempt {
 public:
  explicit Attempt(long fail_at) : fail_at_(fail_at) {}

  template <class Fn>
  void run(Fn&& fn) {
    if (fail_at_ >= 0) failing_new::arm(fail_at_);
    try {
      std::forward<Fn>(fn)();
      ending_ = Ending::returned;
    } catch (const std::bad_alloc&) {
      ending_ = Ending::bad_alloc;
    } catch (const std::exception& e) {
      fired_ = failing_new::disarm();  // before the description allocates
      ending_ = Ending::other;
      other_ = std::string(typeid(e).name()) + ": " + e.what();
    } catch (...) {
      fired_ = failing_new::disarm();
      ending_ = Ending::other;
      other_ = "an exception that is no std::exception";
    }
    fired_ = failing_new::disarm() || fired_;
  }

  [[nodiscard]] bool failed() const { return ending_ == Ending::bad_alloc; }
  [[nodiscard]] long fail_at() const { return fail_at_; }
  [[nodiscard]] bool fired() const { return fired_; }
  [[nodiscard]] Ending ending() const { return ending_; }
  [[nodiscard]] const std::string& other() const { return other_; }

 private:
  long fail_at_;
  bool fired_ = false;
  Ending ending_ = Ending::returned;
  std::string other_;
};

// Runs body(attempt) for every failure position until the call completes
// untouched; `allocations` receives how many allocations that run made.
template <class Body>
::testing::AssertionResult survives_every_allocation_failure(Body&& body,
                                                             long* allocations = nullptr) {
  {
    Attempt warm_up(-1);  // builds lazily made tables before anything is counted
    body(warm_up);
    if (warm_up.ending() != Ending::returned) {
      return ::testing::AssertionFailure()
             << "the call fails without any injected failure: " << warm_up.other();
    }
  }
  for (long n = 0; n < 1'000'000; ++n) {
    const long live_before = failing_new::live.load();
    Ending ending = Ending::returned;
    bool fired = false;
    std::string other;
    {
      Attempt attempt(n);
      body(attempt);
      ending = attempt.ending();
      fired = attempt.fired();
      other = attempt.other();
    }
    const long leaked = failing_new::live.load() - live_before;
    if (ending == Ending::other) {
      return ::testing::AssertionFailure()
             << "allocation " << n
             << " failed and something else than std::bad_alloc came out: " << other;
    }
    if (fired && ending != Ending::bad_alloc) {
      return ::testing::AssertionFailure()
             << "allocation " << n << " failed, but the call completed as if it had not: the "
             << "std::bad_alloc was swallowed";
    }
    if (leaked != 0) {
      return ::testing::AssertionFailure()
             << leaked << " block(s) leaked after allocation " << n << " failed";
    }
    if (!fired) {
      if (allocations != nullptr) *allocations = n;
      return ::testing::AssertionSuccess() << n << " allocation(s)";
    }
  }
  return ::testing::AssertionFailure() << "the call never completed";
}

// Runs `fn`, which must throw the message `id`; returns normally when it does,
// so that the harness sees the refusal as the call's normal outcome.
template <class Fn>
void expect_refusal(ErrorId id, Fn&& fn) {
  try {
    std::forward<Fn>(fn)();
  } catch (const krel::MessageException& e) {
    if (ui::core::is_error(e, id)) return;
    throw;
  }
  throw std::logic_error("the input was not refused");
}

std::vector<ustring> id_texts(const ui::core::NodePathBase& path) {
  std::vector<ustring> texts;
  for (const NodeId& id : path.ids()) texts.push_back(id.ustring());
  return texts;
}

// --- Parsers and text functions -------------------------------------------------

TEST(AllocationFailure, NodeIdAndNodePathParsingLetBadAllocThrough) {
  long count = 0;
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)NodeId(u"Body\t//Frame"); }); }, &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)NodePath(u"Body//Frame/mass/x y/z"); }); }, &count));
  EXPECT_GT(count, 3);
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)NodePath1(u"a/b/c/d/e/f/g/h/i/j/k/l"); }); }));
}

TEST(AllocationFailure, RefusedNodePathsLetBadAllocThrough) {
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidNodeId, [] { (void)NodePath(u"Body/LongFrameName///mass"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidNodePath, [] { (void)NodePath(u"/Body/Frame/mass"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] { expect_refusal(ErrorId::InvalidNodePath1, [] { (void)NodePath1(u""); }); });
  }));
}

TEST(AllocationFailure, MakeTwinsLetBadAllocThroughInsteadOfAnsweringEmpty) {
  // An empty optional means "not valid input"; running out of memory on valid
  // input must not be reported that way.
  const auto must_hold = [](bool has_value) {
    if (!has_value) throw std::logic_error("a valid input was answered with an empty optional");
  };
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) { a.run([&] { must_hold(NodeId::make(u"x\ty").has_value()); }); }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) { a.run([&] { must_hold(NodePath::make(u"a/b//c/d").has_value()); }); }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) { a.run([&] { must_hold(NodePath1::make(u"a/b").has_value()); }); }));
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    a.run([&] { must_hold(ObjectPathName::make(u"Gain\tx").has_value()); });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    a.run([&] { must_hold(ObjectPathSubscript::make(u"// 2, 3,4").has_value()); });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    a.run([&] { must_hold(ui::core::make_element(u"//2, 3").has_value()); });
  }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) { a.run([&] { must_hold(ui::core::make_element(u"a//b").has_value()); }); }));
}

TEST(AllocationFailure, ObjectPathNamesSubscriptsAndElementsLetBadAllocThrough) {
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ObjectPathName(u"Gain\tfactor//x"); }); }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidObjectPathName, [] { (void)ObjectPathName(u"Gain/factor"); });
    });
  }));
  long count = 0;
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ObjectPathSubscript(u"//2, 3, 4, 5, 6"); }); }, &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidObjectPathSubscriptString,
                     [] { (void)ObjectPathSubscript(u"//1, 2,, 3, 4"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] { (void)ustring(ObjectPathSubscript(std::vector<unsigned long>{7, 8, 9})); });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      const auto e = ui::core::make_element(u"//4, 5");
      (void)ui::core::to_string(*e);
    });
  }));
}

TEST(AllocationFailure, TheFourObjectPathParsersLetBadAllocThrough) {
  long count = 0;
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ui::core::to_object_path(u"a///1, 2/b//c/d e/f"); }); },
      &count));
  EXPECT_GT(count, 3);
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidObjectPath,
                     [] { (void)ui::core::to_object_path(u"Gain///factor"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidObjectPath,
                     [] { (void)ui::core::to_partial_path(u"a///1///2"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ui::core::to_partial_path(u"a/b/c///0/d"); }); }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ui::core::to_name_path(u"a/b//c/d"); }); }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidNodePath, [] { (void)ui::core::to_name_path(u"a///1/b"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ui::core::to_partial_name_path(u"a/b///1/c"); }); }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ustring(ui::core::to_object_path(u"x///3, 4/y")); }); }));
}

TEST(AllocationFailure, TextFunctionsAndEnumerationsLetBadAllocThrough) {
  long count = 0;
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ui::core::escape_xml(u"a<b & 'c' > x \"q\""); }); },
      &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)ui::core::block_name(u"model/sub//x/Gain"); }); }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] { (void)ui::core::block_path_without_model(u"model/sub//x/Gain"); });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::InvalidAccess, [] { (void)ui::core::to_access(u"External access"); });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] { (void)ui::core::to_user_string(ui::core::UnitConversionType::unknown); });
  }));
}

TEST(AllocationFailure, UnitExpressionsAndTheirDeltaUnitLetBadAllocThrough) {
  long count = 0;
  EXPECT_TRUE(survives_every_allocation_failure(
      [](Attempt& a) { a.run([] { (void)units2::core::Expr(u"kg*m^2/(s^2*K)"); }); }, &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      if (units2::core::Expr(u"kg**m").isValid()) throw std::logic_error("kg**m parsed");
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      const units2::core::Expr celsius(u"degC");
      if (ui::core::ps2dravik_nonaffine_unit_conversion(celsius, true) != u"deltadegC") {
        throw std::logic_error("degC did not give deltadegC");
      }
    });
  }));
}

TEST(AllocationFailure, IndexingAndLanguagePathsLetBadAllocThrough) {
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      expect_refusal(ErrorId::SubscriptOutOfRange, [] {
        (void)ui::core::sub_to_ind(ObjectPathSubscript(u"//4, 1"), krel::ArraySize{3, 4});
      });
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      (void)ui::core::ind_to_sub(lang::core::PathElementIndex(23, krel::ArraySize{2, 3, 4}));
    });
  }));
  EXPECT_TRUE(survives_every_allocation_failure([](Attempt& a) {
    a.run([] {
      const NodePath1 path(u"Body//Frame/mass");
      (void)ui::core::to_node_path1(ui::core::to_value_path(path));
    });
  }));
}

// --- Appends: the strong guarantee ---------------------------------------------

TEST(AllocationFailure, FailedNodePathAppendLeavesThePathAsItWas) {
  const NodePath shared(u"a/b/c");
  const NodePath tail(u"d/e/f/g/h/i/j/k");
  const std::vector<ustring> before = id_texts(shared);
  std::vector<ustring> joined = before;
  for (const ustring& t : id_texts(tail)) joined.push_back(t);
  bool kept = true;
  long count = 0;
  // Shared with `shared`: the append must copy first.
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) {
        NodePath target = shared;
        a.run([&] { target += tail; });
        kept = kept && id_texts(target) == (a.failed() ? before : joined);
      },
      &count));
  EXPECT_GT(count, 0);
  // Sole owner of its record: the append grows it in place or moves it.
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    NodePath target(std::vector<NodeId>(shared.ids()));
    a.run([&] { target += tail; });
    kept = kept && id_texts(target) == (a.failed() ? before : joined);
  }));
  // Appended to itself.
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    NodePath target(std::vector<NodeId>(shared.ids()));
    const NodePath& same = target;
    a.run([&] { target += same; });
    std::vector<ustring> doubled = before;
    doubled.insert(doubled.end(), before.begin(), before.end());
    kept = kept && id_texts(target) == (a.failed() ? before : doubled);
  }));
  EXPECT_TRUE(kept) << "a failed += changed the path";
  EXPECT_EQ(id_texts(shared), before) << "a copy that shared the record was changed";
}

TEST(AllocationFailure, FailedNodePath1AppendAndPushBackLeaveThePathAsItWas) {
  const NodePath1 shared(u"a/b");
  const NodePath tail(u"c/d/e");
  const std::vector<ustring> before = id_texts(shared);
  bool kept = true;
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    NodePath1 target = shared;
    a.run([&] { target += tail; });
    kept = kept && (a.failed() ? id_texts(target) == before : target.size() == 5);
  }));
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    NodePath target = NodePath(shared);
    const NodeId extra(u"x");
    a.run([&] { target.push_back(extra); });
    kept = kept && (a.failed() ? id_texts(target) == before : target.size() == 3);
  }));
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    NodePath target(std::vector<NodeId>(shared.ids()));
    const NodeId extra(u"x");
    a.run([&] {
      for (int i = 0; i < 20; ++i) target.push_back(extra);  // grows more than once
    });
    kept = kept && (a.failed() ? target.size() >= 2 && target.size() <= 22 : target.size() == 22);
  }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) { a.run([&] { (void)(shared + tail); }); }));
  EXPECT_TRUE(kept) << "a failed += or push_back changed the path";
  EXPECT_EQ(id_texts(shared), before);
}

TEST(AllocationFailure, FailedObjectPathAppendLeavesThePathAsItWas) {
  const ObjectPath shared = ui::core::to_object_path(u"a///1, 2/b");
  const ObjectPath tail = ui::core::to_object_path(u"c/d///3/e/f/g/h/i/j/k/l/m/n/o/p/q");
  const ustring before = shared;
  const ustring joined = before + u"/" + ustring(tail);
  bool kept = true;
  long count = 0;
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) {
        ObjectPath target = shared;
        a.run([&] { target /= tail; });
        kept = kept && ustring(target) == (a.failed() ? before : joined);
      },
      &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    ObjectPath target = ui::core::to_object_path(before);  // a block of its own
    a.run([&] { target /= tail; });
    kept = kept && ustring(target) == (a.failed() ? before : joined);
  }));
  // Doubling a path by appending it to itself three times outgrows any
  // block the parser chose; a failure keeps the last complete doubling.
  const auto repeated = [&](int times) {
    ustring text = before;
    for (int i = 1; i < times; ++i) text += u"/" + before;
    return text;
  };
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) {
        ObjectPath target = ui::core::to_object_path(before);
        const ObjectPath& same = target;
        int done = 0;
        a.run([&] {
          for (; done < 3; ++done) target /= same;
        });
        kept = kept && ustring(target) == repeated(1 << done);
      },
      &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure([&](Attempt& a) {
    ObjectPath target = shared;
    const ObjectPathElement extra(ObjectPathName(u"x"));
    a.run([&] { target.push_back(extra); });
    kept = kept && ustring(target) == (a.failed() ? before : before + u"/x");
  }));
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) {
        ObjectPath target = ui::core::to_object_path(before);
        int done = 0;
        a.run([&] {
          // An element of the path itself, while the path grows under it.
          for (; done < 20; ++done) target.push_back(target[0]);
        });
        ustring expected = before;
        for (int i = 0; i < done; ++i) expected += u"/a";
        kept = kept && ustring(target) == expected;
      },
      &count));
  EXPECT_GT(count, 0);
  EXPECT_TRUE(survives_every_allocation_failure(
      [&](Attempt& a) { a.run([&] { (void)(shared / tail); }); }));
  EXPECT_TRUE(kept) << "a failed /= or push_back changed the path";
  EXPECT_EQ(ustring(shared), before) << "a copy that shared the block was changed";
}

TEST(AllocationFailure, ReplacedOperatorNewIsWhatTheLibraryCalls) {
  // Guards the tests above: if the library's allocations bypassed this
  // program's operator new, every loop would end at once and prove nothing.
  const long before = failing_new::live.load();
  const NodePath path(u"a/b/c");
  EXPECT_GT(failing_new::live.load(), before);
  Attempt attempt(0);
  attempt.run([] { (void)NodePath(u"x/y"); });
  EXPECT_TRUE(attempt.fired());
  EXPECT_EQ(attempt.ending(), Ending::bad_alloc);
}

}  // namespace
