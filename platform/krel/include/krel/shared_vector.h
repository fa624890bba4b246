// krel/shared_vector.h - a copy-on-write vector whose copies share one block
//
// SharedVector<T> holds its elements in one heap block: a header {reference
// count, capacity, size} followed directly by the elements. Copying a vector
// copies one pointer and increments the count; the first change through a copy
// that shares its block gives that copy a block of its own. Value types that are
// sequences (object paths, for one) hold a SharedVector, so that passing them
// around never copies their elements.
//
//   krel::SharedVector<int> a;
//   a.push_back(1);
//   krel::SharedVector<int> b = a;  // shares a's block
//   b.push_back(2);                 // b copies first; a still holds {1}
//
// Growth: whenever a vector must hold more elements than its block has room
// for, or its block is shared, it moves to a new block whose total byte size
// (header and element slots) is the smallest power of two that fits the header
// and the elements; the capacity is as many elements as that block holds. So
// repeated appends cost amortised constant time.

#ifndef KREL_SHARED_VECTOR_H
#define KREL_SHARED_VECTOR_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

#include "krel/detail/counted_block.h"

namespace krel {

/// Ownership: a handle to a shared block of elements; copies share it and a
/// change copies the elements first when the block is shared, so no copy ever
/// sees another's changes. The empty vector, a moved-from one included, holds
/// no block and reads the shared empty block, which is never freed.
/// Threads: copies may be made, read and destroyed on any threads at once; a
/// single vector is like an int (many readers, or one writer).
/// Exceptions: every change gives the strong guarantee; if copying an element
/// throws, the vector keeps its elements, its block and its capacity.
template <class T>
class SharedVector {
  // The header of a block: its count, and how many elements it has room for
  // and holds.
  struct Header {
    constexpr explicit Header(SharedEmptyTag) noexcept : count(shared_empty_tag) {}
    explicit Header(std::size_t room) noexcept : capacity(room) {}

    RefCount<> count;
    std::size_t capacity = 0;
    std::size_t size = 0;
  };
  using Layout = detail::CountedBlock<Header, T>;
  using Block = detail::CountedPtr<Layout>;

 public:
  using value_type = T;
  using size_type = std::size_t;
  using const_iterator = const T*;
  using const_reference = const T&;

  /// The empty vector; allocates nothing.
  SharedVector() noexcept = default;

  SharedVector(std::initializer_list<T> values) {
    grow_and_append(0, values.begin(), values.size());
  }

  void swap(SharedVector& other) noexcept { block_.swap(other.block_); }

  [[nodiscard]] size_type size() const noexcept { return block_.read().size; }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  /// How many elements the block holds room for; 0 for the empty vector.
  [[nodiscard]] size_type capacity() const noexcept { return block_.read().capacity; }

  [[nodiscard]] const T* data() const noexcept { return Layout::items(&block_.read()); }
  [[nodiscard]] const_iterator begin() const noexcept { return data(); }
  [[nodiscard]] const_iterator end() const noexcept { return data() + size(); }

  /// Element i, for i < size().
  [[nodiscard]] const T& operator[](size_type i) const noexcept { return data()[i]; }
  /// Element i; throws std::out_of_range when i >= size().
  [[nodiscard]] const T& at(size_type i) const {
    if (i >= size()) throw std::out_of_range("krel::SharedVector::at");
    return data()[i];
  }
  [[nodiscard]] const T& front() const noexcept { return data()[0]; }
  [[nodiscard]] const T& back() const noexcept { return data()[size() - 1]; }

  /// Appends a copy of `value`, which may be an element of this vector.
  void push_back(const T& value) { grow_and_append(0, &value, 1); }

  /// Appends `value`, moved straight into the block when the block is this
  /// vector's own and has room (as after reserve()); otherwise exactly as the
  /// copying push_back, so growth still copies and keeps the strong guarantee.
  /// If the move throws, the vector is unchanged.
  void push_back(T&& value) {
    if (block_.is_sole_owner()) {
      Header& own = *block_.get();
      if (own.capacity > own.size) {
        std::construct_at(Layout::items(&own) + own.size, std::move(value));
        ++own.size;
        return;
      }
    }
    push_back(static_cast<const T&>(value));
  }

  /// Appends copies of other's elements; `other` may be this vector. Appending
  /// an empty vector changes nothing (not even the sharing).
  void append(const SharedVector& other) {
    if (other.empty()) return;
    grow_and_append(0, other.data(), other.size());
  }

  /// Makes the block this vector's own with room for at least n elements.
  void reserve(size_type n) { grow_and_append(n, nullptr, 0); }

  /// True when both vectors refer to one block (or both are empty and hold
  /// none).
  [[nodiscard]] bool shares_with(const SharedVector& other) const noexcept {
    return block_.get() == other.block_.get();
  }

  /// How many vectors share the block (1 for the empty vector), for tests and
  /// diagnostics; stale as soon as it is read.
  [[nodiscard]] std::size_t use_count() const noexcept { return block_.read().count.value(); }

  /// The total byte size of a block that holds the header and n elements: the
  /// smallest power of two that fits them. Throws std::length_error when no
  /// such size exists.
  [[nodiscard]] static std::size_t block_bytes(size_type n) {
    constexpr const char* too_many = "krel::SharedVector: too many elements";
    constexpr std::size_t largest_power = (std::numeric_limits<std::size_t>::max() >> 1) + 1;
    const std::size_t bytes = Layout::bytes_for(n, too_many);
    if (bytes > largest_power) throw std::length_error(too_many);
    return std::bit_ceil(bytes);
  }

  friend bool operator==(const SharedVector& a, const SharedVector& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }

 private:
  // Copies [src, src + count) into uninitialised slots at dst; if a copy
  // throws, the copies already made are destroyed and the exception passes on.
  static void copy_into(T* dst, const T* src, std::size_t count) {
    std::size_t done = 0;
    try {
      for (; done < count; ++done) std::construct_at(dst + done, src[done]);
    } catch (...) {
      for (; done != 0; --done) std::destroy_at(dst + (done - 1));
      throw;
    }
  }

  // The one place that detaches and grows. Before this vector holds `wanted`
  // (at least size() + count) elements: a block that is this vector's own and
  // has the room is used as it is; otherwise a new block of block_bytes() is
  // allocated and the existing elements are copied (never moved: the old block
  // may still be read through other copies, and copying keeps the strong
  // guarantee). Then the `count` elements at `extra` are copied to the end.
  //
  // `extra` may point into this vector's own elements: in place they are read
  // from slots below size() while the writes go above it, and otherwise the old
  // block is released only after everything has been copied.
  void grow_and_append(std::size_t wanted, const T* extra, std::size_t count) {
    const std::size_t old_size = size();
    const std::size_t n = std::max(wanted, old_size + count);
    if (n == 0 && block_.get() == nullptr) return;  // the empty vector needs no block
    if (block_.is_sole_owner() && block_.get()->capacity >= n) {
      Header& own = *block_.get();
      copy_into(Layout::items(&own) + old_size, extra, count);
      own.size = old_size + count;
      return;
    }
    const std::size_t bytes = block_bytes(n);
    // If a copy throws, `fresh` frees the block with the elements copied so
    // far, and this vector is untouched.
    Block fresh(Layout::allocate(bytes, (bytes - Layout::items_offset) / sizeof(T)));
    Header& header = *fresh.get();
    copy_into(Layout::items(&header), data(), old_size);
    header.size = old_size;
    copy_into(Layout::items(&header) + old_size, extra, count);
    header.size = old_size + count;
    block_ = std::move(fresh);
  }

  Block block_;
};

}  // namespace krel

#endif  // KREL_SHARED_VECTOR_H
