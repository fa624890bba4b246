// services_test_support.h - helpers of the registry's conformance tests
//
//   EXPECT_THROW_TEXT(context.GetServiceReference<Clock>(),
//   cppmicroservices::IllegalStateException,
//                     "The bundle context is no longer valid");
//   EXPECT_TRUE(returns_without_deadlock([&] { reg.Unregister(); }));

#ifndef UI_CORE_SERVICES_TESTS_SERVICES_TEST_SUPPORT_H
#define UI_CORE_SERVICES_TESTS_SERVICES_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <typeinfo>
#include <utility>

#include "cppmicroservices/ServiceInterface.h"

namespace services_test {

/// The what() of the E that `call` throws; "<...>" describing what happened
/// instead when it throws nothing, another type, or a type derived from E.
template <class E, class Call>
std::string thrown_text(Call&& call) {
  try {
    call();
  } catch (const E& e) {
    if (typeid(e) != typeid(E)) {
      return "<threw " + cppmicroservices::detail::GetDemangledName(typeid(e)) + ": " + e.what() +
             ">";
    }
    return e.what();
  } catch (const std::exception& e) {
    return "<threw " + cppmicroservices::detail::GetDemangledName(typeid(e)) + ": " + e.what() +
           ">";
  } catch (...) {
    return "<threw something else>";
  }
  return "<threw nothing>";
}

/// Expects `statement` to throw exactly `type` with the text `text`.
#define EXPECT_THROW_TEXT(statement, type, text) \
  EXPECT_EQ(::services_test::thrown_text<type>([&] { (void)(statement); }), std::string(text))

/// Runs `fn` on another thread and ends the whole run if it never returns: a
/// call that deadlocks would otherwise hang the tests.
template <class Fn>
::testing::AssertionResult returns_without_deadlock(Fn fn) {
  auto done = std::make_shared<std::promise<void>>();
  auto result = done->get_future();
  std::thread([fn = std::move(fn), done]() mutable {
    try {
      fn();
      done->set_value();
    } catch (...) {
      done->set_exception(std::current_exception());
    }
  }).detach();
  if (result.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
    std::fprintf(stderr, "the call did not return: the framework deadlocked\n");
    std::_Exit(1);
  }
  try {
    result.get();
  } catch (const std::exception& e) {
    return ::testing::AssertionFailure() << "threw " << e.what();
  }
  return ::testing::AssertionSuccess();
}

}  // namespace services_test

#endif  // UI_CORE_SERVICES_TESTS_SERVICES_TEST_SUPPORT_H
