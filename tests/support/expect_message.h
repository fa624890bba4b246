// expect_message.h - checks that a call throws a given catalogue message
//
//   EXPECT_TRUE(throws_message([&] { parse(text); }, "kalder:...:path", "InvalidNodePath",
//                              {ustring(u"/mass")}));
//
// The check names the message identifier and its arguments, not only the
// exception type, so a test fails when the right exception carries the wrong
// message.

#ifndef UI_CORE_TESTS_EXPECT_MESSAGE_H
#define UI_CORE_TESTS_EXPECT_MESSAGE_H

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "krel/message.h"
#include "krel/ustring.h"

namespace test_support {

using Argument = resource_core::BaseMsgID::Argument;

inline std::string describe(const Argument& a) {
  switch (a.index()) {
    case 0:
      return "unsigned " + std::to_string(std::get<0>(a));
    case 1:
      return "signed " + std::to_string(std::get<1>(a));
    case 2:
      return "text '" + krel::ustring_to_utf8_string(std::get<2>(a)) + "'";
    default:
      return "double " + std::to_string(std::get<3>(a));
  }
}

inline std::string describe(const std::vector<Argument>& args) {
  std::string s = "[";
  for (std::size_t i = 0; i < args.size(); ++i) s += (i ? ", " : "") + describe(args[i]);
  return s + "]";
}

/// Compares a caught message with the expected identifier and arguments.
inline ::testing::AssertionResult message_is(const krel::MessageException& e,
                                             const std::string& catalogue, const std::string& key,
                                             const std::vector<Argument>& args) {
  const auto& id = e.message().id();
  if (id.catalogue != catalogue || id.key != key || id.arguments != args) {
    return ::testing::AssertionFailure()
           << "threw " << id.catalogue << ":" << id.key << " " << describe(id.arguments)
           << ", expected " << catalogue << ":" << key << " " << describe(args);
  }
  return ::testing::AssertionSuccess();
}

/// Runs `fn` and checks that it throws krel::MessageException with exactly
/// this catalogue, key and argument list.
template <class Fn>
::testing::AssertionResult throws_message(Fn&& fn, const std::string& catalogue,
                                          const std::string& key,
                                          const std::vector<Argument>& args) {
  try {
    std::forward<Fn>(fn)();
  } catch (const krel::MessageException& e) {
    return message_is(e, catalogue, key, args);
  } catch (const std::exception& e) {
    return ::testing::AssertionFailure() << "threw another exception: " << e.what();
  }
  return ::testing::AssertionFailure() << "threw nothing, expected " << catalogue << ":" << key;
}

}  // namespace test_support

#endif  // UI_CORE_TESTS_EXPECT_MESSAGE_H
