// units2/core/unit_id.h - the names of units
//
// A UnitId is the name under which the unit database lists a unit: "m", "kg",
// "degC", "deltadegC", or a prefixed form such as "km". A unit name is ASCII:
// a letter or "_" followed by letters, digits and "_". detail::CheckUnitId
// checks that spelling (not whether the database knows the unit) and is the
// one gate through which outside text becomes a UnitId:
//
//   std::string text = units2::core::detail::CheckUnitId()("degC");  // "degC"
//   units2::core::UnitId id(text.data(), text.size());
//   units2::core::detail::CheckUnitId()("deg C");  // throws units2:core:InvalidUnitId

#ifndef UNITS2_CORE_UNIT_ID_H
#define UNITS2_CORE_UNIT_ID_H

#include <compare>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "krel/table_string.h"

namespace units2::core {

namespace detail {

/// True when `text` is spelled like a unit name: non-empty, ASCII, a letter or
/// "_" first, then letters, digits and "_".
[[nodiscard]] bool is_unit_id_text(std::string_view text) noexcept;

/// Check object of UnitId. Returns the text unchanged when it is spelled like
/// a unit name; otherwise throws krel::MessageException units2:core:InvalidUnitId
/// with the text as its argument. Whether a unit of that name exists is the
/// business of a Context, not of this check.
struct CheckUnitId {
  std::string operator()(const std::string& text) const;
};

}  // namespace detail

/// The name of a unit.
///
/// Invariant: the text is spelled like a unit name (detail::is_unit_id_text).
/// The constructors take text that has already passed detail::CheckUnitId (or
/// came from a parsed expression) and assert it; `make` checks outside text.
/// Ownership: a handle to shared, immutable text; copies share it and are safe
/// to keep. Threads: copies may be used and destroyed on any threads at once.
class UnitId {
 public:
  UnitId(const char* data, std::size_t size);
  explicit UnitId(std::string_view text) : UnitId(text.data(), text.size()) {}

  /// The id when `text` is spelled like a unit name, otherwise nothing.
  [[nodiscard]] static std::optional<UnitId> make(std::string_view text);

  [[nodiscard]] const char* data() const noexcept { return text_.data(); }
  [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }
  [[nodiscard]] std::string_view view() const noexcept { return text_.view(); }
  [[nodiscard]] std::string str() const { return std::string(view()); }

  friend bool operator==(const UnitId& a, const UnitId& b) noexcept { return a.text_ == b.text_; }
  /// Byte order of the text: the order in which canonical expressions list units.
  friend std::strong_ordering operator<=>(const UnitId& a, const UnitId& b) noexcept {
    return a.view() <=> b.view();
  }

 private:
  [[nodiscard]] bool invariant() const noexcept;

  krel::BasicTableString<char> text_;
};

/// Hash of the text; equal ids hash equal (for boost::hash and unordered maps).
[[nodiscard]] std::size_t hash_value(const UnitId& id) noexcept;

}  // namespace units2::core

#endif  // UNITS2_CORE_UNIT_ID_H
