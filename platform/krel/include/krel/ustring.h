// krel/ustring.h - the foundation library's text type and its conversions
//
// Text handed between the host tool's libraries is UTF-16 (`ustring`, one
// char16_t per code unit). This header converts it to and from UTF-8 and the
// narrow encoding of the C library's current LC_CTYPE locale, and offers the
// small narrow-string helpers (tokenize, trim) that parsers share.
//
//   krel::ustring u = krel::utf8_string_to_ustring("Gr\xc3\xbc\xc3\x9f" "e");
//   std::string s = krel::ustring_to_local_encoded_string(u);  // "Gr??e" under "C"

#ifndef KREL_USTRING_H
#define KREL_USTRING_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace krel {

using ustring = std::basic_string<char16_t>;

/// UTF-16 to UTF-8. Lossless for valid text; a lone surrogate becomes U+FFFD.
[[nodiscard]] std::string ustring_to_utf8_string(const ustring& text);
[[nodiscard]] std::string ustring_to_utf8_string(std::u16string_view text);
/// A zero-terminated text, such as a literal u"...", which would otherwise
/// convert equally well to either of the two above.
[[nodiscard]] inline std::string ustring_to_utf8_string(const char16_t* text) {
  return ustring_to_utf8_string(std::u16string_view(text));
}

/// UTF-8 to UTF-16. Lossless for valid text; each invalid sequence becomes U+FFFD.
[[nodiscard]] ustring utf8_string_to_ustring(const std::string& text);
[[nodiscard]] ustring utf8_string_to_ustring(std::string_view text);
/// A zero-terminated text, such as a literal "...", which would otherwise
/// convert equally well to either of the two above.
[[nodiscard]] inline ustring utf8_string_to_ustring(const char* text) {
  return utf8_string_to_ustring(std::string_view(text));
}

/// How many bytes a UTF-8 sequence whose first byte is `lead` claims: 1 for
/// ASCII, 2 to 4 for a lead byte (0xC2 to 0xF4), 0 for a byte that cannot
/// start a sequence (a continuation byte, 0xC0, 0xC1, or 0xF5 and above).
[[nodiscard]] std::size_t utf8_claimed_length(unsigned char lead) noexcept;

/// The length (1 to 4) of the well-formed UTF-8 sequence at the start of
/// `bytes`, or 0 when `bytes` is empty or does not start with one. Well-formed
/// follows the Unicode table of well-formed byte sequences: no overlong form,
/// no surrogate, nothing above U+10FFFF, and no sequence cut short.
[[nodiscard]] std::size_t utf8_sequence_length(std::string_view bytes) noexcept;

/// The offset of the first byte of `bytes` that does not start a well-formed
/// UTF-8 sequence, or std::string_view::npos when all of `bytes` is valid
/// UTF-8. Text that passes converts to UTF-16 and back unchanged.
[[nodiscard]] std::size_t first_invalid_utf8(std::string_view bytes) noexcept;

/// UTF-16 to the narrow encoding of the current LC_CTYPE locale (UTF-8 under a
/// UTF-8 locale, ASCII under "C"). A character the encoding cannot hold, and a
/// lone surrogate, become '?'.
[[nodiscard]] std::string ustring_to_local_encoded_string(const ustring& text);

/// The narrow encoding of the current LC_CTYPE locale to UTF-16. Bytes that are
/// not valid in that encoding become U+FFFD.
[[nodiscard]] ustring local_encoded_string_to_ustring(const std::string& text);

/// True when every code unit is below 0x80.
[[nodiscard]] bool is_ascii_string(const ustring& text) noexcept;

/// Splits at every character of `delimiters` and keeps empty pieces: "1,,2"
/// gives "1", "", "2"; "" gives one empty piece; "," gives two.
[[nodiscard]] std::vector<std::string> tokenize(const std::string& text,
                                                const std::string& delimiters);

/// Removes leading and trailing POSIX white space (space, \t, \n, \v, \f, \r).
[[nodiscard]] std::string trim(const std::string& text);

/// True for the six POSIX "space" characters: space, \t, \n, \v, \f, \r. The
/// classification is fixed and does not depend on the C library's locale.
[[nodiscard]] constexpr bool is_posix_space(char32_t c) noexcept {
  return c == U' ' || (c >= U'\t' && c <= U'\r');
}

/// True for the POSIX "punct" characters of the ASCII range: printable,
/// neither alphanumeric nor space.
[[nodiscard]] constexpr bool is_posix_punct(char32_t c) noexcept {
  return (c >= U'!' && c <= U'/') || (c >= U':' && c <= U'@') || (c >= U'[' && c <= U'`') ||
         (c >= U'{' && c <= U'~');
}

}  // namespace krel

#endif  // KREL_USTRING_H
