#include "line_io.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace ui_core_tool {

std::size_t decode_utf8(std::string_view bytes, krel::ustring& out) {
  // UTF-16 never needs more code units than UTF-8 has bytes; the buffer is
  // sized once and cut to the length written.
  out.resize(bytes.size());
  char16_t* to = out.data();
  const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
  const unsigned char* p = first;
  const unsigned char* const end = p + bytes.size();
  while (p != end) {
    const unsigned char lead = *p;
    if (lead < 0x80) {
      *to++ = lead;
      ++p;
      continue;
    }
    // The ranges of the second byte follow from the Unicode table of
    // well-formed sequences: they exclude overlong forms, surrogates and
    // values past U+10FFFF.
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    char32_t code = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
      code = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      code = lead & 0x0FU;
      if (lead == 0xE0) low = 0xA0;
      if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      code = lead & 0x07U;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;
    } else {
      out.resize(static_cast<std::size_t>(to - out.data()));
      return static_cast<std::size_t>(p - first);
    }
    if (static_cast<std::size_t>(end - p) < length || p[1] < low || p[1] > high) {
      out.resize(static_cast<std::size_t>(to - out.data()));
      return static_cast<std::size_t>(p - first);
    }
    for (std::size_t i = 1; i < length; ++i) {
      if ((p[i] & 0xC0U) != 0x80U) {
        out.resize(static_cast<std::size_t>(to - out.data()));
        return static_cast<std::size_t>(p - first);
      }
      code = (code << 6) | (p[i] & 0x3FU);
    }
    p += length;
    if (code >= 0x10000) {
      code -= 0x10000;
      *to++ = static_cast<char16_t>(0xD800 + (code >> 10));
      *to++ = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    } else {
      *to++ = static_cast<char16_t>(code);
    }
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
  return std::string_view::npos;
}

std::string printable(std::string_view bytes) {
  static constexpr char hex[] = "0123456789abcdef";
  std::string shown;
  shown.reserve(bytes.size());
  for (const char c : bytes) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 0x20 && u < 0x7f) {
      shown += c;
    } else {
      shown += "\\x";
      shown += hex[u >> 4];
      shown += hex[u & 15];
    }
  }
  return shown;
}

// --- Progress ----------------------------------------------------------------

namespace {

// "12.5 MiB": three significant digits are plenty for a moving number.
std::string human_size(std::uint64_t bytes) {
  static constexpr const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
  double value = static_cast<double>(bytes);
  std::size_t unit = 0;
  while (value >= 1024.0 && unit + 1 < std::size(units)) {
    value /= 1024.0;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", value, units[unit]);
  return text;
}

void write_all(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t n = ::write(fd, data, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      return;
    }
    data += n;
    size -= static_cast<std::size_t>(n);
  }
}

constexpr auto redraw_interval = std::chrono::milliseconds(250);

}  // namespace

Progress::Progress(std::string name, std::uint64_t total_bytes, bool enabled)
    : name_(std::move(name)),
      total_(total_bytes),
      enabled_(enabled),
      // The first line appears after a quarter of a second, so that a quick
      // run never flickers.
      next_(std::chrono::steady_clock::now() + redraw_interval) {}

Progress::~Progress() {
  clear();
}

void Progress::draw_if_due(std::uint64_t bytes, std::uint64_t lines) {
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  next_ = now + redraw_interval;
  std::string line = "\r" + name_ + ": " + human_size(bytes);
  if (total_ > 0) {
    line += " / " + human_size(total_) + " (" + std::to_string(bytes * 100 / total_) + "%)";
  }
  line += ", " + std::to_string(lines) + (lines == 1 ? " line" : " lines") + "\x1b[K";
  write_all(STDERR_FILENO, line.data(), line.size());
  shown_ = true;
}

void Progress::clear() {
  if (!shown_) return;
  static constexpr char erase[] = "\r\x1b[K";
  write_all(STDERR_FILENO, erase, sizeof erase - 1);
  shown_ = false;
}

// --- LineReader ----------------------------------------------------------------

LineReader::LineReader(int fd) : fd_(fd), buffer_(std::size_t{1} << 20) {}

bool LineReader::fill() {
  if (begin_ > 0) {
    // Move the unfinished line to the front to make room behind it.
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) buffer_.resize(buffer_.size() * 2);  // a line longer than the buffer
  for (;;) {
    const ssize_t n = ::read(fd_, buffer_.data() + end_, buffer_.size() - end_);
    if (n > 0) {
      end_ += static_cast<std::size_t>(n);
      ++fills_;
      return true;
    }
    if (n == 0) {
      at_end_ = true;
      return false;
    }
    if (errno == EINTR) continue;
    error_ = errno;
    at_end_ = true;
    return false;
  }
}

bool LineReader::next(std::string_view& line) {
  std::size_t scanned = begin_;  // where the search for '\n' goes on after a fill
  for (;;) {
    const void* nl = std::memchr(buffer_.data() + scanned, '\n', end_ - scanned);
    if (nl != nullptr) {
      const std::size_t stop =
          static_cast<std::size_t>(static_cast<const char*>(nl) - buffer_.data());
      std::size_t length = stop - begin_;
      if (length > 0 && buffer_[stop - 1] == '\r') --length;
      line = std::string_view(buffer_.data() + begin_, length);
      consumed_ += stop + 1 - begin_;
      begin_ = stop + 1;
      ++lines_;
      return true;
    }
    if (at_end_) {
      if (begin_ == end_ || error_ != 0) return false;
      // The last line, without a '\n'.
      std::size_t length = end_ - begin_;
      if (buffer_[end_ - 1] == '\r') --length;
      line = std::string_view(buffer_.data() + begin_, length);
      consumed_ += end_ - begin_;
      begin_ = end_;
      ++lines_;
      return true;
    }
    const std::size_t searched = end_ - begin_;
    fill();
    scanned = begin_ + searched;
  }
}

// --- Output --------------------------------------------------------------------

Output::Output(int fd, Progress* progress)
    : fd_(fd), progress_(progress), interactive_(::isatty(fd) == 1) {
  buffer_.reserve(flush_size + (std::size_t{1} << 16));
}

Output::~Output() {
  flush();
}

bool Output::flush() {
  if (buffer_.empty()) return !failed_;
  if (progress_ != nullptr && interactive_) progress_->clear();
  const char* data = buffer_.data();
  std::size_t size = buffer_.size();
  while (size > 0 && !failed_) {
    const ssize_t n = ::write(fd_, data, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      failed_ = true;
      break;
    }
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  buffer_.clear();
  return !failed_;
}

}  // namespace ui_core_tool
