// regression_test.cpp - inputs the fuzz targets found, kept as named tests
//
// Each test is one input on which a property of the library did not hold when
// it was found; the comment says what went wrong.

#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "krel/ustring.h"

namespace {

// Sets LC_CTYPE for the scope of one test.
class CtypeLocale {
 public:
  explicit CtypeLocale(const char* name) : saved_(std::setlocale(LC_CTYPE, nullptr)) {
    ok_ = std::setlocale(LC_CTYPE, name) != nullptr;
  }
  ~CtypeLocale() { std::setlocale(LC_CTYPE, saved_.c_str()); }
  CtypeLocale(const CtypeLocale&) = delete;
  CtypeLocale& operator=(const CtypeLocale&) = delete;
  [[nodiscard]] bool ok() const { return ok_; }

 private:
  std::string saved_;
  bool ok_ = false;
};

// Under the "C" locale, code points that Unicode calls default-ignorable
// (soft hyphen U+00AD, zero width space U+200B, word joiner U+2060,
// variation selector U+FE00, byte order mark U+FEFF) were dropped from the
// local encoding instead of being written as '?', so "a<U+00AD>b" came out as
// "ab" and text written to a terminal silently lost characters.
TEST(RegressionLocalEncoding, DefaultIgnorableCodePointsBecomeQuestionMarksUnderC) {
  const CtypeLocale c("C");
  ASSERT_TRUE(c.ok());
  for (const char16_t unit : {u'\u00AD', u'\u200B', u'\u2060', u'\uFE00', u'\uFEFF'}) {
    const krel::ustring text{u'a', unit, u'b'};
    EXPECT_EQ(krel::ustring_to_local_encoded_string(text), "a?b")
        << "code point U+" << std::hex << static_cast<unsigned>(unit);
  }
}

// The same code points outside the default-ignorable set were always right;
// this pins down that a fix keeps them so.
TEST(RegressionLocalEncoding, OtherNonAsciiCodePointsBecomeQuestionMarksUnderC) {
  const CtypeLocale c("C");
  ASSERT_TRUE(c.ok());
  EXPECT_EQ(krel::ustring_to_local_encoded_string(u"a\u00E9\U0001F600b"), "a??b");
}

}  // namespace
