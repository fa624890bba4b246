#include "krel/message.h"

#include <gtest/gtest.h>

#include <locale>
#include <type_traits>

namespace {

resource_core::BaseMsgID node_path_id(std::u16string text) {
  resource_core::BaseMsgID id;
  id.arguments.emplace_back(std::in_place_index<2>, std::move(text));
  id.catalogue = "kalder:common:ui:core:kernel:path";
  id.key = "InvalidNodePath";
  return id;
}

TEST(MessageException, WhatBeginsWithTheFullIdentifier) {
  krel::MessageException e{krel::Message(node_path_id(u"/mass"))};
  EXPECT_STREQ(e.what(),
               "kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' is not a valid node "
               "path.");
}

TEST(MessageException, CarriesTheIdentifier) {
  const auto id = node_path_id(u"x");
  krel::MessageException e{krel::Message(id)};
  EXPECT_EQ(e.message().id(), id);
  krel::MessageException copy = e;
  EXPECT_EQ(copy.message().id(), id);
  EXPECT_STREQ(copy.what(), e.what());
}

TEST(Message, FormattedMessageUsesTheGlobalLocale) {
  krel::Message m(node_path_id(u"/mass"));
  krel::ustring out;
  m.formattedMessage_(out);
  EXPECT_EQ(out, u"'/mass' is not a valid node path.");
  const std::locale old = std::locale::global(std::locale("de_DE.UTF-8"));
  m.formattedMessage_(out);
  std::locale::global(old);
  EXPECT_EQ(out, u"'/mass' ist kein g\u00fcltiger Knotenpfad.");
}

TEST(Message, UnknownIdentifierFormatsAsItself) {
  resource_core::BaseMsgID id;
  id.catalogue = "no:such";
  id.key = "Thing";
  id.arguments.emplace_back(std::in_place_index<0>, std::uint64_t{7});
  id.arguments.emplace_back(std::in_place_index<2>, u"x");
  krel::ustring out;
  krel::Message(id).formattedMessage_(out);
  EXPECT_EQ(out, u"no:such:Thing(7, x)");
  EXPECT_STREQ(krel::MessageException(krel::Message(id)).what(),
               "no:such:Thing: no:such:Thing(7, x)");
}

}  // namespace

namespace {

// Copying a message used to copy its argument list, so a throw could fail
// half-way while the exception was being built from the message.
static_assert(std::is_nothrow_copy_constructible_v<krel::Message>);
static_assert(std::is_nothrow_copy_constructible_v<krel::MessageException>);

TEST(Message, CopiesShareTheIdentifier) {
  resource_core::BaseMsgID id;
  id.catalogue = "c";
  id.key = "k";
  id.arguments.emplace_back(std::in_place_index<2>, u"text");
  const krel::Message a(id);
  const krel::Message b = a;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(&a.id(), &b.id());
  EXPECT_EQ(b.id(), id);
}

}  // namespace
