// Calls that outside code writes with literals, and that must each pick one
// overload: the size of a matrix written as two integer literals, and text
// conversions of string literals.

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "krel/array_size.h"
#include "krel/ustring.h"

namespace {

using krel::ArraySize;

// The constructors outside code relies on, with the argument kinds it passes.
static_assert(std::is_constructible_v<ArraySize, const std::size_t*, std::size_t>);
static_assert(std::is_constructible_v<ArraySize, std::size_t, std::size_t>);
static_assert(std::is_constructible_v<ArraySize, int, int>);
static_assert(std::is_constructible_v<ArraySize, std::nullptr_t, int>);

TEST(ArraySizeLiterals, ZeroRowsIsAMatrixNotANullPointer) {
  // ArraySize(0, 3) used to be ambiguous: the 0 also reads as a null pointer.
  const ArraySize empty(0, 3);
  ASSERT_EQ(empty.size(), 2u);
  EXPECT_EQ(empty(0), 0u);
  EXPECT_EQ(empty(1), 3u);
  EXPECT_EQ(empty.numElements(), 0u);
  EXPECT_EQ(krel::to_user_string(empty), u"0x3");
  EXPECT_EQ(ArraySize(0, 0), (ArraySize{0, 0}));
  EXPECT_EQ(ArraySize(2u, 3ul), (ArraySize{2, 3}));
}

TEST(ArraySizeLiterals, NullPointerWithNoValuesIsTheEmptySize) {
  const ArraySize none(nullptr, 0);
  EXPECT_EQ(none.size(), 0u);
  EXPECT_EQ(krel::to_user_string(none), u"1x1");
}

TEST(UstringLiterals, ConversionsAcceptStringLiterals) {
  // Both used to be ambiguous between the string and the view overloads.
  EXPECT_EQ(krel::ustring_to_utf8_string(u"Gr\u00fc\u00dfe"),
            "Gr\xc3\xbc\xc3\x9f"
            "e");
  EXPECT_EQ(krel::utf8_string_to_ustring("Gr\xc3\xbc\xc3\x9f"
                                         "e"),
            u"Gr\u00fc\u00dfe");
  const char16_t* text = u"a/b";
  EXPECT_EQ(krel::ustring_to_utf8_string(text), "a/b");
  const char* narrow = "a/b";
  EXPECT_EQ(krel::utf8_string_to_ustring(narrow), u"a/b");
}

}  // namespace
