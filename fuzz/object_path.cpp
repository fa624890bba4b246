// fuzz/object_path.cpp - the four object path parsers, printing and joining
//
// Segmenting is written out here on its own: a run of "/" that does not reach
// the end of the text is part of the segment when its length is even; an odd
// run, a "/" at the end or a run reaching the end ends the segment, and one
// "/" is consumed as the separator. Properties, on the whole input and on its
// two halves around a line feed:
// - to_partial_path gives the elements of the segments up to the first one
//   that is no element, and the rest of the text from there; the segments,
//   their separators and the rest account for the whole text; it throws
//   InvalidObjectPath with the text exactly when a subscript follows a
//   subscript;
// - to_object_path gives the same path when the rest is empty and throws
//   InvalidObjectPath with the text otherwise;
// - to_partial_name_path and to_name_path do the same with names only, never
//   throw for a subscript after a subscript, and to_name_path refuses with
//   InvalidNodePath;
// - a parsed path's text form parses back to an equal path;
// - "/" and "/=" join the elements in order and change neither operand, also
//   when a path is joined with itself; push_back on a copy leaves the
//   original as it was;
// - operator<< writes the text form in the local encoding.

#include <cstdint>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/errors.h"
#include "ui/core/object_path.h"
#include "ui/core/object_path_element.h"
#include "ui/core/object_path_name.h"

namespace {

using fuzz::ustring;
using ui::core::ErrorId;
using ui::core::ObjectPath;
using ui::core::ObjectPathElement;

std::size_t segment_end(const ustring& text, std::size_t p) {
  const std::size_t n = text.size();
  std::size_t q = p;
  for (;;) {
    const std::size_t i = text.find(u'/', q);
    if (i == ustring::npos) return n;
    if (i == n - 1) return i;
    std::size_t j = i;
    while (j < n && text[j] == u'/') ++j;
    if (j == n || (j - i) % 2 != 0) return i;
    q = j;
  }
}

struct Expected {
  std::vector<ustring> segments;  // the segments that became elements
  std::vector<ObjectPathElement> elements;
  ustring rest;
  bool adjacent_subscripts = false;
};

Expected reference_parse(const ustring& text, bool names_only) {
  Expected out;
  std::size_t p = 0;
  while (p < text.size()) {
    const std::size_t e = segment_end(text, p);
    const ustring segment = text.substr(p, e - p);
    std::optional<ObjectPathElement> element;
    if (names_only) {
      if (auto name = ui::core::ObjectPathName::make(segment)) element.emplace(*name);
    } else {
      element = ui::core::make_element(segment);
    }
    if (!element) {
      out.rest = text.substr(p);
      return out;
    }
    if (!names_only && element->id() == 0 && !out.elements.empty() &&
        out.elements.back().id() == 0) {
      out.adjacent_subscripts = true;
      return out;
    }
    out.segments.push_back(segment);
    out.elements.push_back(*element);
    p = e + 1;
  }
  return out;
}

std::vector<ObjectPathElement> elements_of(const ObjectPath& path) {
  return std::vector<ObjectPathElement>(path.begin(), path.end());
}

// The segments with one "/" after each (but the last when nothing is left),
// then the rest, must be the text; a single trailing "/" is the only other
// possibility.
void check_accounting(const Expected& expected, const ustring& text) {
  ustring rebuilt;
  for (std::size_t i = 0; i < expected.segments.size(); ++i) {
    if (i > 0) rebuilt += u'/';
    rebuilt += expected.segments[i];
  }
  if (!expected.rest.empty()) {
    if (!expected.segments.empty()) rebuilt += u'/';
    rebuilt += expected.rest;
  }
  fuzz::require(rebuilt == text || rebuilt + u'/' == text,
                "segments, separators and rest account for the whole text", text);
}

std::optional<ObjectPath> check_parsers(const ustring& text) {
  const Expected expected = reference_parse(text, false);
  if (!expected.adjacent_subscripts) check_accounting(expected, text);

  std::optional<std::pair<ObjectPath, ustring>> partial;
  const auto partial_thrown =
      fuzz::message_thrown_by([&] { partial = ui::core::to_partial_path(text); }, text);
  std::optional<ObjectPath> whole;
  const auto whole_thrown =
      fuzz::message_thrown_by([&] { whole = ui::core::to_object_path(text); }, text);

  if (expected.adjacent_subscripts) {
    for (const auto* e : {&partial_thrown, &whole_thrown}) {
      fuzz::require(e->has_value() && ui::core::is_error(**e, ErrorId::InvalidObjectPath) &&
                        fuzz::has_text_argument(**e, text),
                    "a subscript after a subscript throws InvalidObjectPath with the text", text);
    }
  } else {
    fuzz::require(partial.has_value(), "to_partial_path throws only for adjacent subscripts", text);
    fuzz::require(elements_of(partial->first) == expected.elements,
                  "to_partial_path gives the elements of the segments in order", text);
    fuzz::require(partial->second == expected.rest,
                  "to_partial_path gives the text from the first bad segment as the rest", text);
    if (expected.rest.empty()) {
      fuzz::require(whole.has_value() && *whole == partial->first,
                    "to_object_path gives what to_partial_path gives when nothing is left", text);
    } else {
      fuzz::require(whole_thrown && ui::core::is_error(*whole_thrown, ErrorId::InvalidObjectPath) &&
                        fuzz::has_text_argument(*whole_thrown, text),
                    "to_object_path throws InvalidObjectPath with the text when a rest is left",
                    text);
    }
  }

  const Expected names = reference_parse(text, true);
  check_accounting(names, text);
  std::pair<ObjectPath, ustring> partial_names;
  fuzz::require_no_throw([&] { partial_names = ui::core::to_partial_name_path(text); },
                         "to_partial_name_path never throws for bad text", text);
  fuzz::require(
      elements_of(partial_names.first) == names.elements && partial_names.second == names.rest,
      "to_partial_name_path gives the leading names and the rest", text);
  std::optional<ObjectPath> name_path;
  const auto name_thrown =
      fuzz::message_thrown_by([&] { name_path = ui::core::to_name_path(text); }, text);
  if (names.rest.empty()) {
    fuzz::require(name_path.has_value() && *name_path == partial_names.first,
                  "to_name_path gives what to_partial_name_path gives when nothing is left", text);
  } else {
    fuzz::require(name_thrown && ui::core::is_error(*name_thrown, ErrorId::InvalidNodePath) &&
                      fuzz::has_text_argument(*name_thrown, text),
                  "to_name_path refuses with InvalidNodePath and the whole text", text);
  }

  if (!whole) return std::nullopt;
  const ustring form = *whole;
  std::optional<ObjectPath> again;
  fuzz::require_no_throw([&] { again = ui::core::to_object_path(form); },
                         "the text form of a parsed path parses", text);
  fuzz::require(*again == *whole, "the text form parses back to an equal path", text);
  std::ostringstream out;
  out << *whole;
  fuzz::require(out.str() == krel::ustring_to_local_encoded_string(form),
                "operator<< writes the text form in the local encoding", text);
  return whole;
}

void check_join(const ObjectPath& a, const ObjectPath& b, const ustring& text) {
  const std::vector<ObjectPathElement> before_a = elements_of(a);
  const std::vector<ObjectPathElement> before_b = elements_of(b);
  std::vector<ObjectPathElement> joined = before_a;
  joined.insert(joined.end(), before_b.begin(), before_b.end());

  fuzz::require(elements_of(a / b) == joined, "a / b holds a's elements, then b's", text);
  ObjectPath target = a;
  target /= b;
  fuzz::require(elements_of(target) == joined, "/= appends the other path's elements", text);
  fuzz::require(elements_of(a) == before_a && elements_of(b) == before_b,
                "joining changes neither operand", text);
  ObjectPath self = a;
  const auto& same = self;  // appending a path to itself reads what it changes
  self /= same;
  std::vector<ObjectPathElement> doubled = before_a;
  doubled.insert(doubled.end(), before_a.begin(), before_a.end());
  fuzz::require(elements_of(self) == doubled && elements_of(a) == before_a,
                "a path joined with itself holds itself twice", text);
  ObjectPath pushed = a;
  pushed.push_back(ObjectPathElement());
  fuzz::require(pushed.size() == a.size() + 1 && elements_of(a) == before_a,
                "push_back on a copy leaves the original as it was", text);
  const ustring form = target;
  ustring expected_form = a;
  if (!a.empty() && !b.empty()) expected_form += u'/';
  expected_form += ustring(b);
  fuzz::require(form == expected_form, "the joined text form is both texts joined by '/'", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) {
    check_parsers(text);
    const std::vector<ustring> halves = fuzz::pieces_of(text, 2);
    if (halves.size() == 2) {
      const std::optional<ObjectPath> a = check_parsers(halves[0]);
      const std::optional<ObjectPath> b = check_parsers(halves[1]);
      if (a && b) check_join(*a, *b, text);
    }
  }
  return 0;
}
