// krel/detail/counted_block.h - the counted blocks under every shared handle
//
// Internal to krel: do not include this file directly; include krel/cow.h,
// krel/shared_vector.h or krel/table_string.h, which build on it.
//
// Every shared value of krel is a handle to one heap block: a header that
// holds the block's reference count, followed directly by the block's items
// (the elements of a SharedVector, the code units of a BasicTableString; the
// record of a Cow is a header with no items). This file is the one place that
// allocates such blocks, counts references to them, frees them, and builds
// the shared empty block that stands for every empty value:
//
//   RefCount<Order>        the count that a header embeds
//   CountedBlock<H, T>     the layout of a block of header H and items T:
//                          allocation, the items, destruction, the shared
//                          empty block
//   CountedPtr<Layout>     one counted reference to a block, or none; the only
//                          type whose copy, move and destructor change a count
//
// A handle type holds one CountedPtr (directly or through a Cow) and keeps the
// compiler-generated copy, move and destructor. A null CountedPtr reads the
// shared empty block, so empty values share one block that is never counted,
// never written and never freed, and moves never touch a count.

#ifndef KREL_DETAIL_COUNTED_BLOCK_H
#define KREL_DETAIL_COUNTED_BLOCK_H

#include <atomic>
#include <cassert>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
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

/// Tag for the constexpr constructor of the shared empty block of a header
/// type: the block that empty handles read and that is never freed.
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
  /// The count of a shared empty block. It reads 1 and never changes: a handle
  /// that reads the shared empty block holds no reference to it (its pointer
  /// is null), so nothing increments, decrements or frees it.
  constexpr explicit RefCount(SharedEmptyTag) noexcept : count_(1) {}
  RefCount(const RefCount&) noexcept : count_(1) {}
  RefCount& operator=(const RefCount&) = delete;

  void increment() noexcept {
    // A new reference is made from an existing one, which keeps the record
    // alive; nothing else needs to be ordered with it, so relaxed suffices.
    count_.fetch_add(1, order(std::memory_order_relaxed));
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
    const std::size_t before = count_.fetch_sub(1, order(std::memory_order_acq_rel));
    assert(before != 0 && "reference count underflow");
    return before == 1;
  }

  /// True when the caller's reference is the only one. Acquire pairs with the
  /// release of other handles' decrements, so their reads of the record are
  /// finished before the caller writes to it in place.
  [[nodiscard]] bool is_one() const noexcept {
    return count_.load(order(std::memory_order_acquire)) == 1;
  }

  /// The current count, for tests and diagnostics; stale as soon as it is read.
  [[nodiscard]] std::size_t value() const noexcept {
    return count_.load(std::memory_order_relaxed);
  }

 private:
  // The order of an operation: `standard` as given, or sequentially consistent.
  static constexpr std::memory_order order(std::memory_order standard) noexcept {
    return Order == CountOrder::standard ? standard : std::memory_order_seq_cst;
  }

  std::atomic<std::size_t> count_;
};

namespace detail {

/// The storage of a shared empty block: a header built by its SharedEmptyTag
/// constructor at compile time, followed by one zeroed item slot. The header
/// is a union member, which is not destroyed with the storage, so the block
/// outlives every handle, including handles with static storage duration that
/// are destroyed after it.
template <class Header, class Slot>
struct EmptyBlock {
  constexpr EmptyBlock() noexcept : header(shared_empty_tag) {}
  ~EmptyBlock() {}

  union {
    /// The header that empty handles read.
    Header header;
  };
  /// The first item slot: the terminator of an empty text, the end of an
  /// empty vector.
  alignas(Slot) unsigned char first_item[sizeof(Slot)] = {};
};

/// The one shared empty block of each layout; constinit builds it before any
/// code runs, so no first use can race with another.
template <class Header, class Slot>
constinit inline EmptyBlock<Header, Slot> empty_block{};

/// The layout of a block: a Header, which has a member `count` (a RefCount),
/// followed by room for items of T at the first offset that suits T. With T =
/// void the block is the header alone (the record of a Cow).
///
/// When T is not trivially destructible, Header has a member `size`: the
/// number of items built, which destroy() destroys. A Header that has a
/// constexpr constructor from SharedEmptyTag has a shared empty block.
template <class Header, class T = void>
class CountedBlock {
  // The type of an item slot; a header-only block keeps one spare byte in its
  // shared empty block.
  using Slot = std::conditional_t<std::is_void_v<T>, unsigned char, T>;
  static_assert(alignof(Header) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__ &&
                    alignof(Slot) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__,
                "blocks are allocated with the default alignment of operator new");

 public:
  /// Where the items start: the first position after the header that suits T.
  static constexpr std::size_t items_offset =
      (sizeof(Header) + alignof(Slot) - 1) / alignof(Slot) * alignof(Slot);

  /// The byte size of a block with room for `n` items. Throws
  /// std::length_error(what) when that size does not fit in a size_t.
  [[nodiscard]] static std::size_t bytes_for(std::size_t n,
                                             const char* what) requires(!std::is_void_v<T>) {
    if (n > (std::numeric_limits<std::size_t>::max() - items_offset) / sizeof(T)) {
      throw std::length_error(what);
    }
    return items_offset + n * sizeof(T);
  }

  /// A new block of `bytes` bytes (at least the header's) whose header is
  /// built from `args`, with a count of one; the item slots are left unbuilt.
  /// Throws std::bad_alloc when memory runs out; when the header's constructor
  /// throws, the memory is freed and the exception passes on.
  template <class... Args>
  [[nodiscard]] static Header* allocate(std::size_t bytes, Args&&... args) {
    assert(bytes >= sizeof(Header) && "a block holds at least its header");
    void* raw = ::operator new(bytes);
    try {
      return ::new (raw) Header(std::forward<Args>(args)...);
    } catch (...) {
      ::operator delete(raw);
      throw;
    }
  }

  /// The first item slot of a block.
  /// @{
  [[nodiscard]] static T* items(Header* block) noexcept requires(!std::is_void_v<T>) {
    return reinterpret_cast<T*>(reinterpret_cast<unsigned char*>(block) + items_offset);
  }
  [[nodiscard]] static const T* items(const Header* block) noexcept requires(!std::is_void_v<T>) {
    return reinterpret_cast<const T*>(reinterpret_cast<const unsigned char*>(block) + items_offset);
  }
  /// @}

  /// Destroys the block's items, last to first, then its header, and frees it.
  static void destroy(Header* block) noexcept {
    if constexpr (!std::is_void_v<T> && !std::is_trivially_destructible_v<T>) {
      T* first = items(block);
      for (std::size_t i = block->size; i != 0; --i) std::destroy_at(first + (i - 1));
    }
    std::destroy_at(block);
    ::operator delete(static_cast<void*>(block));
  }

  /// The block that every empty handle reads (see EmptyBlock).
  [[nodiscard]] static const Header& shared_empty() noexcept requires
      std::is_constructible_v<Header, SharedEmptyTag> {
    using Empty = EmptyBlock<Header, Slot>;
    if constexpr (!std::is_void_v<T>) static_assert(offsetof(Empty, first_item) == items_offset);
    return empty_block<Header, Slot>.header;
  }
};

/// The header type of a layout, found without instantiating the layout, so
/// that a handle may be declared while its record type is still incomplete.
template <class Layout>
struct LayoutHeader;
template <class Header, class T>
struct LayoutHeader<CountedBlock<Header, T>> {
  using type = Header;
};

/// One counted reference to a block of Layout (a CountedBlock), or none.
///
/// A null pointer reads as Layout's shared empty block (read()), holds no
/// reference and frees nothing; a moved-from pointer is null. Copying takes a
/// reference with one atomic increment, moving takes the reference over
/// without touching the count, and the destructor drops it, freeing the block
/// with its last reference.
/// Threads: copies may be made, used and destroyed on any threads at once; a
/// single pointer is like an int (many readers, or one writer).
template <class Layout>
class CountedPtr {
 public:
  using Header = typename LayoutHeader<Layout>::type;

  /// No block: reads the shared empty block.
  constexpr CountedPtr() noexcept = default;

  /// Takes over a new block whose count is one (from Layout::allocate).
  explicit CountedPtr(Header* adopted) noexcept : block_(adopted) {
    assert(block_ != nullptr && block_->count.is_one());
  }

  CountedPtr(const CountedPtr& other) noexcept : block_(other.block_) {
    if (block_ != nullptr) block_->count.increment();
  }
  CountedPtr(CountedPtr&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  CountedPtr& operator=(const CountedPtr& other) noexcept {
    CountedPtr(other).swap(*this);
    return *this;
  }
  CountedPtr& operator=(CountedPtr&& other) noexcept {
    CountedPtr(std::move(other)).swap(*this);
    return *this;
  }
  ~CountedPtr() {
    if (block_ != nullptr && block_->count.decrement()) Layout::destroy(block_);
  }

  void swap(CountedPtr& other) noexcept { std::swap(block_, other.block_); }

  /// The block, or null.
  [[nodiscard]] Header* get() const noexcept { return block_; }

  /// The block, or the shared empty block when there is none.
  [[nodiscard]] const Header& read() const noexcept {
    return block_ != nullptr ? *block_ : Layout::shared_empty();
  }

  /// True when this pointer holds the block's only reference, so the block
  /// may be written in place. The acquire in RefCount::is_one() orders the
  /// other holders' last reads of the block before the caller's writes.
  [[nodiscard]] bool is_sole_owner() const noexcept {
    return block_ != nullptr && block_->count.is_one();
  }

 private:
  Header* block_ = nullptr;
};

}  // namespace detail
}  // namespace krel

#endif  // KREL_DETAIL_COUNTED_BLOCK_H
