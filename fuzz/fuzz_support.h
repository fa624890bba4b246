// fuzz/fuzz_support.h - what the kernel's fuzz targets share
//
// Every target turns the fuzzer's bytes into UTF-16 text in two ways: as
// UTF-8 (so a readable seed such as "a//b" reaches the parser as written) and
// as little-endian pairs of bytes taken as code units (so lone surrogates and
// every other code unit are reached too). It then checks properties the
// library promises, and aborts with a description of the input when one does
// not hold; a crash alone is not the only finding.
//
//   extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
//     for (const ui::core::ustring& text : fuzz::texts_of(data, size)) {
//       fuzz::require(ui::core::escape_xml(text).size() >= text.size(), "grows", text);
//     }
//     return 0;
//   }

#ifndef UI_CORE_FUZZ_FUZZ_SUPPORT_H
#define UI_CORE_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "krel/message.h"
#include "krel/ustring.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

using krel::ustring;

/// The code units of `text` as hexadecimal, for reports: "0061 002F D800".
inline std::string dump(const ustring& text) {
  std::string out;
  char buffer[8];
  for (std::size_t i = 0; i < text.size() && i < 512; ++i) {
    std::snprintf(buffer, sizeof buffer, "%s%04X", i == 0 ? "" : " ", unsigned{text[i]});
    out += buffer;
  }
  if (text.size() > 512) out += " ...";
  return out;
}

/// Reports a broken property and stops the run, so that the fuzzer keeps the
/// input as a crash and the corpus replay fails.
[[noreturn]] inline void fail(const char* property, const ustring& input) {
  std::fprintf(stderr, "property violated: %s\ninput (%zu code units): %s\n", property,
               input.size(), dump(input).c_str());
  std::fflush(stderr);
  std::abort();
}

inline void require(bool holds, const char* property, const ustring& input) {
  if (!holds) fail(property, input);
}

/// The bytes read as UTF-8 (invalid sequences become U+FFFD).
inline ustring text_from_utf8(const std::uint8_t* data, std::size_t size) {
  return krel::utf8_string_to_ustring(std::string_view(reinterpret_cast<const char*>(data), size));
}

/// The bytes read as little-endian UTF-16 code units; an odd last byte is
/// dropped. Nothing is validated, so lone surrogates come through.
inline ustring text_from_units(const std::uint8_t* data, std::size_t size) {
  ustring text;
  text.reserve(size / 2);
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    text.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
  }
  return text;
}

/// Both readings of the input, the UTF-8 one first.
inline std::vector<ustring> texts_of(const std::uint8_t* data, std::size_t size) {
  return {text_from_utf8(data, size), text_from_units(data, size)};
}

/// `text` cut at every line feed, at most `limit` pieces (the last piece keeps
/// the rest). Targets that compare values use the pieces as separate inputs.
inline std::vector<ustring> pieces_of(const ustring& text, std::size_t limit) {
  std::vector<ustring> pieces;
  std::size_t start = 0;
  while (pieces.size() + 1 < limit) {
    const std::size_t end = text.find(u'\n', start);
    if (end == ustring::npos) break;
    pieces.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

/// What a call ended with: the message it threw, if any. Any exception other
/// than krel::MessageException is a broken property: parsers refuse text only
/// with a message (memory does not run out under the fuzzer's limits).
template <class Fn>
std::optional<krel::MessageException> message_thrown_by(Fn&& fn, const ustring& input) {
  try {
    std::forward<Fn>(fn)();
  } catch (const krel::MessageException& e) {
    return e;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "unexpected %s: %s\n", typeid(e).name(), e.what());
    fail("only krel::MessageException may escape", input);
  } catch (...) {
    fail("only krel::MessageException may escape", input);
  }
  return std::nullopt;
}

/// True when the message of `e` carries exactly one argument, the text `argument`.
inline bool has_text_argument(const krel::MessageException& e, const ustring& argument) {
  const auto& arguments = e.message().id().arguments;
  return arguments.size() == 1 && arguments[0].index() == 2 &&
         std::get<2>(arguments[0]) == argument;
}

/// Runs `fn`, which must not throw at all.
template <class Fn>
void require_no_throw(Fn&& fn, const char* property, const ustring& input) {
  try {
    std::forward<Fn>(fn)();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "threw %s: %s\n", typeid(e).name(), e.what());
    fail(property, input);
  } catch (...) {
    fail(property, input);
  }
}

/// The POSIX white-space classes the kernel cleans: space, \t, \n, \v, \f, \r.
[[nodiscard]] constexpr bool is_space_unit(char16_t c) noexcept {
  return c == u' ' || (c >= u'\t' && c <= u'\r');
}

/// `text` with every POSIX white-space unit replaced by a space.
inline ustring cleaned(ustring text) {
  for (char16_t& c : text) {
    if (is_space_unit(c)) c = u' ';
  }
  return text;
}

/// `text` as UTF-16, so targets can feed narrow literals to the library.
inline ustring u(std::string_view ascii) {
  return ustring(ascii.begin(), ascii.end());
}

}  // namespace fuzz

#endif  // UI_CORE_FUZZ_FUZZ_SUPPORT_H
