// krel/cow.h - reference counts and the one copy-on-write handle
//
// Value types of the foundation library and of the libraries above it are
// small handles to a shared record. A record is written only while exactly one
// handle refers to it; a change through a shared handle first copies the record
// (detaches). This header is the one place that knows about that sharing:
// `RefCount` is the thread-safe count a record embeds, and `Cow<Rep>` is the
// handle that owns a reference and detaches before a write.
//
//   struct Rep {
//     krel::RefCount<> count;
//     std::vector<int> values;
//   };
//   krel::Cow<Rep> a = krel::Cow<Rep>::make();
//   krel::Cow<Rep> b = a;           // shares the record
//   b.write().values.push_back(1);  // b copies first; a is unchanged

#ifndef KREL_COW_H
#define KREL_COW_H

#include <atomic>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <utility>

namespace krel {

/// How a RefCount orders its operations.
enum class CountOrder {
  /// Relaxed increment, acq_rel decrement, acquire read: the usual and cheapest
  /// choice that is still correct for freeing and for in-place writes.
  standard,
  /// Every operation sequentially consistent, for records whose contract asks
  /// for it.
  sequential,
};

/// Tag for the constructor of a process-wide shared record that is never freed.
struct SharedEmptyTag {
  explicit SharedEmptyTag() = default;
};
inline constexpr SharedEmptyTag shared_empty_tag{};

/// The atomic reference count embedded in a shared record. A new record starts
/// with one reference: the handle that made it. Copying a record (to detach)
/// gives the copy a fresh count of one.
template <CountOrder Order = CountOrder::standard>
class RefCount {
 public:
  constexpr RefCount() noexcept : count_(1) {}
  /// The shared empty record starts with one reference that its static owner
  /// keeps forever, so the count never reaches zero and the record is never
  /// freed; a handle that refers to it always sees it shared and detaches
  /// before writing.
  constexpr explicit RefCount(SharedEmptyTag) noexcept : count_(1) {}
  /// A record that starts with `initial` references, for records handed out
  /// in bulk (the counts of many handles made at once).
  constexpr explicit RefCount(std::size_t initial) noexcept : count_(initial) {}
  RefCount(const RefCount&) noexcept : count_(1) {}
  RefCount& operator=(const RefCount&) = delete;

  void increment() noexcept {
    // A new reference is made from an existing one, which keeps the record
    // alive; nothing else needs to be ordered with it, so relaxed suffices.
    count_.fetch_add(
        1, Order == CountOrder::standard ? std::memory_order_relaxed : std::memory_order_seq_cst);
  }

  /// Drops one reference; true when it was the last, and the caller frees.
  [[nodiscard]] bool decrement() noexcept {
    // The holder of the only reference frees without a read-modify-write: no
    // other handle exists that could take or drop a reference meanwhile, and
    // the acquire load orders the other handles' earlier releases before the
    // free just as the last fetch_sub would.
    if (is_one()) return true;
    // Release makes this handle's earlier reads and writes of the record happen
    // before the free; acquire (on the last decrement) makes every other
    // handle's release visible to the thread that frees.
    const std::size_t before = count_.fetch_sub(
        1, Order == CountOrder::standard ? std::memory_order_acq_rel : std::memory_order_seq_cst);
    assert(before != 0 && "reference count underflow");
    return before == 1;
  }

  /// Drops `n` references at once; true when they were the last, and the
  /// caller frees. The caller must hold all `n`.
  [[nodiscard]] bool decrement(std::size_t n) noexcept {
    if (count_.load(std::memory_order_acquire) == n) return true;  // as in decrement()
    const std::size_t before = count_.fetch_sub(
        n, Order == CountOrder::standard ? std::memory_order_acq_rel : std::memory_order_seq_cst);
    assert(before >= n && "reference count underflow");
    return before == n;
  }

  /// True when the caller's reference is the only one. Acquire pairs with the
  /// release of other handles' decrements, so their reads of the record are
  /// finished before the caller writes to it in place.
  [[nodiscard]] bool is_one() const noexcept {
    return count_.load(Order == CountOrder::standard ? std::memory_order_acquire
                                                     : std::memory_order_seq_cst) == 1;
  }

  /// The current count, for tests and diagnostics; stale as soon as it is read.
  [[nodiscard]] std::size_t value() const noexcept {
    return count_.load(std::memory_order_relaxed);
  }

 private:
  std::atomic<std::size_t> count_;
};

/// Whether Rep offers a process-wide shared empty record (`static Rep&
/// shared_empty()`); handles of such a Rep never hold a null pointer.
template <class Rep>
concept HasSharedEmpty = requires {
  { Rep::shared_empty() } -> std::same_as<Rep&>;
};

/// The copy-on-write handle. Rep has a member `count` (a RefCount) and a copy
/// constructor that copies the payload (the count copy starts at one).
///
/// Ownership: one reference to a shared record. Copies share it; `write()`
/// copies it first when shared. A moved-from handle refers to the shared empty
/// record when Rep has one, and to nothing otherwise (then only destruction and
/// assignment are allowed).
/// Threads: copies may be made, used and destroyed on any threads at once; a
/// single handle is like an int (many readers, or one writer).
template <class Rep>
class Cow {
 public:
  /// The shared empty record, when Rep has one.
  Cow() noexcept requires HasSharedEmpty<Rep> : rep_(&Rep::shared_empty()) {
    rep_->count.increment();
  }

  /// Takes over a new record whose count is one.
  explicit Cow(Rep* adopted) noexcept : rep_(adopted) {
    assert(rep_ != nullptr && rep_->count.is_one());
  }

  template <class... Args>
  [[nodiscard]] static Cow make(Args&&... args) {
    return Cow(new Rep(std::forward<Args>(args)...));
  }

  Cow(const Cow& other) noexcept : rep_(other.rep_) {
    if (rep_ != nullptr) rep_->count.increment();
  }
  Cow(Cow&& other) noexcept : rep_(other.release_to_empty()) {}
  Cow& operator=(const Cow& other) noexcept {
    Cow(other).swap(*this);
    return *this;
  }
  Cow& operator=(Cow&& other) noexcept {
    Cow(std::move(other)).swap(*this);
    return *this;
  }
  ~Cow() { release(rep_); }

  void swap(Cow& other) noexcept { std::swap(rep_, other.rep_); }

  /// The record, for reading. Never copies.
  [[nodiscard]] const Rep& read() const noexcept {
    assert(rep_ != nullptr && "use of a moved-from handle");
    return *rep_;
  }

  /// The record, for writing: copied first when another handle shares it, so
  /// no other handle ever sees the change. The only place that detaches.
  [[nodiscard]] Rep& write() {
    assert(rep_ != nullptr && "use of a moved-from handle");
    if (!rep_->count.is_one()) detach();
    return *rep_;
  }

  /// The record, or null after a move; for the code that owns the record's
  /// kind to inspect it.
  [[nodiscard]] Rep* get() const noexcept { return rep_; }

  /// Gives up the handle's reference without dropping it: returns the record
  /// and leaves the handle empty (only destruction and assignment are allowed
  /// then). The caller now owns that reference.
  [[nodiscard]] Rep* release_record() noexcept { return std::exchange(rep_, nullptr); }

  /// True when both handles refer to one record.
  [[nodiscard]] bool shares_with(const Cow& other) const noexcept { return rep_ == other.rep_; }

  /// The record's address: the identity of the storage, for tests.
  [[nodiscard]] const void* identity() const noexcept { return rep_; }

  /// True when the handle holds a record (false only after a move when Rep has
  /// no shared empty record).
  [[nodiscard]] bool has_record() const noexcept { return rep_ != nullptr; }

 private:
  Rep* release_to_empty() noexcept {
    Rep* taken = rep_;
    if constexpr (HasSharedEmpty<Rep>) {
      rep_ = &Rep::shared_empty();
      rep_->count.increment();
    } else {
      rep_ = nullptr;
    }
    return taken;
  }

  void detach() {
    Rep* copy = new Rep(*rep_);  // may throw; then nothing has changed
    release(std::exchange(rep_, copy));
  }

  static void release(Rep* rep) noexcept {
    if (rep != nullptr && rep->count.decrement()) delete rep;
  }

  Rep* rep_;
};

}  // namespace krel

#endif  // KREL_COW_H
