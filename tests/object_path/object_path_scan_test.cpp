// The code-unit loops behind object path parsing, in both versions (the SSE2
// one where the target has it, and the portable one), held against each other
// and against plain reference loops; and the path parsers held against a
// reference parser that cuts segments one code unit at a time, as the grammar
// in ui/core/object_path.h reads, and makes each element with make_element().

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "common/scan_impl.h"
#include "expect_error.h"
#include "krel/ustring.h"
#include "object_path/object_path_impl.h"
#include "object_path/slash_runs_impl.h"
#include "ui/core/object_path.h"

namespace {

using ui::core::ErrorId;
using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ustring;
namespace detail = ui::core::detail;

using SlashBits = std::uint64_t (*)(const char16_t*, const char16_t*, std::size_t);
using SlashFinder = const char16_t* (*)(const char16_t*, const char16_t*, const char16_t*);
using CleanCopy = void (*)(const char16_t*, std::size_t, char16_t*);

template <class Fn>
struct Version {
  const char* name;
  Fn fn;
};

using detail::PortableScan;
using detail::SlashUnit;

std::vector<Version<SlashBits>> slash_bits_versions() {
  std::vector<Version<SlashBits>> versions{
      {"portable", &detail::unit_bits<PortableScan, SlashUnit>}};
#if UI_CORE_HAVE_SSE2
  versions.push_back({"sse2", &detail::unit_bits<detail::Sse2Scan, SlashUnit>});
#endif
  return versions;
}

std::vector<Version<SlashFinder>> slash_finders() {
  std::vector<Version<SlashFinder>> versions{
      {"portable", &detail::find_first<PortableScan, SlashUnit>}};
#if UI_CORE_HAVE_SSE2
  versions.push_back({"sse2", &detail::find_first<detail::Sse2Scan, SlashUnit>});
#endif
  return versions;
}

std::vector<Version<CleanCopy>> clean_copies() {
  std::vector<Version<CleanCopy>> versions{{"portable", &PortableScan::copy_cleaned}};
#if UI_CORE_HAVE_SSE2
  versions.push_back({"sse2", &detail::Sse2Scan::copy_cleaned});
#endif
  return versions;
}

// A random text over `units`, of the given length.
ustring random_text(std::mt19937_64& rng, const std::vector<char16_t>& units, std::size_t length) {
  ustring text;
  for (std::size_t i = 0; i < length; ++i) text += units[rng() % units.size()];
  return text;
}

// Slashes, often in runs, among a few other code units.
const std::vector<char16_t> slashy_units = {u'/', u'/', u'/', u'a', u'b', u'/', u'1'};

TEST(ObjectPathScan, EveryVersionMarksTheSlashesOfEveryRange) {
  std::mt19937_64 rng(7001);
  for (const auto& version : slash_bits_versions()) {
    SCOPED_TRACE(version.name);
    for (int round = 0; round < 3000; ++round) {
      const ustring text = random_text(rng, slashy_units, rng() % 150);
      const char16_t* const floor = text.data();
      const std::size_t start = text.empty() ? 0 : rng() % (text.size() + 1);
      const std::size_t count = std::min<std::size_t>(text.size() - start, rng() % 65);
      std::uint64_t expected = 0;
      for (std::size_t k = 0; k < count; ++k) {
        if (text[start + k] == u'/') expected |= std::uint64_t{1} << k;
      }
      ASSERT_EQ(version.fn(floor, floor + start, count), expected)
          << "text length " << text.size() << ", start " << start << ", count " << count;
    }
  }
}

TEST(ObjectPathScan, EveryVersionFindsTheFirstSlash) {
  std::mt19937_64 rng(7002);
  const std::vector<char16_t> units = {u'a', u'a', u'a', u'a', u'a', u'a', u'/', u'\u2215'};
  for (const auto& version : slash_finders()) {
    SCOPED_TRACE(version.name);
    for (int round = 0; round < 3000; ++round) {
      const ustring text = random_text(rng, units, rng() % 60);
      const char16_t* const floor = text.data();
      const char16_t* const end = floor + text.size();
      const char16_t* const p = floor + (text.empty() ? 0 : rng() % (text.size() + 1));
      const char16_t* expected = p;
      while (expected != end && *expected != u'/') ++expected;
      ASSERT_EQ(version.fn(floor, p, end), expected)
          << "text length " << text.size() << ", start " << (p - floor);
    }
  }
}

TEST(ObjectPathScan, CleanedUnitIsASpaceExactlyForPosixWhiteSpace) {
  for (std::uint32_t u = 0; u <= 0xFFFF; ++u) {
    const auto c = static_cast<char16_t>(u);
    ASSERT_EQ(detail::cleaned_unit(c), krel::is_posix_space(c) ? u' ' : c) << "code unit " << u;
  }
}

TEST(ObjectPathScan, EveryVersionCopiesWithWhiteSpaceCleaned) {
  std::mt19937_64 rng(7003);
  // The white space and its neighbours in both directions.
  const std::vector<char16_t> units = {u'\b', u'\t',     u'\n',     u'\v',     u'\f',
                                       u'\r', u'\x0e',   u' ',      u'!',      u'x',
                                       u'/',  u'\u0089', u'\u2009', u'\xd800', u'\uffff'};
  for (const auto& version : clean_copies()) {
    SCOPED_TRACE(version.name);
    for (std::size_t length = 0; length <= 40; ++length) {
      for (int round = 0; round < 50; ++round) {
        const ustring text = random_text(rng, units, length);
        // Guard units on both sides catch writes outside [0, length).
        std::vector<char16_t> out(length + 2, u'#');
        version.fn(text.data(), length, out.data() + 1);
        ASSERT_EQ(out.front(), u'#');
        ASSERT_EQ(out.back(), u'#');
        for (std::size_t i = 0; i < length; ++i) {
          ASSERT_EQ(out[i + 1], krel::is_posix_space(text[i]) ? u' ' : text[i])
              << "length " << length << ", position " << i;
        }
      }
    }
  }
}

// The separators as the grammar places them, found one code unit at a time:
// the cutting loop of the parsers, written the plain way.
struct Cut {
  std::vector<std::size_t> separators;
  bool last_reaches_end = false;
};

std::size_t reference_segment_end(const ustring& text, std::size_t p) {
  const std::size_t n = text.size();
  for (std::size_t i = p; i < n; ++i) {
    if (text[i] != u'/') continue;
    if (i + 1 == n) return i;
    std::size_t j = i;
    while (j < n && text[j] == u'/') ++j;
    if (j == n || (j - i) % 2 != 0) return i;
    i = j - 1;
  }
  return n;
}

TEST(ObjectPathScan, ScannerAndCountAgreeWithTheGrammarOnRandomTexts) {
  std::mt19937_64 rng(7004);
  for (int round = 0; round < 20000; ++round) {
    // Long enough to cross the 64-unit words, with long runs now and then.
    const std::vector<char16_t>& units =
        round % 3 == 0 ? std::vector<char16_t>{u'/', u'/', u'/', u'/', u'/', u'/', u'a'}
                       : slashy_units;
    const ustring text = random_text(rng, units, rng() % (round % 10 == 0 ? 400 : 140));
    const char16_t* const begin = text.data();
    const char16_t* const end = begin + text.size();
    SCOPED_TRACE(krel::ustring_to_utf8_string(text));

    // The reference: a separator is where a segment of the cutting loop ends
    // short of the end of the text; the run at a separator reaches the end
    // when only "/" follows it.
    Cut expected;
    for (std::size_t p = 0; p < text.size();) {
      const std::size_t e = reference_segment_end(text, p);
      if (e == text.size()) break;
      expected.separators.push_back(e);
      p = e + 1;
      if (text.find_first_not_of(u'/', e) == ustring::npos) {
        expected.last_reaches_end = true;
        break;  // the reference stops where the parsers stop
      }
    }

    Cut found;
    detail::SeparatorScanner scanner(begin, end);
    bool reaches_end = false;
    while (const char16_t* s = scanner.next(reaches_end)) {
      found.separators.push_back(static_cast<std::size_t>(s - begin));
      found.last_reaches_end = reaches_end;
      ASSERT_TRUE(!reaches_end ||
                  text.find_first_not_of(u'/', found.separators.back()) == ustring::npos);
    }
    ASSERT_EQ(found.separators, expected.separators);
    ASSERT_EQ(found.last_reaches_end, expected.last_reaches_end);
    ASSERT_EQ(detail::count_separators(begin, end), expected.separators.size());
  }
}

// The parsers as they were first written: cut a segment, make an element of
// it with make_element() (or with the name rule only), stop at the first
// segment that gives none.
struct Parsed {
  std::vector<ustring> elements;  // each element's text form
  std::vector<std::size_t> kinds;
  ustring rest;
  std::optional<ErrorId> error;
};

Parsed reference_parse(const ustring& text, bool names_only) {
  Parsed out;
  bool after_subscript = false;
  std::size_t p = 0;
  while (p < text.size()) {
    const std::size_t e = reference_segment_end(text, p);
    const ustring segment = text.substr(p, e - p);
    std::optional<ObjectPathElement> element;
    if (names_only) {
      if (auto name = ui::core::ObjectPathName::make(segment)) element = ObjectPathElement(*name);
    } else {
      element = ui::core::make_element(segment);
    }
    if (!element) {
      out.rest = text.substr(p);
      return out;
    }
    const bool is_subscript = element->id() == ObjectPathElement::subscript_kind;
    if (!names_only && is_subscript && after_subscript) {
      // The whole parse fails: no elements, no rest.
      Parsed failed;
      failed.error = ErrorId::InvalidObjectPath;
      return failed;
    }
    after_subscript = is_subscript;
    out.elements.push_back(ui::core::to_string(*element));
    out.kinds.push_back(element->id());
    p = e + 1;
  }
  return out;
}

template <class Parse>
Parsed run_parser(Parse&& parse) {
  Parsed out;
  try {
    auto [path, rest] = parse();
    for (const ObjectPathElement& e : path) {
      out.elements.push_back(ui::core::to_string(e));
      out.kinds.push_back(e.id());
    }
    out.rest = rest;
  } catch (const krel::MessageException& e) {
    for (ErrorId id : {ErrorId::InvalidObjectPath, ErrorId::InvalidNodePath}) {
      if (ui::core::is_error(e, id)) out.error = id;
    }
    if (!out.error) throw;
  }
  return out;
}

void expect_same(const Parsed& a, const Parsed& b) {
  EXPECT_EQ(a.elements, b.elements);
  EXPECT_EQ(a.kinds, b.kinds);
  EXPECT_EQ(a.rest, b.rest);
  EXPECT_EQ(a.error, b.error);
}

TEST(ObjectPathScan, ParsersAgreeWithTheReferenceParserOnRandomTexts) {
  std::mt19937_64 rng(7005);
  // Everything the grammar reacts to: slashes, digits (0 among them), commas,
  // white space, a non-ASCII blank and a fullwidth digit.
  const std::vector<char16_t> units = {u'/', u'/', u'/', u'/', u'a',  u'b',      u'1',
                                       u'2', u'0', u',', u' ', u'\t', u'\u00a0', u'\uff11'};
  for (int round = 0; round < 20000; ++round) {
    const ustring text = random_text(rng, units, rng() % (round % 20 == 0 ? 200 : 24));
    SCOPED_TRACE(krel::ustring_to_utf8_string(text));

    const Parsed partial = run_parser([&] { return ui::core::to_partial_path(text); });
    const Parsed expected = reference_parse(text, false);
    expect_same(partial, expected);

    // The complete parser: the same elements, or InvalidObjectPath.
    const Parsed complete = run_parser(
        [&] { return std::pair<ObjectPath, ustring>(ui::core::to_object_path(text), ustring()); });
    if (expected.error || !expected.rest.empty()) {
      EXPECT_EQ(complete.error, ErrorId::InvalidObjectPath);
    } else {
      expect_same(complete, expected);
    }

    const Parsed names = run_parser([&] { return ui::core::to_partial_name_path(text); });
    const Parsed expected_names = reference_parse(text, true);
    expect_same(names, expected_names);

    const Parsed name_path = run_parser(
        [&] { return std::pair<ObjectPath, ustring>(ui::core::to_name_path(text), ustring()); });
    if (!expected_names.rest.empty()) {
      EXPECT_EQ(name_path.error, ErrorId::InvalidNodePath);
    } else {
      expect_same(name_path, expected_names);
    }
    if (HasFailure()) return;
  }
}

TEST(ObjectPathScan, PathsOfManySegmentsParseLikeShortOnes) {
  // Far more segments than fit in one 64-unit word, with every kind of run.
  ustring text;
  std::vector<ustring> expected;
  for (int i = 0; i < 500; ++i) {
    if (i != 0) text += u'/';
    if (i % 4 == 3) {
      const ustring s = u"//" + krel::utf8_string_to_ustring(std::to_string(i)) + u", 2";
      text += s;
      expected.push_back(s);
    } else {
      const ustring n = u"n" + krel::utf8_string_to_ustring(std::to_string(i)) + u"//x\ty";
      text += n;
      expected.push_back(u"n" + krel::utf8_string_to_ustring(std::to_string(i)) + u"//x y");
    }
  }
  const ObjectPath path = ui::core::to_object_path(text + u"/");
  ASSERT_EQ(path.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(ui::core::to_string(path[i]), expected[i]) << "element " << i;
  }
}

TEST(ObjectPathScan, SubscriptsOfManyValuesParse) {
  // More values than the parser keeps on the stack.
  for (std::size_t count : {1u, 15u, 16u, 17u, 40u, 300u}) {
    ustring text = u"//";
    std::vector<unsigned long> values;
    for (std::size_t i = 0; i < count; ++i) {
      if (i != 0) text += (i % 2 != 0) ? u", " : u" ,";
      values.push_back(i + 1);
      text += krel::utf8_string_to_ustring(std::to_string(i + 1));
    }
    const auto parsed = ui::core::ObjectPathSubscript::make(text);
    ASSERT_TRUE(parsed.has_value()) << count;
    EXPECT_EQ(static_cast<std::vector<unsigned long>>(*parsed), values);
    EXPECT_EQ(parsed->size(), count);
    // One bad value at the end still refuses the whole text.
    EXPECT_FALSE(ui::core::ObjectPathSubscript::make(text + u", 0").has_value());
  }
}

}  // namespace
