/// \file ui/core/object_path_element.h
/// One step of an object path: a name or a subscript.
///
/// An ObjectPathElement holds either an ObjectPathSubscript (kind 0) or an
/// ObjectPathName (kind 1). Elements are values with a total order across both
/// kinds (every subscript before every name), equality, a 64-bit hash, a byte
/// feed for digests and a text form. make_element() turns one segment of object
/// path text into an element:
///
/// ```
/// auto gain = ui::core::make_element(u"Gain");   // a name, kind 1
/// auto sub = ui::core::make_element(u"//2, 3");  // a subscript, kind 0
/// ui::core::make_element(u"//0");                // std::nullopt
/// ui::core::compare(*sub, *gain);                // 1: subscripts sort first
/// ```
///
/// The digest byte stream (incorporate_data), every integer big-endian, one sink
/// call per item:
///
/// ```
/// kind index                8 bytes
/// name:      each code unit  2 bytes
/// subscript: count           8 bytes
///            stored positions of the values (krel::ArraySize::size())  8 bytes
///            each stored value, first to last                          8 bytes
/// ```

#ifndef UI_CORE_OBJECT_PATH_ELEMENT_H
#define UI_CORE_OBJECT_PATH_ELEMENT_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <utility>

#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"

namespace ui::core {

namespace detail {
struct ObjectPathElementAccess;
}

/// A name or a subscript. The value is stored first, then the kind index (an
/// unsigned machine word): 0 subscript, 1 name.
///
/// An element whose kind index is neither 0 nor 1 is broken: copying or moving
/// it throws std::logic_error("bad visit"), and every operation that looks
/// inside it throws std::logic_error("invalid visit"). No operation of the
/// library makes one.
/// Ownership: a value; a subscript element shares the subscript's record and a
/// name element shares the name's text.
/// Threads: copies may be used and destroyed on any threads at once; a single
/// element is like an int (many readers, or one writer).
class ObjectPathElement {
 public:
  /// The default subscript //1, kind 0.
  ObjectPathElement();
  /// Kind 0; takes the subscript over.
  ObjectPathElement(ObjectPathSubscript subscript) noexcept : kind_(subscript_kind) {
    std::construct_at(&storage_.subscript, std::move(subscript));
  }
  /// Kind 1; takes the name over.
  ObjectPathElement(ObjectPathName name) noexcept : kind_(name_kind) {
    std::construct_at(&storage_.name, std::move(name));
  }

  // Copies, moves and destruction are inline: paths copy and destroy their
  // elements in bulk, and each of these is one reference count change.
  /// Copies or moves the value and its kind. Throws
  /// std::logic_error("bad visit") when `other` is broken.
  /// @{
  ObjectPathElement(const ObjectPathElement& other) : kind_(other.kind_) {
    if (kind_ == name_kind) {
      std::construct_at(&storage_.name, other.storage_.name);
    } else if (kind_ == subscript_kind) {
      std::construct_at(&storage_.subscript, other.storage_.subscript);
    } else {
      throw_bad_visit();
    }
  }
  ObjectPathElement(ObjectPathElement&& other) : kind_(other.kind_) {
    if (kind_ == name_kind) {
      std::construct_at(&storage_.name, std::move(other.storage_.name));
    } else if (kind_ == subscript_kind) {
      std::construct_at(&storage_.subscript, std::move(other.storage_.subscript));
    } else {
      throw_bad_visit();
    }
  }
  /// @}
  /// Copy and swap: `other` is copied or moved in first, so a failure leaves
  /// this element unchanged.
  ObjectPathElement& operator=(ObjectPathElement other) noexcept;
  ~ObjectPathElement() { destroy_value(); }

  /// Exchanges the values and kinds of the two elements.
  void swap(ObjectPathElement& other) noexcept;

  /// The kind index: 0 subscript, 1 name.
  [[nodiscard]] std::size_t id() const noexcept { return kind_; }

  /// The subscript held, or null when the element holds a name.
  [[nodiscard]] const ObjectPathSubscript* as_subscript() const noexcept {
    return kind_ == subscript_kind ? &storage_.subscript : nullptr;
  }
  /// The name held, or null when the element holds a subscript.
  [[nodiscard]] const ObjectPathName* as_name() const noexcept {
    return kind_ == name_kind ? &storage_.name : nullptr;
  }

  /// The kind indices that id() gives for a subscript and for a name.
  /// @{
  static constexpr std::size_t subscript_kind = 0;
  static constexpr std::size_t name_kind = 1;
  /// @}

 private:
  // Breaks elements on purpose, so that the tests can check what happens to
  // them; defined in a private header that only the tests include.
  friend struct detail::ObjectPathElementAccess;
  friend void strip_annotation_inplace(ObjectPathElement& e);

  // Holds one of the two alternatives, or nothing in a broken element.
  union Storage {
    Storage() noexcept {}
    ~Storage() {}
    ObjectPathSubscript subscript;
    ObjectPathName name;
  };

  // Moves the value of kind `kind` from `from` into the empty `to` and leaves
  // `from` empty.
  static void relocate(Storage& to, std::size_t kind, Storage& from) noexcept;
  void destroy_value() noexcept {
    if (kind_ == name_kind) {
      std::destroy_at(&storage_.name);
    } else if (kind_ == subscript_kind) {
      std::destroy_at(&storage_.subscript);
    }
    // A broken element holds nothing.
  }
  // Throws std::logic_error("bad visit"), for copies and moves of a broken
  // element; out of line, so that the inline copies stay small.
  [[noreturn]] static void throw_bad_visit();

  Storage storage_;
  std::size_t kind_;
};

/// Three-valued order: 0 equal, 1 a before b, 2 a after b. Kinds first (every
/// subscript before every name); names by their UTF-16 code units, a prefix
/// first; subscripts sharing one record are equal, otherwise the smaller count
/// first, then the values (krel::compare).
[[nodiscard]] int compare(const ObjectPathElement& a, const ObjectPathElement& b);

/// Equal kinds and equal values; subscripts compare their counts too (unlike
/// ObjectPathSubscript::equivalent).
[[nodiscard]] bool operator==(const ObjectPathElement& a, const ObjectPathElement& b);

namespace detail {

/// The element hash computed from the value; for a subscript it is also
/// stored in the record's cache. Internal: use hash_value.
[[nodiscard]] std::size_t computed_hash(const ObjectPathElement& e);

/// Reads the element hash cached in a subscript's record: 0 until the first
/// hash. Internal: use hash_value.
struct ObjectPathSubscriptHashCache {
  /// The element hash cached in the subscript's record, or 0 before the
  /// first hash.
  [[nodiscard]] static std::size_t load(const ObjectPathSubscript& s) noexcept {
    return s.rep_.read().hash_cache.load(std::memory_order_relaxed);
  }
};

}  // namespace detail

/// A 64-bit hash built with boost::hash_combine, consistent with operator==.
/// A subscript element's hash is cached in its record after the first call,
/// so that hashing it again is one load, inline.
[[nodiscard]] inline std::size_t hash_value(const ObjectPathElement& e) {
  if (const ObjectPathSubscript* s = e.as_subscript()) {
    const std::size_t cached = detail::ObjectPathSubscriptHashCache::load(*s);
    if (cached != 0) return cached;
  }
  return detail::computed_hash(e);
}

/// Feeds the element's identity to `sink`, in the byte stream shown at the top
/// of this file. An empty sink throws std::bad_function_call.
void incorporate_data(std::function<void(const char*, unsigned long)>& sink,
                      const ObjectPathElement& e);

/// Elements carry no annotation, so this gives the same answers as operator==.
[[nodiscard]] bool equal_ignore_annotation(const ObjectPathElement& a, const ObjectPathElement& b);

/// Elements carry no annotation: a name is left as it is; a subscript is made
/// sole owner of its record and its cached hash is reset. The value does not
/// change.
void strip_annotation_inplace(ObjectPathElement& e);

/// A name's text, or a subscript's text form ("//2, 3").
[[nodiscard]] ustring to_string(const ObjectPathElement& e);

/// One segment of object path text as an element: a text that starts with "/"
/// can only be a subscript, any other text only a name. Empty when the text is
/// neither (so also for the empty text).
[[nodiscard]] std::optional<ObjectPathElement> make_element(const ustring& text);

/// Writes to_string(e) in the local encoding.
std::ostream& operator<<(std::ostream& os, const ObjectPathElement& e);

}  // namespace ui::core

/// Lets elements key unordered containers, with the hash of hash_value.
template <>
struct std::hash<ui::core::ObjectPathElement> {
  /// ui::core::hash_value(e).
  std::size_t operator()(const ui::core::ObjectPathElement& e) const {
    return ui::core::hash_value(e);
  }
};

#endif  // UI_CORE_OBJECT_PATH_ELEMENT_H
