#include "ui/core/enumerations.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "expect_error.h"
#include "expect_message.h"
#include "msgcat/catalogue.h"

namespace {

using namespace ui::core;
using test_support::text_arg;
using test_support::throws_error;
using test_support::throws_message;

// The underlying types and values are part of the interface: other
// components store them as plain integers.
static_assert(std::is_same_v<std::underlying_type_t<Access>, std::uint32_t>);
static_assert(static_cast<std::uint32_t>(Access::internal) == 0);
static_assert(static_cast<std::uint32_t>(Access::external) == 1);
static_assert(std::is_same_v<std::underlying_type_t<UnitConversionType>, std::int32_t>);
static_assert(static_cast<std::int32_t>(UnitConversionType::absolute) == 0);
static_assert(static_cast<std::int32_t>(UnitConversionType::relative) == 1);
static_assert(static_cast<std::int32_t>(UnitConversionType::unknown) == -1);
static_assert(static_cast<std::uint32_t>(UnitConversionType::unknown) == 0xFFFFFFFFu);

// So are the argument forms: Access by const reference, UnitConversionType by
// value. Each cast below names exactly one overload or fails to compile.
static_assert(std::is_same_v<decltype(static_cast<ustring (*)(const Access&)>(&to_user_string)),
                             ustring (*)(const Access&)>);
static_assert(
    std::is_same_v<decltype(static_cast<ustring (*)(UnitConversionType)>(&to_user_string)),
                   ustring (*)(UnitConversionType)>);
static_assert(std::is_same_v<decltype(&printAccess),
                             void (*)(std::ostream&, const Access&, const std::string&)>);
static_assert(std::is_same_v<decltype(&to_access), Access (*)(const ustring&)>);
static_assert(
    std::is_same_v<decltype(&to_unit_conversion_type), UnitConversionType (*)(const ustring&)>);
static_assert(std::is_same_v<decltype(static_cast<std::ostream& (*)(std::ostream&, const Access&)>(
                                 &ui::core::operator<<)),
                             std::ostream& (*)(std::ostream&, const Access&)>);
static_assert(
    std::is_same_v<decltype(static_cast<std::ostream& (*)(std::ostream&, UnitConversionType)>(
                       &ui::core::operator<<)),
                   std::ostream& (*)(std::ostream&, UnitConversionType)>);

// Sets the process's global locale for one test and puts the old one back,
// also when the test fails half-way.
class GlobalLocale {
 public:
  explicit GlobalLocale(const char* name) : old_(std::locale::global(std::locale(name))) {}
  ~GlobalLocale() { std::locale::global(old_); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

 private:
  std::locale old_;
};

resource_core::BaseMsgID unknown_message_id() {
  resource_core::BaseMsgID id;
  id.catalogue = "kalder:common:ui:core:kernel:units";
  id.key = "UnitConversionUnknown";
  return id;
}

// ---- Access -------------------------------------------------------------

TEST(Access, UserTextsAreTheLowerCaseNames) {
  EXPECT_EQ(to_user_string(Access::internal), u"internal");
  EXPECT_EQ(to_user_string(Access::external), u"external");
}

TEST(Access, ToAccessReadsBothUserTexts) {
  EXPECT_EQ(to_access(u"internal"), Access::internal);
  EXPECT_EQ(to_access(u"external"), Access::external);
}

TEST(Access, ToAccessInvertsToUserString) {
  for (Access a : {Access::internal, Access::external}) EXPECT_EQ(to_access(to_user_string(a)), a);
}

TEST(Access, ToAccessRefusesEveryOtherTextWithTheTextUnchanged) {
  const std::vector<ustring> refused = {u"Internal",
                                        u"External",
                                        u"INTERNAL",
                                        u" internal",
                                        u"internal ",
                                        u" external",
                                        u"external ",
                                        u"",
                                        u"intern",
                                        u"externa",
                                        u"internals",
                                        u"\tinternal",
                                        u"internal\n",
                                        ustring(u"internal\0", 9),
                                        u"int\u0435rnal" /* Cyrillic e */,
                                        u"internal/external"};
  for (const ustring& text : refused) {
    EXPECT_TRUE(
        throws_error([&] { (void)to_access(text); }, ErrorId::InvalidAccess, {text_arg(text)}))
        << krel::ustring_to_utf8_string(text);
  }
}

TEST(Access, RefusalIsInTheAccessCatalogue) {
  EXPECT_TRUE(throws_message([] { (void)to_access(u"Internal"); },
                             "kalder:common:ui:core:kernel:access", "InvalidAccess",
                             {text_arg(u"Internal")}));
}

TEST(Access, RefusalTextNamesTheRejectedInput) {
  try {
    (void)to_access(u"sideways");
    FAIL() << "to_access accepted \"sideways\"";
  } catch (const krel::MessageException& e) {
    EXPECT_NE(std::string(e.what()).find("sideways"), std::string::npos) << e.what();
  }
}

TEST(PrintAccess, WritesLabelImmediatelyFollowedByValue) {
  std::ostringstream os;
  printAccess(os, Access::external, "access=");
  EXPECT_EQ(os.str(), "access=external");
}

TEST(PrintAccess, WithEmptyLabelWritesTheValueAlone) {
  std::ostringstream os;
  printAccess(os, Access::internal, "");
  EXPECT_EQ(os.str(), "internal");
}

TEST(PrintAccess, CopiesANarrowLabelByteForByte) {
  std::ostringstream os;
  printAccess(os, Access::internal, "Zugriff \xc3\xa4: ");
  EXPECT_EQ(os.str(), "Zugriff \xc3\xa4: internal");
}

TEST(PrintAccess, FieldWidthPadsTheLabelOnlyThenIsReset) {
  std::ostringstream right;
  right << std::setfill('*') << std::setw(10);
  printAccess(right, Access::external, "acc:");
  EXPECT_EQ(right.str(), "******acc:external");
  EXPECT_EQ(right.width(), 0);

  std::ostringstream left;
  left << std::left << std::setfill('.') << std::setw(8);
  printAccess(left, Access::internal, "a");
  EXPECT_EQ(left.str(), "a.......internal");
  EXPECT_EQ(left.width(), 0);
}

TEST(PrintAccess, LabelLongerThanWidthIsNotCut) {
  std::ostringstream os;
  os << std::setw(2);
  printAccess(os, Access::internal, "label:");
  EXPECT_EQ(os.str(), "label:internal");
}

TEST(PrintAccess, LeavesFillAndAdjustmentAsTheCallerSetThem) {
  std::ostringstream os;
  os << std::left << std::setfill('#');
  printAccess(os, Access::external, "x");
  EXPECT_EQ(os.fill(), '#');
  EXPECT_TRUE(os.flags() & std::ios_base::left);
  os << std::setw(3) << "y";
  EXPECT_EQ(os.str(), "xexternaly##");
}

TEST(AccessStream, WritesOnlyTheUserText) {
  std::ostringstream os;
  os << Access::internal;
  EXPECT_EQ(os.str(), "internal");
  std::ostringstream chained;
  chained << '[' << Access::external << '|' << Access::internal << ']';
  EXPECT_EQ(chained.str(), "[external|internal]");
}

TEST(AccessStream, FieldWidthPadsTheEmptyLabelBeforeTheValue) {
  // The stream operator is printAccess with an empty label, so a width set
  // before it is spent on that label.
  std::ostringstream os;
  os << std::setfill('-') << std::setw(4) << Access::external << std::setw(3) << "z";
  EXPECT_EQ(os.str(), "----external--z");
}

TEST(AccessStream, ReturnsTheSameStream) {
  std::ostringstream os;
  std::ostream& returned = (os << Access::internal);
  EXPECT_EQ(&returned, &os);
}

// ---- UnitConversionType -------------------------------------------------

TEST(UnitConversionType, KnownUserTextsAreTheLowerCaseNames) {
  EXPECT_EQ(to_user_string(UnitConversionType::absolute), u"absolute");
  EXPECT_EQ(to_user_string(UnitConversionType::relative), u"relative");
}

TEST(UnitConversionType, UnknownUserTextIsTheEnglishCatalogueText) {
  const ustring text = to_user_string(UnitConversionType::unknown);
  EXPECT_EQ(text, msgcat::format(unknown_message_id(), "en"));
  EXPECT_EQ(text, u"unknown");
}

TEST(UnitConversionType, UnknownUserTextFollowsTheGlobalLocale) {
  {
    GlobalLocale german("de_DE.UTF-8");
    const ustring text = to_user_string(UnitConversionType::unknown);
    EXPECT_EQ(text, msgcat::format(unknown_message_id(), "de"));
    EXPECT_EQ(text, u"unbekannt");
    // The two named kinds are not translated.
    EXPECT_EQ(to_user_string(UnitConversionType::relative), u"relative");
  }
  EXPECT_EQ(to_user_string(UnitConversionType::unknown), u"unknown");
}

TEST(UnitConversionType, UnknownUserTextNeverThrows) {
  EXPECT_NO_THROW((void)to_user_string(UnitConversionType::unknown));
  GlobalLocale german("de_DE.UTF-8");
  EXPECT_NO_THROW((void)to_user_string(UnitConversionType::unknown));
}

TEST(UnitConversionType, ParsesBothKnownTexts) {
  EXPECT_EQ(to_unit_conversion_type(u"absolute"), UnitConversionType::absolute);
  EXPECT_EQ(to_unit_conversion_type(u"relative"), UnitConversionType::relative);
}

TEST(UnitConversionType, ParsingInvertsToUserStringForKnownKinds) {
  for (UnitConversionType t : {UnitConversionType::absolute, UnitConversionType::relative}) {
    EXPECT_EQ(to_unit_conversion_type(to_user_string(t)), t);
  }
}

TEST(UnitConversionType, OtherTextsQuietlyGiveUnknown) {
  const std::vector<ustring> others = {u"Relative",
                                       u"Absolute",
                                       u"RELATIVE",
                                       u"",
                                       u" relative",
                                       u"relative ",
                                       u"relativ",
                                       u"relatives",
                                       u"unknown",
                                       u"delta",
                                       ustring(u"absolute\0", 9)};
  for (const ustring& text : others) {
    UnitConversionType parsed = UnitConversionType::absolute;
    EXPECT_NO_THROW(parsed = to_unit_conversion_type(text)) << krel::ustring_to_utf8_string(text);
    EXPECT_EQ(parsed, UnitConversionType::unknown) << krel::ustring_to_utf8_string(text);
  }
}

TEST(UnitConversionType, KnownTextsParseTheSameUnderAnotherLocale) {
  GlobalLocale german("de_DE.UTF-8");
  EXPECT_EQ(to_unit_conversion_type(u"absolute"), UnitConversionType::absolute);
  EXPECT_EQ(to_unit_conversion_type(u"relative"), UnitConversionType::relative);
  EXPECT_EQ(to_unit_conversion_type(u"unbekannt"), UnitConversionType::unknown);
}

TEST(UnitConversionTypeStream, WritesTheUserTexts) {
  std::ostringstream os;
  os << UnitConversionType::absolute << ',' << UnitConversionType::relative << ','
     << UnitConversionType::unknown;
  EXPECT_EQ(os.str(), "absolute,relative,unknown");
}

TEST(UnitConversionTypeStream, WritesTheTranslatedUnknownText) {
  GlobalLocale german("de_DE.UTF-8");
  std::ostringstream os;
  os << UnitConversionType::unknown;
  EXPECT_EQ(os.str(), krel::ustring_to_local_encoded_string(msgcat::format(unknown_message_id())));
  EXPECT_EQ(os.str(), "unbekannt");
}

TEST(UnitConversionTypeStream, IsAFormattedInsertion) {
  std::ostringstream right;
  right << std::setw(10) << UnitConversionType::relative << std::setw(3) << "z";
  EXPECT_EQ(right.str(), "  relative  z");
  std::ostringstream left;
  left << std::left << std::setfill('_') << std::setw(9) << UnitConversionType::unknown << '|';
  EXPECT_EQ(left.str(), "unknown__|");
}

TEST(UnitConversionTypeStream, ReturnsTheSameStream) {
  std::ostringstream os;
  std::ostream& returned = (os << UnitConversionType::absolute);
  EXPECT_EQ(&returned, &os);
}

}  // namespace
