// Claims about the block path functions and XML escaping that the other tests
// of this folder leave open: the argument forms, that exactly five code units
// are replaced, and that the block functions leave their argument alone.

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

#include "ui/core/text_utils.h"

namespace {

using namespace ui::core;

static_assert(std::is_same_v<decltype(&block_name), ustring (*)(const ustring&)>);
static_assert(std::is_same_v<decltype(&block_path_without_model), ustring (*)(const ustring&)>);
static_assert(std::is_same_v<decltype(&escape_xml), ustring (*)(const ustring&)>);

TEST(EscapeXmlConformance, ExactlyFiveCodeUnitsOfAllSixtyFiveThousandAreReplaced) {
  int replaced = 0;
  for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const ustring text(1, static_cast<char16_t>(unit));
    const ustring escaped = escape_xml(text);
    if (escaped == text) continue;
    ++replaced;
    switch (unit) {
      case 0x26:
        EXPECT_EQ(escaped, u"&amp;");
        break;
      case 0x27:
        EXPECT_EQ(escaped, u"&apos;");
        break;
      case 0x22:
        EXPECT_EQ(escaped, u"&quot;");
        break;
      case 0x3E:
        EXPECT_EQ(escaped, u"&gt;");
        break;
      case 0x3C:
        EXPECT_EQ(escaped, u"&lt;");
        break;
      default:
        ADD_FAILURE() << "code unit " << unit << " was changed";
    }
  }
  EXPECT_EQ(replaced, 5);
}

TEST(BlockPathConformance, FunctionsLeaveTheirArgumentUnchanged) {
  for (const ustring original : {u"model/sub/Gain", u"a///b", u"//x", u"/Gain", u"model/"}) {
    ustring path = original;
    (void)block_name(path);
    EXPECT_EQ(path, original);
    (void)block_path_without_model(path);
    EXPECT_EQ(path, original);
  }
}

TEST(BlockPathConformance, LiteralArgumentsNameTheLastAndTheRest) {
  EXPECT_EQ(ui::core::block_name(u"model/sub/Gain"), u"Gain");
  EXPECT_EQ(ui::core::block_path_without_model(u"model/sub/Gain"), u"sub/Gain");
}

TEST(BlockPathConformance, LeadingSeparatorDividesTheTwoFunctions) {
  // block_name keeps a path whose only separator is its first code unit;
  // block_path_without_model cuts after it.
  EXPECT_EQ(block_name(u"/a//b"), u"/a//b");
  EXPECT_EQ(block_path_without_model(u"/a//b"), u"a//b");
}

}  // namespace
