#include "msgcat/catalogue.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <locale>
#include <set>

namespace {

resource_core::BaseMsgID id_of(std::string catalogue, std::string key,
                               std::vector<resource_core::BaseMsgID::Argument> args = {}) {
  return resource_core::BaseMsgID{std::move(args), std::move(catalogue), std::move(key)};
}

TEST(Catalogue, LanguageOfLocaleNames) {
  EXPECT_EQ(msgcat::language_of("de_DE.UTF-8"), "de");
  EXPECT_EQ(msgcat::language_of("de"), "de");
  EXPECT_EQ(msgcat::language_of("en_US.utf8"), "en");
  EXPECT_EQ(msgcat::language_of("C"), "en");
  EXPECT_EQ(msgcat::language_of("POSIX"), "en");
  EXPECT_EQ(msgcat::language_of(""), "en");
  EXPECT_EQ(msgcat::language_of("C.UTF-8"), "en");
  EXPECT_EQ(msgcat::language_of("LC_CTYPE=en_US.UTF-8;LC_MESSAGES=de_DE.UTF-8;LC_TIME=C"), "de");
}

TEST(Catalogue, EveryGermanTextHasAnEnglishOne) {
  std::set<std::pair<std::string, std::string>> english;
  for (const auto& e : msgcat::entries()) {
    if (e.language == "en") english.emplace(e.catalogue, e.key);
  }
  ASSERT_FALSE(english.empty());
  for (const auto& e : msgcat::entries()) {
    EXPECT_TRUE(english.count({e.catalogue, e.key}))
        << e.catalogue << ":" << e.key << " " << e.language;
  }
}

TEST(Catalogue, FormatsTextArguments) {
  auto id =
      id_of("kalder:common:ui:core:kernel:path", "InvalidNodePath", {std::u16string(u"/mass")});
  EXPECT_EQ(msgcat::format(id, "C"), u"'/mass' is not a valid node path.");
  EXPECT_EQ(msgcat::format(id, "de_DE.UTF-8"), u"'/mass' ist kein g\u00fcltiger Knotenpfad.");
}

TEST(Catalogue, FallsBackToEnglish) {
  auto id = id_of("kalder:common:ui:core:kernel:path", "InvalidNodePath", {std::u16string(u"x")});
  EXPECT_EQ(msgcat::format(id, "fr_FR.UTF-8"), msgcat::format(id, "en_US.UTF-8"));
}

TEST(Catalogue, FormatsUnsignedCountsExactlyWithoutGrouping) {
  auto id = id_of("kalder:common:ui:core:kernel:data_struct", "InvalidArrayArguments",
                  {std::numeric_limits<std::uint64_t>::max(), std::u16string(u"2x3")});
  EXPECT_EQ(msgcat::format(id, "C"),
            u"18446744073709551615 elements do not fill an array of size 2x3.");
  id.arguments[0] = std::uint64_t{12345};
  EXPECT_EQ(msgcat::format(id, "de_DE.UTF-8"),
            u"12345 Elemente f\u00fcllen kein Feld der Gr\u00f6\u00dfe 2x3.");
}

TEST(Catalogue, UnknownIdentifierIsNeverEmpty) {
  EXPECT_EQ(msgcat::format(id_of("a:b", "C"), "C"), u"a:b:C");
  EXPECT_EQ(msgcat::format(id_of("a:b", "C", {std::int64_t{-3}, std::u16string(u"t")}), "C"),
            u"a:b:C(-3, t)");
}

TEST(Catalogue, FindPatternIsExactPerLanguage) {
  EXPECT_TRUE(
      msgcat::find_pattern("kalder:common:ui:core:kernel:units", "UnitConversionUnknown", "de"));
  EXPECT_FALSE(
      msgcat::find_pattern("kalder:common:ui:core:kernel:units", "UnitConversionUnknown", "fr"));
  EXPECT_FALSE(msgcat::find_pattern("kalder:common:ui:core:kernel:units", "NoSuchKey", "en"));
}

TEST(Catalogue, GlobalLocaleSelectsTheLanguage) {
  auto id = id_of("kalder:common:ui:core:kernel:units", "UnitConversionUnknown");
  EXPECT_EQ(msgcat::format(id), u"unknown");
  const std::locale old = std::locale::global(std::locale("de_DE.UTF-8"));
  const std::u16string german = msgcat::format(id);
  std::locale::global(old);
  EXPECT_EQ(german, u"unbekannt");
}

// The usual C idiom, setlocale without std::locale::global, selects the
// language too, so messages agree with the narrow bytes the same setting gives.
TEST(Catalogue, CLibraryLocaleSelectsTheLanguage) {
  auto id = id_of("kalder:common:ui:core:kernel:units", "UnitConversionUnknown");
  const std::string old = std::setlocale(LC_ALL, nullptr);
  if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "no de_DE.UTF-8 locale";
  const std::u16string german = msgcat::format(id);
  const std::string name = msgcat::global_locale_name();
  std::setlocale(LC_ALL, old.c_str());
  EXPECT_EQ(german, u"unbekannt");
  EXPECT_EQ(msgcat::language_of(name), "de");
  EXPECT_EQ(msgcat::format(id), u"unknown");
}

}  // namespace
