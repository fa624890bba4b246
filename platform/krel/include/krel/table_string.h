// krel/table_string.h - immutable, shared strings
//
// A BasicTableString holds text that never changes after construction. Copies
// share one reference-counted block, so passing names around costs one atomic
// increment. BasicTableString<char16_t> holds UTF-16 names; BasicTableString<char>
// holds narrow identifiers.
//
//   krel::BasicTableString<char16_t> name(u"Gain");
//   auto copy = name;                      // shares the block
//   std::u16string text = copy;            // u"Gain"

#ifndef KREL_TABLE_STRING_H
#define KREL_TABLE_STRING_H

#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "krel/cow.h"

namespace krel {

/// Ownership: a handle to an immutable, shared block of text; copies share it
/// and a copy is safe to keep. Threads: copies may be used and destroyed on any
/// threads at once.
template <class CharT>
class BasicTableString {
  static_assert(std::is_trivially_copyable_v<CharT>);

 public:
  using value_type = CharT;
  using const_iterator = const CharT*;

  /// The empty text.
  BasicTableString() noexcept = default;
  BasicTableString(const std::basic_string<CharT>& text)
      : BasicTableString(text.data(), text.size()) {}
  explicit BasicTableString(std::basic_string_view<CharT> text)
      : BasicTableString(text.data(), text.size()) {}
  BasicTableString(const CharT* data, std::size_t size)
      : block_(size == 0 ? nullptr : allocate(data, size)) {}

  /// A text of `size` code units that `fill(CharT* out)` writes straight into
  /// the new block, exactly `size` of them, so that a text transformed on its
  /// way in (such as a name whose white space is cleaned) is copied only once.
  /// `fill` must not throw; it is not called when `size` is 0.
  template <class Fill>
  [[nodiscard]] static BasicTableString filled(std::size_t size, Fill&& fill) {
    BasicTableString text;
    if (size != 0) {
      Block* block = allocate_block(size);
      fill(chars(block));
      text.block_ = block;
    }
    return text;
  }

  BasicTableString(const BasicTableString& other) noexcept : block_(other.block_) {
    if (block_ != nullptr) block_->count.increment();
  }
  BasicTableString(BasicTableString&& other) noexcept : block_(other.block_) {
    other.block_ = nullptr;
  }
  BasicTableString& operator=(BasicTableString other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~BasicTableString() {
    if (block_ != nullptr && block_->count.decrement()) deallocate(block_);
  }

  [[nodiscard]] const CharT* data() const noexcept {
    return block_ != nullptr ? chars(block_) : empty_chars();
  }
  [[nodiscard]] std::size_t size() const noexcept { return block_ != nullptr ? block_->size : 0; }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  [[nodiscard]] const_iterator begin() const noexcept { return data(); }
  [[nodiscard]] const_iterator end() const noexcept { return data() + size(); }

  /// Negative, 0 or positive: lexicographic by unsigned code unit, a prefix first.
  [[nodiscard]] int compare_(const BasicTableString& other) const noexcept {
    return view().compare(other.view()) < 0 ? -1 : (view() == other.view() ? 0 : 1);
  }

  [[nodiscard]] std::basic_string_view<CharT> view() const noexcept { return {data(), size()}; }
  operator std::basic_string<CharT>() const { return std::basic_string<CharT>(data(), size()); }

  /// True when both share one block (or both are empty).
  [[nodiscard]] bool shares_with(const BasicTableString& other) const noexcept {
    return block_ == other.block_;
  }

  friend bool operator==(const BasicTableString& a, const BasicTableString& b) noexcept {
    return a.block_ == b.block_ || a.view() == b.view();
  }

 private:
  struct Block {
    RefCount<> count;
    std::size_t size;
  };
  static constexpr std::size_t chars_offset =
      (sizeof(Block) + alignof(CharT) - 1) / alignof(CharT) * alignof(CharT);

  static CharT* chars(Block* block) noexcept {
    return reinterpret_cast<CharT*>(reinterpret_cast<unsigned char*>(block) + chars_offset);
  }
  static const CharT* empty_chars() noexcept {
    static constexpr CharT nothing[1] = {};
    return nothing;
  }
  // A block for `size` code units and the terminator, which is written; the
  // code units are left for the caller to write.
  static Block* allocate_block(std::size_t size) {
    if (size > (static_cast<std::size_t>(-1) - chars_offset) / sizeof(CharT) - 1) {
      throw std::length_error("krel::BasicTableString");
    }
    void* raw = ::operator new(chars_offset + (size + 1) * sizeof(CharT));
    Block* block = ::new (raw) Block{RefCount<>{}, size};
    chars(block)[size] = CharT{};
    return block;
  }
  static Block* allocate(const CharT* data, std::size_t size) {
    Block* block = allocate_block(size);
    std::memcpy(chars(block), data, size * sizeof(CharT));
    return block;
  }
  static void deallocate(Block* block) noexcept {
    block->~Block();
    ::operator delete(static_cast<void*>(block));
  }

  Block* block_ = nullptr;
};

using TableString = BasicTableString<char16_t>;

}  // namespace krel

#endif  // KREL_TABLE_STRING_H
