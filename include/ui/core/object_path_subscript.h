/// \file ui/core/object_path_subscript.h
/// The array subscripts of object paths.
///
/// An ObjectPathSubscript picks one element of an array-valued object by its
/// 1-based subscripts, one per dimension, as a user writes them. In path text it
/// is two slashes followed by the values, separated by a comma and a blank:
/// "//2, 3". The text grammar the parser accepts (ASCII only):
///
/// ```
/// subscript := "//" piece ( "," piece )*
/// piece     := blank* digits blank*     (blank: space, \t, \n, \v, \f, \r)
/// digits    := one or more of 0-9, a value from 1 to 18446744073709551615
/// ```
///
/// Leading zeros are allowed ("//007" is 7); an empty piece, a sign, a blank
/// inside the digits, a zero value and a value past 64 bits are refused.
///
/// ```
/// ui::core::ObjectPathSubscript s(u"//2,3");
/// s.size();               // 2
/// s(1);                   // 3
/// s(5);                   // 1: positions past the stored ones read as 1
/// ui::core::ustring(s);   // u"//2, 3"
/// ui::core::ObjectPathSubscript::make(u"//0");  // std::nullopt: 1-based
/// ```

#ifndef UI_CORE_OBJECT_PATH_SUBSCRIPT_H
#define UI_CORE_OBJECT_PATH_SUBSCRIPT_H

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <utility>
#include <vector>

#include "krel/array_size.h"
#include "krel/cow.h"
#include "ui/core/detail/object_path_subscript_rep.h"
#include "ui/core/errors.h"

namespace ui::core {

namespace detail {

struct ObjectPathSubscriptAccess;
struct ObjectPathSubscriptHashCache;

}  // namespace detail

/// A list of 1-based array subscripts; see the top of this file for its text.
///
/// Invariant: the product of the values is never 0, so no value is 0. The
/// count (size()) is kept apart from the values because the values may hold
/// more positions than were written; the count is what the text and vector
/// forms show. Equality and the hash are those of an element holding the
/// subscript, and compare the counts; the ordering lives with
/// ObjectPathElement (compare).
/// Ownership: a handle to a shared, immutable record; copying shares it. A
/// moved-from subscript holds no record: only destruction and assignment are
/// allowed on it.
/// Threads: copies may be made, used and destroyed on any threads at once; a
/// single subscript is like an int (many readers, or one writer).
class ObjectPathSubscript {
 public:
  /// The subscript //1: count 1, values (1, 1).
  ObjectPathSubscript();

  /// Stores the count and the values as given; the count is not checked
  /// against the number of values. Throws InvalidObjectPathSubscript (no
  /// arguments) when the product of the values is 0.
  ObjectPathSubscript(unsigned long count, krel::ArraySize subscripts);

  /// Count = the number of values; throws InvalidObjectPathSubscript when a
  /// value is 0.
  explicit ObjectPathSubscript(const std::vector<unsigned long>& values);

  /// The same from a braced list, ObjectPathSubscript({2, 3}). Without it such
  /// a list could become either a vector of values or a text, and the call
  /// would not compile.
  explicit ObjectPathSubscript(std::initializer_list<unsigned long> values)
      : ObjectPathSubscript(std::vector<unsigned long>(values)) {}

  /// Parses the text form; throws InvalidObjectPathSubscriptString with the
  /// text when it does not parse.
  explicit ObjectPathSubscript(const ustring& text);

  /// The same as the text constructor, but an empty optional for a text that
  /// does not parse. Accepts exactly the texts the constructor accepts.
  [[nodiscard]] static std::optional<ObjectPathSubscript> make(const ustring& text);

  /// How many subscripts were written.
  [[nodiscard]] std::size_t size() const noexcept { return rep_.read().size; }

  /// The value at 0-based position k; 1 at or past the stored positions.
  [[nodiscard]] unsigned long operator()(unsigned long k) const noexcept {
    return rep_.read().subscripts(k);
  }

  /// The values as stored, including positions past the count, if any.
  [[nodiscard]] const krel::ArraySize& subscripts() const noexcept {
    return rep_.read().subscripts;
  }

  /// The first size() values.
  operator std::vector<unsigned long>() const;

  /// The text form: "//" and the first size() values in decimal, joined by
  /// ", " ("//2, 3"); a count of 0 gives "//".
  operator ustring() const;

  /// True when the values are equal, reading 1 past the stored positions; the
  /// counts are not compared, so //5 is equivalent to //5, 1.
  [[nodiscard]] bool equivalent(const ObjectPathSubscript& other) const noexcept;

  /// True when both refer to one record.
  [[nodiscard]] bool shares_record_with(const ObjectPathSubscript& other) const noexcept {
    return rep_.shares_with(other.rep_);
  }

  /// Equal counts and equal values (reading 1 past the stored positions): the
  /// equality of elements holding the subscripts. Unlike equivalent(), //5 and
  /// //5, 1 differ.
  friend bool operator==(const ObjectPathSubscript& a, const ObjectPathSubscript& b) noexcept {
    return a.shares_record_with(b) || (a.size() == b.size() && a.subscripts() == b.subscripts());
  }

 private:
  friend struct detail::ObjectPathSubscriptAccess;
  friend struct detail::ObjectPathSubscriptHashCache;

  // Takes over a record that the library has already built and checked.
  explicit ObjectPathSubscript(krel::Cow<detail::ObjectPathSubscriptRep> rep) noexcept
      : rep_(std::move(rep)) {}

  [[nodiscard]] bool is_valid() const noexcept;

  krel::Cow<detail::ObjectPathSubscriptRep> rep_;
};

/// The hash of an element holding the subscript (see hash_value of
/// ObjectPathElement), cached in the record like the element's; consistent
/// with `==`. Also what boost::hash finds.
[[nodiscard]] std::size_t hash_value(const ObjectPathSubscript& subscript) noexcept;

/// Writes the text form in the local encoding.
std::ostream& operator<<(std::ostream& os, const ObjectPathSubscript& subscript);

}  // namespace ui::core

/// Lets subscripts key unordered containers, with the hash of hash_value.
template <>
struct std::hash<ui::core::ObjectPathSubscript> {
  /// ui::core::hash_value(subscript).
  std::size_t operator()(const ui::core::ObjectPathSubscript& subscript) const noexcept {
    return ui::core::hash_value(subscript);
  }
};

#endif  // UI_CORE_OBJECT_PATH_SUBSCRIPT_H
