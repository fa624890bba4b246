// The parsers of object path names and subscripts, and the library's access
// to the insides of names and subscripts (private to the library's sources:
// src/object_path, and src/conversion, which builds subscripts from indices).
//
// Both work on code units in place: a name is copied once, straight into the
// block it is stored in, with its white space cleaned on the way; a subscript's
// values are read digit by digit from the UTF-16 text into a small buffer on
// the stack. The path parsers call them on segments of a longer text, so
// nothing here needs a string of its own.

#ifndef UI_CORE_SRC_OBJECT_PATH_OBJECT_PATH_IMPL_H
#define UI_CORE_SRC_OBJECT_PATH_OBJECT_PATH_IMPL_H

#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "krel/table_string.h"
#include "slash_runs_impl.h"
#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"

namespace ui::core::detail {

/// What the library needs of a subscript beyond its public interface: the
/// record for the hash cache, write access for strip_annotation_inplace, and
/// a subscript made straight from values that the caller has checked.
struct ObjectPathSubscriptAccess {
  static const ObjectPathSubscriptRep& read(const ObjectPathSubscript& s) noexcept {
    return s.rep_.read();
  }
  // Makes the subscript sole owner of its record first (Cow::write() is the
  // only place that detaches).
  static ObjectPathSubscriptRep& write(ObjectPathSubscript& s) { return s.rep_.write(); }
  // The caller guarantees that no value is 0.
  static ObjectPathSubscript adopt(std::size_t count, const unsigned long* values,
                                   std::size_t stored) {
    return ObjectPathSubscript(krel::Cow<ObjectPathSubscriptRep>::make(count, values, stored));
  }
};

/// A name made from text that the name rule has already passed.
struct ObjectPathNameAccess {
  static ObjectPathName adopt(krel::BasicTableString<char16_t> text) noexcept {
    return ObjectPathName(ObjectPathName::Checked{}, std::move(text));
  }
};

/// An ASCII decimal digit, and its value.
[[nodiscard]] constexpr bool is_digit(char16_t c) noexcept {
  return static_cast<unsigned>(c) - u'0' <= 9u;
}
[[nodiscard]] constexpr unsigned long digit_value(char16_t c) noexcept {
  return static_cast<unsigned>(c) - u'0';
}

/// The name rule (see ui/core/object_path_name.h) on [p, p + n): not empty,
/// no "/" at either end, and every run of "/" inside made of escaped pairs.
[[nodiscard]] inline bool meets_name_rule(const char16_t* p, std::size_t n) noexcept {
  if (n == 0 || p[0] == u'/' || p[n - 1] == u'/') return false;
  SlashRuns runs(p, p + n);
  while (const std::optional<SlashRun> run = runs.next()) {
    if (run->is_odd()) return false;
  }
  return true;
}

/// The stored text of the name [p, p + n), which must meet the name rule: one
/// block, written once, white space cleaned in the same copy.
[[nodiscard]] inline krel::BasicTableString<char16_t> cleaned_name_text(const char16_t* p,
                                                                        std::size_t n) {
  return krel::BasicTableString<char16_t>::filled(
      n, [p, n](char16_t* out) noexcept { copy_cleaned(p, n, out); });
}

/// The name of [p, p + n), which must meet the name rule.
[[nodiscard]] inline ObjectPathName make_checked_name(const char16_t* p, std::size_t n) {
  return ObjectPathNameAccess::adopt(cleaned_name_text(p, n));
}

/// The values of a subscript as they are read: the first ones in place, and
/// all of them on the heap only when a text holds more than fit.
class SubscriptValues {
 public:
  SubscriptValues() noexcept {}  // the buffer stays uninitialised
  SubscriptValues(const SubscriptValues&) = delete;
  SubscriptValues& operator=(const SubscriptValues&) = delete;

  void push_back(unsigned long value) {
    if (size_ < local_capacity) {
      local_[size_++] = value;
      return;
    }
    if (size_ == local_capacity) heap_.assign(local_, local_ + local_capacity);
    heap_.push_back(value);
    ++size_;
  }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] const unsigned long* data() const noexcept {
    return size_ <= local_capacity ? local_ : heap_.data();
  }

 private:
  static constexpr std::size_t local_capacity = 16;
  unsigned long local_[local_capacity];
  std::size_t size_ = 0;
  std::vector<unsigned long> heap_;
};

/// Reads the subscript text [p, p + n) into `values`; false when it does not
/// parse. The grammar is the one in ui/core/object_path_subscript.h: "//",
/// then pieces separated by ",", each white space, digits and white space, each value
/// from 1 to 2^64 - 1 with any number of leading zeros. Only ASCII code units
/// can be blanks, digits or commas, so any other code unit refuses the text.
[[nodiscard]] inline bool parse_subscript_values(const char16_t* p, std::size_t n,
                                                 SubscriptValues& values) {
  if (n < 2 || p[0] != u'/' || p[1] != u'/') return false;
  // Past this bound, value * 10 no longer fits in 64 bits.
  constexpr unsigned long bound = std::numeric_limits<unsigned long>::max() / 10;
  constexpr unsigned long max = std::numeric_limits<unsigned long>::max();
  const char16_t* const end = p + n;
  p += 2;
  for (;;) {
    while (p != end && is_space_unit(*p)) ++p;
    const char16_t* const digits = p;
    while (p != end && is_digit(*p)) ++p;
    // An empty piece, or one that does not start with a digit.
    if (p == digits) return false;
    unsigned long value = 0;
    if (p - digits <= 19) {
      // Nineteen decimal digits always fit in 64 bits.
      for (const char16_t* d = digits; d != p; ++d) value = value * 10 + digit_value(*d);
    } else {
      for (const char16_t* d = digits; d != p; ++d) {
        const unsigned long digit = digit_value(*d);
        if (value > bound || value * 10 > max - digit) return false;
        value = value * 10 + digit;
      }
    }
    while (p != end && is_space_unit(*p)) ++p;
    if (value == 0) return false;  // subscripts are 1-based
    values.push_back(value);
    if (p == end) return true;
    if (*p != u',') return false;
    ++p;
  }
}

/// The subscript of the text [p, p + n), or nothing when it does not parse.
[[nodiscard]] inline std::optional<ObjectPathSubscript> parse_subscript(const char16_t* p,
                                                                        std::size_t n) {
  SubscriptValues values;
  if (!parse_subscript_values(p, n, values)) return std::nullopt;
  return ObjectPathSubscriptAccess::adopt(values.size(), values.data(), values.size());
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_OBJECT_PATH_OBJECT_PATH_IMPL_H
