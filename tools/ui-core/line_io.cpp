#include "line_io.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace ui_core_tool {

OutputError::OutputError(const std::string& stream, int error)
    : std::runtime_error("cannot write " + stream + ": " + std::strerror(error)), error_(error) {}

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

// Writes all of `data`, going on after an interrupted or partial write: 0, or
// the errno of the write that failed. The one place the tool calls write().
int write_fd(int fd, std::string_view data) noexcept {
  while (!data.empty()) {
    const ssize_t n = ::write(fd, data.data(), data.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    data.remove_prefix(static_cast<std::size_t>(n));
  }
  return 0;
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
  if (write_fd(STDERR_FILENO, line) != 0) {
    enabled_ = false;  // a terminal that takes no more progress lines gets none
    return;
  }
  shown_ = true;
}

void Progress::clear() noexcept {
  if (!shown_) return;
  shown_ = false;
  if (write_fd(STDERR_FILENO, "\r\x1b[K") != 0) enabled_ = false;
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

void LineReader::skip_byte_order_mark() {
  // A byte-order mark, which some editors write at the start of a UTF-8 file,
  // says how the file is encoded and is no part of its first line. More bytes
  // are waited for only while those there could still begin one, so a person
  // typing at a terminal is never kept waiting.
  static constexpr std::string_view mark = "\xEF\xBB\xBF";
  for (;;) {
    const std::string_view start(buffer_.data() + begin_, std::min(end_ - begin_, mark.size()));
    if (!mark.starts_with(start)) return;
    if (start.size() == mark.size()) {
      begin_ += mark.size();
      consumed_ += mark.size();
      return;
    }
    if (at_end_ || !fill()) return;
  }
}

bool LineReader::next(std::string_view& line) {
  if (!started_) {
    started_ = true;
    skip_byte_order_mark();
  }
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

Output::Output(int fd, std::string name)
    : fd_(fd), name_(std::move(name)), interactive_(::isatty(fd) == 1) {
  buffer_.reserve(flush_size + (std::size_t{1} << 16));
}

void Output::flush() {
  if (error_ == 0 && buffer_.empty()) return;
  if (error_ == 0) {
    if (progress_ != nullptr && interactive_) progress_->clear();
    error_ = write_fd(fd_, buffer_);
  }
  buffer_.clear();
  if (error_ != 0) throw OutputError(name_, error_);
}

FileDescriptor::~FileDescriptor() {
  if (fd_ >= 0) ::close(fd_);
}

Output& standard_output() {
  static Output output(STDOUT_FILENO, "standard output");
  return output;
}

void write_error(std::string_view text) {
  Output& out = standard_output();
  if (!out.failed()) out.flush();
  out.make_way();
  if (const int error = write_fd(STDERR_FILENO, text); error != 0) {
    throw OutputError("standard error", error);
  }
}

}  // namespace ui_core_tool
