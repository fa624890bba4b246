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
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "krel/detail/counted_block.h"

namespace krel {

/// Ownership: a handle to an immutable, shared block of text; copies share it
/// and a copy is safe to keep. The empty text, a moved-from one included,
/// holds no block. Threads: copies may be used and destroyed on any threads at
/// once.
template <class CharT>
class BasicTableString {
  static_assert(std::is_trivially_copyable_v<CharT>);

  // The header of a block: its count and the number of code units, which are
  // followed by a terminator.
  struct Header {
    constexpr explicit Header(SharedEmptyTag) noexcept : count(shared_empty_tag) {}
    explicit Header(std::size_t units) noexcept : size(units) {}

    RefCount<> count;
    std::size_t size = 0;
  };
  using Layout = detail::CountedBlock<Header, CharT>;
  using Block = detail::CountedPtr<Layout>;

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
      : block_(size == 0 ? Block() : copy_of(data, size)) {}

  /// A text of `size` code units that `fill(CharT* out)` writes straight into
  /// the new block, exactly `size` of them, so that a text transformed on its
  /// way in (such as a name whose white space is cleaned) is copied only once.
  /// `fill` must not throw; it is not called when `size` is 0.
  template <class Fill>
  [[nodiscard]] static BasicTableString filled(std::size_t size, Fill&& fill) {
    BasicTableString text;
    if (size != 0) {
      text.block_ = allocate(size);
      fill(Layout::items(text.block_.get()));
    }
    return text;
  }

  [[nodiscard]] const CharT* data() const noexcept { return Layout::items(&block_.read()); }
  [[nodiscard]] std::size_t size() const noexcept { return block_.read().size; }
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
    return block_.get() == other.block_.get();
  }

  friend bool operator==(const BasicTableString& a, const BasicTableString& b) noexcept {
    return a.shares_with(b) || a.view() == b.view();
  }

 private:
  // A block for `size` code units and the terminator, which is written; the
  // code units are left for the caller to write. A size of SIZE_MAX, whose
  // terminator would wrap the count to 0, goes to the size check unchanged,
  // which refuses it.
  static Block allocate(std::size_t size) {
    const std::size_t slots = size == std::numeric_limits<std::size_t>::max() ? size : size + 1;
    Block block(Layout::allocate(Layout::bytes_for(slots, "krel::BasicTableString"), size));
    Layout::items(block.get())[size] = CharT{};
    return block;
  }
  static Block copy_of(const CharT* data, std::size_t size) {
    Block block = allocate(size);
    std::memcpy(Layout::items(block.get()), data, size * sizeof(CharT));
    return block;
  }

  Block block_;
};

using TableString = BasicTableString<char16_t>;

}  // namespace krel

#endif  // KREL_TABLE_STRING_H
