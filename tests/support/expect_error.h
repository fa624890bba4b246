// expect_error.h - checks that a kernel call throws a given ErrorId
//
//   EXPECT_TRUE(throws_error([&] { NodePath1 p(u""); }, ErrorId::InvalidNodePath1,
//                            {ustring()}));

#ifndef UI_CORE_TESTS_EXPECT_ERROR_H
#define UI_CORE_TESTS_EXPECT_ERROR_H

#include "expect_message.h"
#include "ui/core/errors.h"

namespace test_support {

template <class Fn>
::testing::AssertionResult throws_error(Fn&& fn, ui::core::ErrorId id,
                                        const std::vector<Argument>& args) {
  return throws_message(std::forward<Fn>(fn), ui::core::error_catalogue(id),
                        std::string(ui::core::error_info(id).key), args);
}

/// A text argument, as the kernel stores it (variant alternative 2).
inline Argument text_arg(std::u16string_view text) {
  return Argument(std::in_place_index<2>, std::u16string(text));
}

}  // namespace test_support

#endif  // UI_CORE_TESTS_EXPECT_ERROR_H
