/// \file ui/core/object_path_name.h
/// The named steps of object paths.
///
/// An ObjectPathName names one step inside a block's object tree, such as a
/// parameter or a field of one. A "/" that belongs to the name is written
/// doubled ("//") and stays doubled in the stored text, since "/" alone
/// separates the steps of an object path. The name rule, on the UTF-16 code
/// units of the text:
///
/// ```
/// name := not empty, first and last code unit not "/", and every maximal run
///         of "/" of even length
/// ```
///
/// Any other code unit is allowed (letters, digits, blanks, punctuation,
/// non-ASCII text, lone surrogates) and there is no length limit. A text that
/// meets the rule is stored with each POSIX white-space code unit (space,
/// `\t`, `\n`, `\v`, `\f`, `\r`) replaced by a space, one for one.
///
/// ```
/// ui::core::ObjectPathName gain(u"Gain");
/// ui::core::ObjectPathName::make(u"a//b");   // a name holding an escaped "/"
/// ui::core::ObjectPathName::make(u"a/b");    // std::nullopt: a lone "/"
/// ui::core::ObjectPathName bad(u"a/");       // throws InvalidObjectPathName
/// ```

#ifndef UI_CORE_OBJECT_PATH_NAME_H
#define UI_CORE_OBJECT_PATH_NAME_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <utility>

#include "krel/table_string.h"
#include "ui/core/errors.h"

namespace ui::core {

namespace detail {

struct ObjectPathNameAccess;

/// Validates and cleans the text of an object path name. Stateless.
struct ObjectPathNameCheck {
  /// The text with its white space cleaned, as the name stores it. Throws
  /// krel::MessageException with InvalidObjectPathName and the text exactly as
  /// given (before cleaning) when it breaks the name rule.
  [[nodiscard]] krel::BasicTableString<char16_t> operator()(const ustring& text) const;
};

}  // namespace detail

/// One named step of an object path; see the top of this file for the rule.
///
/// Invariant (of every name not moved from): the text is never empty and always
/// meets the name rule, already cleaned; every ObjectPathName that exists has
/// passed ObjectPathNameCheck or the path parsers, which apply the same rule to
/// each segment they cut.
/// Ownership: holds a krel::BasicTableString, so copies share the text, which
/// never changes. A move hands the text over; the moved-from name reads as the
/// empty text until it is assigned to. Threads: an immutable value; copies may
/// be used on any threads at once.
class ObjectPathName {
 public:
  /// The name of `text` after checking and cleaning; throws
  /// InvalidObjectPathName when the text breaks the name rule.
  explicit ObjectPathName(const ustring& text);

  /// The same as the constructor, but an empty optional for a text that breaks
  /// the name rule. Accepts exactly the texts the constructor accepts.
  [[nodiscard]] static std::optional<ObjectPathName> make(const ustring& text);

  /// The stored, cleaned text.
  [[nodiscard]] const krel::BasicTableString<char16_t>& text() const noexcept { return text_; }

  /// The stored text read as a string of code units (first code unit, count,
  /// and the range), without reaching for text().
  /// @{
  [[nodiscard]] const char16_t* data() const noexcept { return text_.data(); }
  [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }
  [[nodiscard]] const char16_t* begin() const noexcept { return text_.begin(); }
  [[nodiscard]] const char16_t* end() const noexcept { return text_.end(); }
  /// @}

  /// A copy of the stored text, so that `ustring text = name;` reads it the
  /// way a subscript's text form is read.
  operator ustring() const { return ustring(text_); }

  /// Equal when the stored texts hold the same code units; the same answer as
  /// equality of the elements that hold the names.
  friend bool operator==(const ObjectPathName& a, const ObjectPathName& b) noexcept {
    return a.text_.compare_(b.text_) == 0;
  }

 private:
  friend struct detail::ObjectPathNameAccess;

  // Takes over text that the library's parsers have already checked and
  // cleaned, so that it is neither checked nor copied again.
  struct Checked {};
  ObjectPathName(Checked, krel::BasicTableString<char16_t> text) noexcept
      : text_(std::move(text)) {}

  [[nodiscard]] bool is_valid() const noexcept;

  krel::BasicTableString<char16_t> text_;
};

/// The hash of an element holding the name (see hash_value of
/// ObjectPathElement), so a name hashes as its element does; consistent with
/// `==`. Also what boost::hash finds.
[[nodiscard]] std::size_t hash_value(const ObjectPathName& name) noexcept;

/// Writes the text as UTF-8, whatever the locale. Subscripts, elements and
/// paths write the locale's encoding instead; that a name alone is written as
/// UTF-8 is deliberate, and callers that print names rely on it.
std::ostream& operator<<(std::ostream& os, const ObjectPathName& name);

}  // namespace ui::core

/// Lets names key unordered containers, with the hash of hash_value.
template <>
struct std::hash<ui::core::ObjectPathName> {
  /// ui::core::hash_value(name).
  std::size_t operator()(const ui::core::ObjectPathName& name) const noexcept {
    return ui::core::hash_value(name);
  }
};

#endif  // UI_CORE_OBJECT_PATH_NAME_H
