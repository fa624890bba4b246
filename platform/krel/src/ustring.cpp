#include "krel/ustring.h"

#include <langinfo.h>

#include <clocale>
#include <memory>
#include <stdexcept>

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>
#include <unicode/utypes.h>

namespace krel {
namespace {

// Conversion through a UTF-16 <-> UTF-8 ICU call: measure first (the call
// reports U_BUFFER_OVERFLOW_ERROR with the needed length), then fill.
template <class Out, class Fn>
Out convert_measured(Fn&& fn) {
  UErrorCode status = U_ZERO_ERROR;
  int32_t needed = fn(nullptr, 0, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) {
    throw std::runtime_error(std::string("krel: text conversion failed: ") + u_errorName(status));
  }
  Out out(static_cast<std::size_t>(needed), typename Out::value_type{});
  status = U_ZERO_ERROR;
  fn(out.data(), needed, &status);
  if (U_FAILURE(status)) {
    throw std::runtime_error(std::string("krel: text conversion failed: ") + u_errorName(status));
  }
  return out;
}

int32_t checked_length(std::size_t n) {
  if (n > static_cast<std::size_t>(INT32_MAX) / 4) throw std::length_error("krel: text too long");
  return static_cast<int32_t>(n);
}

struct ConverterCloser {
  void operator()(UConverter* c) const noexcept { ucnv_close(c); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

// The codeset of the C library's current LC_CTYPE locale, e.g. "UTF-8" or
// "ANSI_X3.4-1968" under "C".
std::string current_codeset() {
  const char* codeset = nl_langinfo(CODESET);
  return codeset != nullptr && *codeset != '\0' ? codeset : "US-ASCII";
}

bool is_utf8_codeset(const std::string& codeset) {
  return codeset == "UTF-8" || codeset == "utf-8" || codeset == "utf8" || codeset == "UTF8";
}

// Every character the local encoding cannot hold becomes one '?'. ICU's own
// substitution callback drops default-ignorable characters (such as U+200B)
// instead, which would make text vanish without a trace.
void write_question_mark(const void* /*context*/, UConverterFromUnicodeArgs* args,
                         const UChar* /*units*/, int32_t /*length*/, UChar32 /*code_point*/,
                         UConverterCallbackReason reason, UErrorCode* status) {
  if (reason != UCNV_UNASSIGNED && reason != UCNV_ILLEGAL && reason != UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  ucnv_cbFromUWriteBytes(args, "?", 1, 0, status);
}

// One converter per thread, reopened when the locale's codeset changes.
UConverter* local_converter(const std::string& codeset) {
  thread_local std::string cached_name;
  thread_local Converter cached;
  if (!cached || cached_name != codeset) {
    UErrorCode status = U_ZERO_ERROR;
    Converter conv(ucnv_open(codeset.c_str(), &status));
    if (U_FAILURE(status)) {
      status = U_ZERO_ERROR;
      conv.reset(ucnv_open("US-ASCII", &status));
      if (U_FAILURE(status)) throw std::runtime_error("krel: no converter for the local encoding");
    }
    status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(conv.get(), write_question_mark, nullptr, nullptr, nullptr, &status);
    cached = std::move(conv);
    cached_name = codeset;
  }
  ucnv_reset(cached.get());
  return cached.get();
}

}  // namespace

std::string ustring_to_utf8_string(std::u16string_view text) {
  const auto* src = reinterpret_cast<const UChar*>(text.data());
  const int32_t len = checked_length(text.size());
  return convert_measured<std::string>([&](char* dest, int32_t cap, UErrorCode* status) {
    int32_t needed = 0;
    u_strToUTF8WithSub(dest, cap, &needed, src, len, 0xFFFD, nullptr, status);
    return needed;
  });
}

std::size_t utf8_claimed_length(unsigned char lead) noexcept {
  if (U8_IS_SINGLE(lead)) return 1;
  if (!U8_IS_LEAD(lead)) return 0;
  return static_cast<std::size_t>(U8_COUNT_TRAIL_BYTES(lead)) + 1;
}

std::size_t utf8_sequence_length(std::string_view bytes) noexcept {
  if (bytes.empty()) return 0;
  // ICU's decoder checks the second byte against the lead's own range, which
  // is what rules out overlong forms, surrogates and values past U+10FFFF. It
  // never looks past the four bytes one sequence may have.
  const auto* s = reinterpret_cast<const uint8_t*>(bytes.data());
  const auto length = static_cast<int32_t>(bytes.size() < 4 ? bytes.size() : 4);
  int32_t i = 0;
  UChar32 c = 0;
  U8_NEXT(s, i, length, c);
  return c < 0 ? 0 : static_cast<std::size_t>(i);
}

std::size_t first_invalid_utf8(std::string_view bytes) noexcept {
  std::size_t i = 0;
  while (i < bytes.size()) {
    if (static_cast<unsigned char>(bytes[i]) < 0x80) {
      ++i;
      continue;
    }
    const std::size_t length = utf8_sequence_length(bytes.substr(i));
    if (length == 0) return i;
    i += length;
  }
  return std::string_view::npos;
}

std::string ustring_to_utf8_string(const ustring& text) {
  return ustring_to_utf8_string(std::u16string_view(text));
}

ustring utf8_string_to_ustring(std::string_view text) {
  const int32_t len = checked_length(text.size());
  return convert_measured<ustring>([&](char16_t* dest, int32_t cap, UErrorCode* status) {
    int32_t needed = 0;
    u_strFromUTF8WithSub(reinterpret_cast<UChar*>(dest), cap, &needed, text.data(), len, 0xFFFD,
                         nullptr, status);
    return needed;
  });
}

ustring utf8_string_to_ustring(const std::string& text) {
  return utf8_string_to_ustring(std::string_view(text));
}

std::string ustring_to_local_encoded_string(const ustring& text) {
  const std::string codeset = current_codeset();
  if (is_utf8_codeset(codeset)) {
    // Under UTF-8 a lone surrogate cannot be held either; it becomes '?'.
    ustring cleaned = text;
    for (std::size_t i = 0; i < cleaned.size(); ++i) {
      const char16_t c = cleaned[i];
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < cleaned.size() && cleaned[i + 1] >= 0xDC00 &&
          cleaned[i + 1] <= 0xDFFF) {
        ++i;
      } else if (c >= 0xD800 && c <= 0xDFFF) {
        cleaned[i] = u'?';
      }
    }
    return ustring_to_utf8_string(cleaned);
  }
  UConverter* conv = local_converter(codeset);
  const auto* src = reinterpret_cast<const UChar*>(text.data());
  const int32_t len = checked_length(text.size());
  return convert_measured<std::string>([&](char* dest, int32_t cap, UErrorCode* status) {
    ucnv_reset(conv);
    return ucnv_fromUChars(conv, dest, cap, src, len, status);
  });
}

ustring local_encoded_string_to_ustring(const std::string& text) {
  const std::string codeset = current_codeset();
  if (is_utf8_codeset(codeset)) return utf8_string_to_ustring(text);
  UConverter* conv = local_converter(codeset);
  const int32_t len = checked_length(text.size());
  return convert_measured<ustring>([&](char16_t* dest, int32_t cap, UErrorCode* status) {
    ucnv_reset(conv);
    return ucnv_toUChars(conv, reinterpret_cast<UChar*>(dest), cap, text.data(), len, status);
  });
}

bool is_ascii_string(const ustring& text) noexcept {
  for (char16_t c : text) {
    if (c >= 0x80) return false;
  }
  return true;
}

std::vector<std::string> tokenize(const std::string& text, const std::string& delimiters) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = text.find_first_of(delimiters, start);
    if (end == std::string::npos) {
      pieces.emplace_back(text, start);
      return pieces;
    }
    pieces.emplace_back(text, start, end - start);
    start = end + 1;
  }
}

std::string trim(const std::string& text) {
  std::size_t first = 0;
  std::size_t last = text.size();
  while (first < last && is_posix_space(static_cast<unsigned char>(text[first]))) ++first;
  while (last > first && is_posix_space(static_cast<unsigned char>(text[last - 1]))) --last;
  return text.substr(first, last - first);
}

}  // namespace krel
