// krel/array_size.h - the dimensions of an array
//
// An ArraySize lists the length of each dimension of an array, first dimension
// first. Dimensions at or past the stored ones read as 1, so {5}, {5, 1} and
// {5, 1, 1} describe the same array and compare and hash equal.
//
//   krel::ArraySize size{2, 3};
//   size(1);                      // 3
//   size(7);                      // 1
//   size.numElements();           // 6
//   krel::to_user_string(size);   // u"2x3"

#ifndef KREL_ARRAY_SIZE_H
#define KREL_ARRAY_SIZE_H

#include <concepts>
#include <cstddef>
#include <initializer_list>

#include <boost/container/small_vector.hpp>

#include "krel/ustring.h"

namespace krel {

/// Ownership: a plain value; up to four dimensions are held without touching
/// the heap. Threads: like an int.
class ArraySize {
 public:
  /// No stored dimensions: a 1x1 array.
  ArraySize() = default;
  ArraySize(const std::size_t* values, std::size_t count) : dims_(values, values + count) {}
  ArraySize(std::initializer_list<std::size_t> values) : dims_(values.begin(), values.end()) {}
  /// Rows by columns. A template over the integer types, so that a literal 0
  /// for the rows, ArraySize(0, 3), is not taken for the null pointer of the
  /// constructor from values and a count.
  template <std::integral Rows, std::integral Cols>
  ArraySize(Rows rows, Cols cols)
      : dims_{static_cast<std::size_t>(rows), static_cast<std::size_t>(cols)} {}

  // Copies and moves are defined in the library rather than inline: inlined
  // into callers, the moves of Boost's small_vector make g++ 12 warn about
  // an impossible read (-Wstringop-overread, a false positive).
  ArraySize(const ArraySize& other);
  ArraySize(ArraySize&& other) noexcept;
  ArraySize& operator=(const ArraySize& other);
  ArraySize& operator=(ArraySize&& other) noexcept;
  ~ArraySize();

  /// The number of stored dimensions.
  [[nodiscard]] std::size_t size() const noexcept { return dims_.size(); }

  /// The length of dimension k (0-based); 1 for any k at or past size().
  [[nodiscard]] std::size_t operator()(std::size_t k) const noexcept {
    return k < dims_.size() ? dims_[k] : 1;
  }

  /// The product of the stored dimensions (1 when none are stored). A product
  /// that does not fit in size_t reads as the largest size_t, so the result is
  /// 0 exactly when some dimension is 0.
  [[nodiscard]] std::size_t numElements() const noexcept;

  [[nodiscard]] const std::size_t* data() const noexcept { return dims_.data(); }
  [[nodiscard]] const std::size_t* begin() const noexcept { return dims_.data(); }
  [[nodiscard]] const std::size_t* end() const noexcept { return dims_.data() + dims_.size(); }

 private:
  boost::container::small_vector<std::size_t, 4> dims_;
};

/// Equal when every position agrees, reading 1 past the stored dimensions.
[[nodiscard]] bool operator==(const ArraySize& a, const ArraySize& b) noexcept;

/// 0 equal, 1 a before b, 2 a after b: position by position over the longer of
/// the two, reading 1 past the stored dimensions. Consistent with operator==.
[[nodiscard]] int compare(const ArraySize& a, const ArraySize& b) noexcept;

/// Equal sizes hash equal (trailing ones do not contribute).
[[nodiscard]] std::size_t hash_value(const ArraySize& size) noexcept;

/// Dimensions joined by 'x', such as u"2x3"; no stored dimensions give u"1x1".
[[nodiscard]] ustring to_user_string(const ArraySize& size);

}  // namespace krel

#endif  // KREL_ARRAY_SIZE_H
