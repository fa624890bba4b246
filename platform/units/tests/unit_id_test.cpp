#include "units2/core/unit_id.h"

#include <gtest/gtest.h>

#include <string>

#include "expect_message.h"
#include "value_checks.h"

namespace {

using units2::core::UnitId;
using units2::core::detail::CheckUnitId;

TEST(CheckUnitId, ReturnsUnitNamesUnchanged) {
  for (const std::string text : {"m", "kg", "degC", "deltadegC", "_x", "m2", "A_b_3"}) {
    EXPECT_EQ(CheckUnitId()(text), text);
  }
}

TEST(CheckUnitId, RejectsTextThatIsNotAUnitName) {
  for (const std::string text :
       {"", "1m", "deg C", "m^2", "kg*m", "-", "d\xc3\xa9g", "m/s", "(m)"}) {
    EXPECT_TRUE(test_support::throws_message([&] { (void)CheckUnitId()(text); }, "units2:core",
                                             "InvalidUnitId", {krel::utf8_string_to_ustring(text)}))
        << text;
  }
}

TEST(CheckUnitId, AcceptsDeltaPrefixedIds) {
  // The kernel builds "delta" + id and passes it through the check.
  EXPECT_EQ(CheckUnitId()("delta" + std::string("degF")), "deltadegF");
}

TEST(UnitId, HoldsTheTextItWasBuiltFrom) {
  const std::string text = "degC";
  const UnitId id(text.data(), text.size());
  EXPECT_EQ(std::string(id.data(), id.size()), "degC");
  EXPECT_EQ(id.view(), "degC");
  EXPECT_EQ(id.str(), "degC");
}

TEST(UnitId, MakeRefusesWhatTheCheckRefuses) {
  EXPECT_TRUE(UnitId::make("km").has_value());
  EXPECT_FALSE(UnitId::make("k m").has_value());
  EXPECT_FALSE(UnitId::make("").has_value());
  EXPECT_FALSE(UnitId::make("2").has_value());
}

TEST(UnitId, CopiesShareTheText) {
  const UnitId a("metre");
  const UnitId b = a;
  EXPECT_EQ(a.data(), b.data());
}

int compare_ids(const UnitId& a, const UnitId& b) {
  return a == b ? 0 : (a < b ? 1 : 2);
}
std::size_t hash_id(const UnitId& id) {
  return hash_value(id);
}

TEST(UnitId, EqualityOrderAndHashAgree) {
  test_support::expect_consistent(UnitId("N"), UnitId("m"), 1, compare_ids, hash_id);
  test_support::expect_consistent(UnitId("mol"), UnitId("m"), 2, compare_ids, hash_id);
  test_support::expect_consistent(UnitId("kg"), UnitId(std::string("kg")), 0, compare_ids, hash_id);
}

TEST(UnitId, OrdersByBytesWithUpperCaseFirst) {
  EXPECT_LT(UnitId("N"), UnitId("m"));
  EXPECT_LT(UnitId("kg"), UnitId("m"));
  EXPECT_LT(UnitId("m"), UnitId("mol"));
  EXPECT_EQ(UnitId("m"), UnitId(std::string("m")));
  EXPECT_NE(UnitId("m"), UnitId("M"));
  EXPECT_EQ(hash_value(UnitId("kg")), hash_value(UnitId(std::string("kg"))));
}

}  // namespace
