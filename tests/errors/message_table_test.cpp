#include "ui/core/errors.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "expect_error.h"
#include "ui/core/node_path.h"
#include "ui/core/object_path.h"

// The message table row by row, and how the public operations fill the
// identifiers they throw.

namespace {

using namespace ui::core;
using test_support::text_arg;

struct Row {
  ErrorId id;
  std::string_view area;
  std::string_view key;
  std::size_t arguments;
  bool thrown;
};

TEST(ErrorTable, EveryRowHasItsAreaKeyAndArgumentCount) {
  const std::vector<Row> rows = {
      {ErrorId::InvalidAccess, "access", "InvalidAccess", 1, true},
      {ErrorId::UnitConversionUnknown, "units", "UnitConversionUnknown", 0, false},
      {ErrorId::CannotCreateSource, "source", "CannotCreateSource", 1, true},
      {ErrorId::InvalidArrayArguments, "data_struct", "InvalidArrayArguments", 2, true},
      {ErrorId::InvalidNodeId, "path", "InvalidNodeId", 1, true},
      {ErrorId::InvalidNodePath, "path", "InvalidNodePath", 1, true},
      {ErrorId::InvalidNodePath1, "path", "InvalidNodePath1", 1, true},
      {ErrorId::InvalidObjectPath, "path", "InvalidObjectPath", 1, true},
      {ErrorId::InvalidObjectPathName, "path", "InvalidObjectPathName", 1, true},
      {ErrorId::InvalidObjectPathSubscript, "path", "InvalidObjectPathSubscript", 0, true},
      {ErrorId::InvalidObjectPathSubscriptString, "path", "InvalidObjectPathSubscriptString", 1,
       true},
      {ErrorId::NonScalarPath, "path", "NonScalarPath", 1, true},
      {ErrorId::InsufficientSubscriptDimensions, "path", "InsufficientSubscriptDimensions", 2,
       true},
      {ErrorId::SubscriptOutOfRange, "path", "SubscriptOutOfRange", 2, true},
  };
  ASSERT_EQ(error_table().size(), rows.size());
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.key));
    const ErrorInfo& info = error_info(row.id);
    EXPECT_EQ(info.area, row.area);
    EXPECT_EQ(info.key, row.key);
    EXPECT_EQ(info.arguments, row.arguments);
    EXPECT_EQ(info.thrown, row.thrown);
    EXPECT_EQ(error_catalogue(row.id), "kalder:common:ui:core:kernel:" + std::string(row.area));
  }
}

// Runs `fn`, which must throw krel::MessageException, and returns its identifier.
template <class Fn>
resource_core::BaseMsgID thrown_id(Fn&& fn) {
  try {
    fn();
  } catch (const krel::MessageException& e) {
    return e.message().id();
  }
  ADD_FAILURE() << "nothing thrown";
  return {};
}

TEST(ThrowMessage, PublicOperationsKeepCatalogueAndKeyApart) {
  const std::vector<resource_core::BaseMsgID> ids = {
      thrown_id([] { NodeId id(u"a/b"); }),
      thrown_id([] { NodePath p(u"/a"); }),
      thrown_id([] { NodePath1 p(u""); }),
      thrown_id([] { (void)to_object_path(u"/a"); }),
      thrown_id([] { ObjectPathName n(u"a/"); }),
      thrown_id([] { ObjectPathSubscript s(std::vector<unsigned long>{0}); }),
      thrown_id([] { ObjectPathSubscript s(u"//0"); }),
      thrown_id([] { (void)to_name_path(u"a///1"); }),
  };
  for (const auto& id : ids) {
    SCOPED_TRACE(id.key);
    EXPECT_EQ(id.catalogue, "kalder:common:ui:core:kernel:path");
    EXPECT_EQ(id.key.find(':'), std::string::npos);
    EXPECT_FALSE(id.key.empty());
  }
}

TEST(ThrowMessage, TextArgumentsAreTheThrowersOwnCopies) {
  ustring text = u"/mass";
  resource_core::BaseMsgID id = thrown_id([&] { NodePath p(text); });
  text[1] = u'X';  // the caller's text changes after the throw
  ASSERT_EQ(id.arguments.size(), 1u);
  EXPECT_EQ(id.arguments[0], text_arg(u"/mass"));
}

TEST(ThrowMessage, TextArgumentsAreTheThirdVariantAlternative) {
  const resource_core::BaseMsgID id = thrown_id([] { NodeId bad(u"a\t/b"); });
  ASSERT_EQ(id.arguments.size(), 1u);
  EXPECT_EQ(id.arguments[0].index(), 2u);
  EXPECT_EQ(std::get<2>(id.arguments[0]), u"a\t/b");
}

TEST(ThrowMessage, SubscriptWithAZeroCarriesNoArguments) {
  const resource_core::BaseMsgID id = thrown_id([] {
    ObjectPathSubscript s(2, krel::ArraySize{3, 0});
  });
  EXPECT_EQ(id.key, "InvalidObjectPathSubscript");
  EXPECT_TRUE(id.arguments.empty());
}

}  // namespace
