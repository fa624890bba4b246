/// \file ui/core/indexing.h
/// Array subscripts to linear indices and back.
///
/// A user picks one element of an array by 1-based subscripts, one per
/// dimension, written as an ObjectPathSubscript such as //2, 3. The modelling
/// language picks the same element by a 0-based linear index carried together
/// with the array's size, a lang::core::PathElementIndex. Storage is
/// column-major (the first subscript varies fastest), so the 0-based index of
/// subscripts s0, s1, ... into dimensions d0, d1, ... is
///
/// ```
/// (s0 - 1) + (s1 - 1)*d0 + (s2 - 1)*d0*d1 + ...
/// ```
///
/// ```
/// krel::ArraySize size{3, 4};
/// ui::core::sub_to_ind(ui::core::ObjectPathSubscript(u"//2, 3"), size).index();  // 7
/// ui::core::ind_to_sub(lang::core::PathElementIndex(7, size));  // //2, 3
/// ui::core::sub_to_maybe_ind(ui::core::ObjectPathSubscript(u"//4, 1"), size);  // empty: 4 > 3
/// ```

#ifndef UI_CORE_INDEXING_H
#define UI_CORE_INDEXING_H

#include <cstddef>
#include <optional>

#include "krel/array_size.h"
#include "lang/core/path_element.h"
#include "ui/core/object_path_subscript.h"

namespace ui::core {

namespace detail {

/// Checks that an array of `size` holds exactly `n` elements and returns the
/// size unchanged; throws InvalidArrayArguments (n, the size's text) otherwise.
/// Nothing but the element count is tested.
krel::ArraySize check_array(krel::ArraySize size, std::size_t n);

}  // namespace detail

/// The 0-based column-major index of `sub` in an array of `size`, carried with
/// the size unchanged. The rules, tested in this order:
///  - Count: one subscript per dimension is needed, except that a column
///    vector (two dimensions, the second of length 1) needs only one. A row
///    vector (first dimension of length 1) still needs two. Too few throws
///    InsufficientSubscriptDimensions (the subscript's text, the size's text).
///  - Range: each of the first D subscripts (D = the number of dimensions) must
///    not exceed its dimension; the first one that does throws
///    SubscriptOutOfRange (the subscript's text, the size's text). Subscripts
///    are never 0, so there is no lower bound to test.
/// Subscripts past the D-th are ignored, whatever their values, and a
/// subscript that was not written reads as 1. A size with no dimensions names
/// no element that a subscript could pick and is refused as out of range. The
/// arithmetic is unsigned and wraps like size_t; it cannot overflow for a
/// subscript that passed the range test of an array whose element count fits
/// in size_t.
[[nodiscard]] lang::core::PathElementIndex sub_to_ind(ObjectPathSubscript sub,
                                                      krel::ArraySize size);

/// The non-throwing twin of sub_to_ind: empty exactly where sub_to_ind throws,
/// the same index everywhere else.
[[nodiscard]] std::optional<lang::core::PathElementIndex> sub_to_maybe_ind(ObjectPathSubscript sub,
                                                                           krel::ArraySize size);

/// The 1-based subscripts of a linear index: always one per dimension of the
/// index's size (trailing ones included, so index 3 of 5x1 gives //4, 1), each
/// found as quotient and remainder by the column-major strides from the last
/// dimension down. The index is not checked against the size: the last
/// dimension is not bounded, so an index at or past the element count gives a
/// last subscript beyond the last dimension (index 12 of 3x4 gives //1, 5),
/// which sub_to_ind then refuses as out of range.
/// A dimension that follows a zero-length one has the stride 0 (as has one
/// whose stride wraps past size_t); it is skipped and keeps the subscript 1,
/// and what is left of the index goes to the dimensions before it. The array
/// then has no elements, and the result is out of range for it like any other
/// index past the end. A size with no dimensions gives the subscript with no
/// values (text //).
/// No message of its own; the one subscript value that does not fit in 64
/// bits, 2^64 (the largest index into dimensions whose leading product is 1),
/// wraps to 0, which ObjectPathSubscript refuses with InvalidObjectPathSubscript.
[[nodiscard]] ObjectPathSubscript ind_to_sub(const lang::core::PathElementIndex& index);

}  // namespace ui::core

#endif  // UI_CORE_INDEXING_H
