#include "ui/core/object_path_element.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "../common/hash_impl.h"
#include "krel/ustring.h"
#include "object_path_impl.h"

namespace ui::core {

namespace {

using Access = detail::ObjectPathSubscriptAccess;

[[noreturn]] void throw_invalid_visit() {
  throw std::logic_error("invalid visit");
}

bool is_broken(const ObjectPathElement& e) noexcept {
  return e.id() != ObjectPathElement::subscript_kind && e.id() != ObjectPathElement::name_kind;
}

using detail::combine;

std::size_t name_hash(const ObjectPathName& name) noexcept {
  std::size_t h = 0;
  for (char16_t unit : name.text()) h = combine(h, static_cast<std::size_t>(unit));
  return h;
}

// The whole element hash of a subscript element, the kind mixed in: the
// content hash combined with the kind index 0.
std::size_t subscript_element_hash(const detail::ObjectPathSubscriptRep& rep) noexcept {
  std::size_t h = combine(0, rep.size);
  h = combine(h, krel::hash_value(rep.subscripts));
  return combine(h, ObjectPathElement::subscript_kind);
}

int three_way_names(const ObjectPathName& a, const ObjectPathName& b) noexcept {
  // compare_() orders by unsigned code unit with a prefix first.
  const int c = a.text().compare_(b.text());
  return c < 0 ? 1 : (c == 0 ? 0 : 2);
}

int three_way_subscripts(const ObjectPathSubscript& a, const ObjectPathSubscript& b) noexcept {
  if (a.shares_record_with(b)) return 0;
  if (a.size() != b.size()) return a.size() < b.size() ? 1 : 2;
  return krel::compare(a.subscripts(), b.subscripts());
}

// Feeds `value` as `width` big-endian bytes in one call.
void feed(std::function<void(const char*, unsigned long)>& sink, std::uint64_t value,
          unsigned width) {
  char bytes[8];
  for (unsigned i = 0; i < width; ++i) {
    bytes[i] = static_cast<char>((value >> (8 * (width - 1 - i))) & 0xffu);
  }
  sink(bytes, width);
}

}  // namespace

ObjectPathElement::ObjectPathElement() : ObjectPathElement(ObjectPathSubscript()) {}

ObjectPathElement& ObjectPathElement::operator=(ObjectPathElement other) noexcept {
  swap(other);
  return *this;
}

void ObjectPathElement::throw_bad_visit() {
  throw std::logic_error("bad visit");
}

void ObjectPathElement::relocate(Storage& to, std::size_t kind, Storage& from) noexcept {
  switch (kind) {
    case subscript_kind:
      std::construct_at(&to.subscript, std::move(from.subscript));
      std::destroy_at(&from.subscript);
      break;
    case name_kind:
      std::construct_at(&to.name, std::move(from.name));
      std::destroy_at(&from.name);
      break;
    default:
      break;
  }
}

void ObjectPathElement::swap(ObjectPathElement& other) noexcept {
  // Both alternatives move without throwing, so the values are passed round
  // through a spare slot whatever the two kinds are.
  Storage spare;
  relocate(spare, kind_, storage_);
  relocate(storage_, other.kind_, other.storage_);
  relocate(other.storage_, kind_, spare);
  std::swap(kind_, other.kind_);
}

int compare(const ObjectPathElement& a, const ObjectPathElement& b) {
  if (a.id() != b.id()) return a.id() < b.id() ? 1 : 2;
  if (const auto* sa = a.as_subscript()) return three_way_subscripts(*sa, *b.as_subscript());
  if (const auto* na = a.as_name()) return three_way_names(*na, *b.as_name());
  throw_invalid_visit();
}

bool operator==(const ObjectPathElement& a, const ObjectPathElement& b) {
  if (a.id() != b.id()) return false;
  if (const auto* sa = a.as_subscript()) return *sa == *b.as_subscript();
  if (const auto* na = a.as_name()) return na->text().compare_(b.as_name()->text()) == 0;
  throw_invalid_visit();
}

std::size_t hash_value(const ObjectPathName& name) noexcept {
  return combine(name_hash(name), ObjectPathElement::name_kind);
}

std::size_t hash_value(const ObjectPathSubscript& subscript) noexcept {
  const detail::ObjectPathSubscriptRep& rep = Access::read(subscript);
  // The record caches the element hash itself, so that hash_value of an
  // element reads a cached hash with one load. The cache is 0 until the first
  // hash; a hash that happens to be 0 is simply computed again. Threads that
  // hash one record at once compute and store the same value.
  if (const std::size_t cached = rep.hash_cache.load(std::memory_order_relaxed); cached != 0) {
    return cached;
  }
  const std::size_t h = subscript_element_hash(rep);
  rep.hash_cache.store(h, std::memory_order_relaxed);
  return h;
}

std::size_t detail::computed_hash(const ObjectPathElement& e) {
  if (const auto* s = e.as_subscript()) return hash_value(*s);
  if (const auto* n = e.as_name()) return hash_value(*n);
  throw_invalid_visit();
}

void incorporate_data(std::function<void(const char*, unsigned long)>& sink,
                      const ObjectPathElement& e) {
  if (is_broken(e)) throw_invalid_visit();
  feed(sink, e.id(), 8);
  if (const auto* n = e.as_name()) {
    for (char16_t unit : n->text()) feed(sink, unit, 2);
    return;
  }
  const ObjectPathSubscript& s = *e.as_subscript();
  const krel::ArraySize& values = s.subscripts();
  feed(sink, s.size(), 8);
  feed(sink, values.size(), 8);
  for (std::size_t k = 0; k < values.size(); ++k) feed(sink, values(k), 8);
}

bool equal_ignore_annotation(const ObjectPathElement& a, const ObjectPathElement& b) {
  if (is_broken(a) || is_broken(b)) throw_invalid_visit();
  if (a.id() != b.id()) return false;
  if (const auto* sa = a.as_subscript()) {
    const ObjectPathSubscript& sb = *b.as_subscript();
    return sa->size() == sb.size() && sa->subscripts() == sb.subscripts();
  }
  const auto& ta = a.as_name()->text();
  const auto& tb = b.as_name()->text();
  return ta.size() == tb.size() && std::equal(ta.begin(), ta.end(), tb.begin());
}

void strip_annotation_inplace(ObjectPathElement& e) {
  if (is_broken(e)) throw_invalid_visit();
  if (e.id() != ObjectPathElement::subscript_kind) return;
  Access::write(e.storage_.subscript).hash_cache.store(0, std::memory_order_relaxed);
}

ustring to_string(const ObjectPathElement& e) {
  if (const auto* s = e.as_subscript()) return ustring(*s);
  if (const auto* n = e.as_name()) return ustring(n->text());
  throw_invalid_visit();
}

std::optional<ObjectPathElement> make_element(const ustring& text) {
  // A name never begins with "/", so such a text is tried as a subscript only.
  if (!text.empty() && text.front() == u'/') {
    std::optional<ObjectPathSubscript> subscript =
        detail::parse_subscript(text.data(), text.size());
    if (!subscript) return std::nullopt;
    return ObjectPathElement(std::move(*subscript));
  }
  if (!detail::meets_name_rule(text.data(), text.size())) return std::nullopt;
  return ObjectPathElement(detail::make_checked_name(text.data(), text.size()));
}

std::ostream& operator<<(std::ostream& os, const ObjectPathElement& e) {
  return os << krel::ustring_to_local_encoded_string(to_string(e));
}

}  // namespace ui::core
