// units2_test/test_units.h - units that exist only for tests, and a guard that
// makes them current (test-only; never installed)
//
// The shipped database holds no test units. A test that needs them reads the
// built-in database plus the lines below and makes that the units service's
// context for as long as the guard lives, so that expressions built with the
// default ContextGetter, and the kernel's delta lookup, see the test units:
//
//   TEST(NonaffineUnitConversion, DeltaUnitWithAnotherScaleIsNotUsed) {
//     const units2_test::ScopedContext units(units2_test::test_context());
//     EXPECT_EQ(ps2dravik_nonaffine_unit_conversion(Expr(u"tstU"), true), u"tstU");
//   }

#ifndef UNITS2_TEST_TEST_UNITS_H
#define UNITS2_TEST_TEST_UNITS_H

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "units2/core/context.h"

namespace units2_test {

/// Point scales whose delta twins each break one of the properties that make
/// a twin interchangeable with its unit: deltatstU has twice the scale of
/// tstU, deltatstV measures another quantity, and deltatstW has an offset of
/// its own.
inline constexpr std::string_view test_unit_lines =
    "unit    tstU        1         K                 offset=100\n"
    "unit    deltatstU   2         K\n"
    "unit    tstV        1         K                 offset=50\n"
    "unit    deltatstV   1         m\n"
    "unit    tstW        1         K                 offset=10\n"
    "unit    deltatstW   1         K                 offset=20\n";

/// The built-in database followed by test_unit_lines, read once per process.
inline std::shared_ptr<const units2::core::Context> test_context() {
  static const std::shared_ptr<const units2::core::Context> context = units2::core::Context::parse(
      std::string(units2::core::Context::builtin_text()) + "\n" + std::string(test_unit_lines),
      "units.txt with test units");
  return context;
}

/// Makes `context` the units service's current context for the guard's
/// lifetime and then puts back the one it replaced. Guards nest; they are
/// meant for one test at a time, not for threads that race each other.
class ScopedContext {
 public:
  explicit ScopedContext(std::shared_ptr<const units2::core::Context> context)
      : previous_(units2::core::get_service()->set_context(std::move(context))) {}
  ScopedContext(const ScopedContext&) = delete;
  ScopedContext& operator=(const ScopedContext&) = delete;
  ~ScopedContext() { (void)units2::core::get_service()->set_context(std::move(previous_)); }

 private:
  std::shared_ptr<const units2::core::Context> previous_;
};

}  // namespace units2_test

#endif  // UNITS2_TEST_TEST_UNITS_H
