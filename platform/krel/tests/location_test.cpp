#include "krel/location.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(Location, TextFormIsFileLineColumn) {
  krel::Location loc(u"model/plant.model", 12, 5);
  EXPECT_EQ(loc.file(), u"model/plant.model");
  EXPECT_EQ(loc.line(), 12u);
  EXPECT_EQ(loc.column(), 5u);
  EXPECT_EQ(krel::to_user_string(loc), u"model/plant.model:12:5");
  std::ostringstream os;
  os << loc;
  EXPECT_EQ(os.str(), "model/plant.model:12:5");
}

TEST(Location, EqualityComparesAllFields) {
  EXPECT_EQ(krel::Location(), krel::Location(u"", 0, 0));
  EXPECT_FALSE(krel::Location(u"a", 1, 2) == krel::Location(u"a", 1, 3));
  EXPECT_FALSE(krel::Location(u"a", 1, 2) == krel::Location(u"b", 1, 2));
}

TEST(DravikId, HoldsItsText) {
  krel::DravikId id(u"model/Subsystem/Gain");
  EXPECT_EQ(id.ustring(), u"model/Subsystem/Gain");
  EXPECT_EQ(id, krel::DravikId(u"model/Subsystem/Gain"));
  EXPECT_FALSE(id == krel::DravikId());
  EXPECT_EQ(krel::DravikId().ustring(), u"");
}

}  // namespace
