#include "ui/core/errors.h"

#include <gtest/gtest.h>

#include <set>

#include "expect_error.h"
#include "msgcat/catalogue.h"
#include "ui/core/detail/errors.h"

namespace {

using namespace ui::core;
using test_support::Argument;
using test_support::text_arg;
using test_support::throws_error;

TEST(ErrorTable, ListsFourteenMessagesWithDistinctKeys) {
  std::set<std::string_view> keys;
  for (const ErrorInfo& info : error_table()) keys.insert(info.key);
  EXPECT_EQ(error_table().size(), 14u);
  EXPECT_EQ(keys.size(), 14u);
}

TEST(ErrorTable, EveryMessageHasEnglishAndGermanText) {
  for (const ErrorInfo& info : error_table()) {
    EXPECT_TRUE(msgcat::find_pattern(error_catalogue(info.id), info.key, "en")) << info.key;
    EXPECT_TRUE(msgcat::find_pattern(error_catalogue(info.id), info.key, "de")) << info.key;
  }
}

TEST(ErrorTable, CataloguesAreTheKernelFamily) {
  EXPECT_EQ(error_catalogue(ErrorId::InvalidAccess), "kalder:common:ui:core:kernel:access");
  EXPECT_EQ(error_catalogue(ErrorId::UnitConversionUnknown), "kalder:common:ui:core:kernel:units");
  EXPECT_EQ(error_catalogue(ErrorId::CannotCreateSource), "kalder:common:ui:core:kernel:source");
  EXPECT_EQ(error_catalogue(ErrorId::InvalidArrayArguments),
            "kalder:common:ui:core:kernel:data_struct");
  EXPECT_EQ(error_catalogue(ErrorId::NonScalarPath), "kalder:common:ui:core:kernel:path");
}

struct Case {
  ErrorId id;
  detail::MsgId msg;
  std::vector<Argument> args;
};

TEST(ThrowMessage, EachThrownMessageCarriesItsIdentifierAndArguments) {
  const ustring t = u"a\tb";
  const krel::ArraySize size{2, 3};
  const std::vector<Case> cases = {
      {ErrorId::InvalidAccess, detail::make_error(ErrorId::InvalidAccess, t), {text_arg(t)}},
      {ErrorId::CannotCreateSource,
       detail::make_error(ErrorId::CannotCreateSource, u"OpenDialog"),
       {text_arg(u"OpenDialog")}},
      {ErrorId::InvalidArrayArguments,
       detail::make_error(ErrorId::InvalidArrayArguments, 5u, size),
       {Argument(std::in_place_index<0>, 5u), text_arg(u"2x3")}},
      {ErrorId::InvalidNodeId, detail::make_error(ErrorId::InvalidNodeId, t), {text_arg(t)}},
      {ErrorId::InvalidNodePath,
       detail::make_error(ErrorId::InvalidNodePath, u"/mass"),
       {text_arg(u"/mass")}},
      {ErrorId::InvalidNodePath1,
       detail::make_error(ErrorId::InvalidNodePath1, u""),
       {text_arg(u"")}},
      {ErrorId::InvalidObjectPath,
       detail::make_error(ErrorId::InvalidObjectPath, u"a//"),
       {text_arg(u"a//")}},
      {ErrorId::InvalidObjectPathName,
       detail::make_error(ErrorId::InvalidObjectPathName, t),
       {text_arg(t)}},
      {ErrorId::InvalidObjectPathSubscript,
       detail::make_error(ErrorId::InvalidObjectPathSubscript),
       {}},
      {ErrorId::InvalidObjectPathSubscriptString,
       detail::make_error(ErrorId::InvalidObjectPathSubscriptString, u"//0"),
       {text_arg(u"//0")}},
      {ErrorId::NonScalarPath,
       detail::make_error(ErrorId::NonScalarPath, u"a(2,1)"),
       {text_arg(u"a(2,1)")}},
      {ErrorId::InsufficientSubscriptDimensions,
       detail::make_error(ErrorId::InsufficientSubscriptDimensions, u"//4", size),
       {text_arg(u"//4"), text_arg(u"2x3")}},
      {ErrorId::SubscriptOutOfRange,
       detail::make_error(ErrorId::SubscriptOutOfRange, u"//4, 1", size),
       {text_arg(u"//4, 1"), text_arg(u"2x3")}},
  };
  std::set<ErrorId> covered;
  for (const Case& c : cases) {
    EXPECT_TRUE(throws_error([&] { krel::detail::throw_message(c.msg); }, c.id, c.args))
        << error_info(c.id).key;
    covered.insert(c.id);
  }
  for (const ErrorInfo& info : error_table()) {
    if (info.thrown) {
      EXPECT_TRUE(covered.count(info.id)) << info.key << " is not covered";
    }
  }
}

TEST(ThrowMessage, ReservesExactlyTheArgumentCount) {
  EXPECT_EQ(detail::KernelMessages::message_id(ErrorId::SubscriptOutOfRange).arguments.capacity(),
            2u);
  EXPECT_EQ(detail::make_error(ErrorId::InvalidNodeId, u"x").arguments.capacity(), 1u);
  EXPECT_EQ(detail::make_error(ErrorId::UnitConversionUnknown).arguments.size(), 0u);
  for (const ErrorInfo& info : error_table()) {
    EXPECT_EQ(detail::KernelMessages::message_id(info.id).arguments.capacity(), info.arguments)
        << info.key;
  }
}

TEST(ThrowMessage, WhatNamesTheFullIdentifier) {
  try {
    detail::throw_error(ErrorId::InvalidNodePath, u"/mass");
    FAIL() << "nothing thrown";
  } catch (const krel::MessageException& e) {
    EXPECT_STREQ(e.what(),
                 "kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' is not a valid node "
                 "path.");
    EXPECT_TRUE(is_error(e, ErrorId::InvalidNodePath));
    EXPECT_FALSE(is_error(e, ErrorId::InvalidNodeId));
    EXPECT_FALSE(is_error(e, ErrorId::InvalidAccess));
  }
}

}  // namespace
