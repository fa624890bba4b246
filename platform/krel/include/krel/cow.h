// krel/cow.h - reference counts and the one copy-on-write handle
//
// Value types of the foundation library and of the libraries above it are
// small handles to a shared record. A record is written only while exactly one
// handle refers to it; a change through a shared handle first copies the record
// (detaches). `RefCount` is the thread-safe count a record embeds (it lives
// with the counted blocks in krel/detail/counted_block.h), and `Cow<Rep>` is
// the handle that owns a reference and detaches before a write.
//
//   struct Rep {
//     krel::RefCount<> count;
//     std::vector<int> values;
//   };
//   krel::Cow<Rep> a = krel::Cow<Rep>::make();
//   krel::Cow<Rep> b = a;           // shares the record
//   b.write().values.push_back(1);  // b copies first; a is unchanged
//
// A Rep with a constexpr constructor from krel::SharedEmptyTag has a shared
// empty record: default-constructed and moved-from handles read it, and the
// first write gives the handle a record of its own.

#ifndef KREL_COW_H
#define KREL_COW_H

#include <cassert>
#include <type_traits>
#include <utility>

#include "krel/detail/counted_block.h"

namespace krel {

/// Whether Rep has a shared empty record: a constexpr constructor from
/// SharedEmptyTag, which builds the record that empty handles read.
template <class Rep>
concept HasSharedEmpty = std::is_constructible_v<Rep, SharedEmptyTag>;

/// The copy-on-write handle. Rep has a member `count` (a RefCount) and a copy
/// constructor that copies the payload (the count copy starts at one).
///
/// Ownership: one reference to a shared record. Copies share it; `write()`
/// copies it first when shared. A moved-from handle reads the shared empty
/// record when Rep has one, and holds nothing otherwise (then only destruction
/// and assignment are allowed).
/// Threads: copies may be made, used and destroyed on any threads at once; a
/// single handle is like an int (many readers, or one writer).
template <class Rep>
class Cow {
  using Layout = detail::CountedBlock<Rep>;

 public:
  /// The shared empty record, when Rep has one; allocates nothing. A template,
  /// so that the constraint is checked where a handle is made, not where one
  /// is declared: a handle may be a member while Rep is still incomplete.
  template <class R = Rep>
  Cow() noexcept requires HasSharedEmpty<R> {}

  /// A handle to a new record built from `args`.
  template <class... Args>
  [[nodiscard]] static Cow make(Args&&... args) {
    return Cow(Layout::allocate(sizeof(Rep), std::forward<Args>(args)...));
  }

  void swap(Cow& other) noexcept { block_.swap(other.block_); }

  /// The record, for reading. Never copies.
  [[nodiscard]] const Rep& read() const noexcept {
    if constexpr (HasSharedEmpty<Rep>) {
      return block_.read();
    } else {
      assert(block_.get() != nullptr && "use of a moved-from handle");
      return *block_.get();
    }
  }

  /// The record, for writing: copied first when another handle shares it (or
  /// when the handle reads the shared empty record), so no other handle ever
  /// sees the change. The only place that detaches.
  [[nodiscard]] Rep& write() {
    if (!block_.is_sole_owner()) detach();
    return *block_.get();
  }

  /// The record that read() reads, or null after a move when Rep has no
  /// shared empty record; for the code that owns the record's kind to inspect
  /// it.
  [[nodiscard]] const Rep* get() const noexcept {
    if constexpr (HasSharedEmpty<Rep>) {
      return &block_.read();
    } else {
      return block_.get();
    }
  }

  /// True when both handles refer to one record (or both read the shared
  /// empty record).
  [[nodiscard]] bool shares_with(const Cow& other) const noexcept {
    return block_.get() == other.block_.get();
  }

  /// The address of the record that read() reads: the identity of the
  /// storage, for tests.
  [[nodiscard]] const void* identity() const noexcept { return get(); }

  /// True when the handle holds a record (false only after a move when Rep has
  /// no shared empty record).
  [[nodiscard]] bool has_record() const noexcept { return get() != nullptr; }

 private:
  explicit Cow(Rep* adopted) noexcept : block_(adopted) {}

  void detach() {
    // May throw; then nothing has changed. The old reference is dropped only
    // after the copy is made.
    block_ = detail::CountedPtr<Layout>(Layout::allocate(sizeof(Rep), read()));
  }

  detail::CountedPtr<Layout> block_;
};

}  // namespace krel

#endif  // KREL_COW_H
