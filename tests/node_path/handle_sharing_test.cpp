// Node identifiers and node paths through the checks that every shared handle
// goes through (tests/support/handle_checks.h): copies share the record, a
// change to a copy leaves the original alone, moves hand the record over,
// nothing leaks, and copies may be made and destroyed on many threads at once.

#include "ui/core/node_path.h"

#include <gtest/gtest.h>

#include "handle_checks.h"
#include "ui/core/node_id.h"

using ui::core::NodeId;
using ui::core::NodePath;
using ui::core::NodePath1;

// An identifier's text never changes, so a change is the assignment of
// another identifier.
template <>
struct test_support::HandleTraits<NodeId> {
  static NodeId make() { return NodeId(u"Body//Frame"); }
  static bool shares(const NodeId& a, const NodeId& b) { return a.shares_record_with(b); }
  static ui::core::ustring observe(const NodeId& id) { return id.ustring(); }
  static void change(NodeId& id) { id = NodeId(u"mass"); }
  // A moved-from identifier reads as the empty text and equals only another
  // moved-from identifier.
  static void expect_moved_from(const NodeId& id) {
    EXPECT_TRUE(id.ustring().empty());
    EXPECT_FALSE(id == make());
    NodeId other = make();
    const NodeId taker = std::move(other);
    EXPECT_TRUE(id == other);  // NOLINT(bugprone-use-after-move)
  }
};

// The checks of both paths: a change appends an identifier, and a moved-from
// path is empty and shares the record of every empty path.
template <class Path>
struct NodePathTraits {
  static Path make() { return Path(u"Body//Frame/mass/x"); }
  static bool shares(const Path& a, const Path& b) { return a.shares_storage_with(b); }
  static ui::core::ustring observe(const Path& p) { return p.ustring(); }
  static void change(Path& p) { p.push_back(NodeId(u"y")); }
  static void expect_moved_from(const Path& p) {
    EXPECT_TRUE(p.empty());
    EXPECT_TRUE(p.shares_storage_with(NodePath()));
  }
};

template <>
struct test_support::HandleTraits<NodePath> : NodePathTraits<NodePath> {};
template <>
struct test_support::HandleTraits<NodePath1> : NodePathTraits<NodePath1> {};

namespace {

static_assert(test_support::is_pointer_sized_handle<NodeId>);
static_assert(test_support::is_pointer_sized_handle<NodePath>);
static_assert(test_support::is_pointer_sized_handle<NodePath1>);

using NodeHandles = ::testing::Types<NodeId, NodePath, NodePath1>;
}  // namespace

// The suite lives in test_support, where its instantiation must be named.
namespace test_support {
INSTANTIATE_TYPED_TEST_SUITE_P(NodePaths, SharedHandle, NodeHandles);
}  // namespace test_support
