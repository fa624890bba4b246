// Compiled, not run, by the errors.message_arguments_* tests: a call that
// builds or throws a message compiles exactly when its arguments match the
// message table in number and kind. CHECK selects the call:
//   0 every call matches (must compile)
//   1 a kernel message given one argument too few
//   2 a kernel message given a count where the table says text
//   3 a units library message given a text where the table says count

#include <cstdint>

#include "messages.h"
#include "ui/core/detail/errors.h"

namespace {

[[maybe_unused]] void calls(const ui::core::ustring& text, std::uint64_t count) {
  using ui::core::ErrorId;
  using units2::core::detail::MessageId;
#if CHECK == 0
  (void)ui::core::detail::make_error(ErrorId::InvalidNodePath, text);
  (void)ui::core::detail::make_error(ErrorId::InvalidArrayArguments, count, text);
  (void)units2::core::detail::make_error(MessageId::SyntaxError, text, count);
#elif CHECK == 1
  (void)ui::core::detail::make_error(ErrorId::SubscriptOutOfRange, text);
#elif CHECK == 2
  (void)ui::core::detail::make_error(ErrorId::InvalidNodePath, count);
#elif CHECK == 3
  (void)units2::core::detail::make_error(MessageId::SyntaxError, text, text);
#endif
}

}  // namespace
