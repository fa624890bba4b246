// Names, subscripts, elements and object paths through the checks that every
// shared handle goes through (tests/support/handle_checks.h): copies share the
// storage, a change to a copy leaves the original alone, moves hand the
// storage over, nothing leaks, and copies may be made and destroyed on many
// threads at once.

#include "ui/core/object_path.h"

#include <gtest/gtest.h>

#include "handle_checks.h"
#include "ui/core/object_path_element.h"
#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"

using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathName;
using ui::core::ObjectPathSubscript;
using ui::core::ustring;

// A name never changes, so a change is the assignment of another name. A
// moved-from name reads as the empty text.
template <>
struct test_support::HandleTraits<ObjectPathName> {
  static ObjectPathName make() { return ObjectPathName(u"Gain//x"); }
  static bool shares(const ObjectPathName& a, const ObjectPathName& b) {
    return a.text().shares_with(b.text());
  }
  static ustring observe(const ObjectPathName& n) { return n; }
  static void change(ObjectPathName& n) { n = ObjectPathName(u"Other"); }
  static void expect_moved_from(const ObjectPathName& n) { EXPECT_EQ(n.size(), 0u); }
};

// A subscript never changes either. A moved-from subscript holds no record:
// only destruction and assignment are allowed on it, so there is nothing to
// read.
template <>
struct test_support::HandleTraits<ObjectPathSubscript> {
  static ObjectPathSubscript make() { return ObjectPathSubscript({2, 3}); }
  static bool shares(const ObjectPathSubscript& a, const ObjectPathSubscript& b) {
    return a.shares_record_with(b);
  }
  static ustring observe(const ObjectPathSubscript& s) { return s; }
  static void change(ObjectPathSubscript& s) { s = ObjectPathSubscript({7}); }
  static void expect_moved_from(const ObjectPathSubscript&) {}
};

// An element holding a subscript shares the subscript's record; stripping its
// annotation is a change that makes the record its own first.
template <>
struct test_support::HandleTraits<ObjectPathElement> {
  static ObjectPathElement make() { return ObjectPathElement(ObjectPathSubscript({2, 3})); }
  static bool shares(const ObjectPathElement& a, const ObjectPathElement& b) {
    return a.as_subscript() != nullptr && b.as_subscript() != nullptr &&
           a.as_subscript()->shares_record_with(*b.as_subscript());
  }
  static ustring observe(const ObjectPathElement& e) { return ui::core::to_string(e); }
  static void change(ObjectPathElement& e) { ui::core::strip_annotation_inplace(e); }
  // The element keeps its kind; its subscript is moved from.
  static void expect_moved_from(const ObjectPathElement& e) {
    EXPECT_EQ(e.id(), ObjectPathElement::subscript_kind);
  }
};

// A path changes by appending; a moved-from path is empty.
template <>
struct test_support::HandleTraits<ObjectPath> {
  static ObjectPath make() { return ui::core::to_object_path(u"Controller/Gain///2, 3/value"); }
  static bool shares(const ObjectPath& a, const ObjectPath& b) { return a.shares_storage_with(b); }
  static ustring observe(const ObjectPath& p) { return p; }
  static void change(ObjectPath& p) { p.push_back(ObjectPathElement(ObjectPathName(u"y"))); }
  static void expect_moved_from(const ObjectPath& p) {
    EXPECT_TRUE(p.empty());
    EXPECT_TRUE(p.shares_storage_with(ObjectPath()));
  }
};

namespace {

static_assert(test_support::is_pointer_sized_handle<ObjectPathName>);
static_assert(test_support::is_pointer_sized_handle<ObjectPathSubscript>);
static_assert(test_support::is_pointer_sized_handle<ObjectPath>);
static_assert(sizeof(ObjectPathElement) == sizeof(void*) + sizeof(std::size_t),
              "an element is one handle and its kind");

using ObjectPathHandles =
    ::testing::Types<ObjectPathName, ObjectPathSubscript, ObjectPathElement, ObjectPath>;
}  // namespace

// The suite lives in test_support, where its instantiation must be named.
namespace test_support {
INSTANTIATE_TYPED_TEST_SUITE_P(ObjectPaths, SharedHandle, ObjectPathHandles);
}  // namespace test_support
