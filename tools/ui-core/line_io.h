// line_io.h - fast line input, checked buffered output and a progress line
//
// The tool reads inputs of any size line by line and writes one result per
// line. These classes keep that in constant memory (one buffer each, grown
// only for a line longer than the buffer) and cheap per line: no iostreams, no
// flush per line unless a person is watching the terminal. Every byte the tool
// writes goes through Output::flush or write_error, which check each write and
// throw OutputError at the first one that fails, so a run never goes on
// producing output nobody receives.

#ifndef UI_CORE_TOOL_LINE_IO_H
#define UI_CORE_TOOL_LINE_IO_H

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ui_core_tool {

/// A write to standard output or standard error failed.
class OutputError : public std::runtime_error {
 public:
  /// `stream` names the stream ("standard output"), `error` is the errno.
  OutputError(const std::string& stream, int error);
  [[nodiscard]] int error() const noexcept { return error_; }

 private:
  int error_;
};

/// A progress line on standard error ("\r<name>: 12.5 MiB / 1.0 GiB (1%),
/// 345678 lines") for an input of known size, redrawn at most four times a
/// second, and only when standard error is a terminal. A progress line that
/// cannot be written is given up (the results are not affected).
class Progress {
 public:
  Progress(std::string name, std::uint64_t total_bytes, bool enabled);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// Cheap enough to call for every line: the clock is read every 1024 calls.
  void update(std::uint64_t bytes, std::uint64_t lines) {
    if (enabled_ && (++calls_ & 1023U) == 0) draw_if_due(bytes, lines);
  }
  /// The same for a caller that reads in large chunks: reads the clock each time.
  void update_chunk(std::uint64_t bytes, std::uint64_t lines) {
    if (enabled_) draw_if_due(bytes, lines);
  }
  /// Removes the line, if drawn (before other output reaches the terminal).
  void clear() noexcept;

 private:
  void draw_if_due(std::uint64_t bytes, std::uint64_t lines);

  std::string name_;
  std::uint64_t total_;
  bool enabled_;
  bool shown_ = false;
  std::uint32_t calls_ = 0;
  std::chrono::steady_clock::time_point next_;
};

/// Reads a file descriptor line by line through one buffer (1 MiB, grown only
/// for a longer line). A line ends at '\n', which is not part of it, nor is a
/// '\r' just before it; the last line needs no '\n'. A UTF-8 byte-order mark
/// at the very start is not part of the first line.
class LineReader {
 public:
  explicit LineReader(int fd);

  /// The next line; false at the end of the input or on a read error (then
  /// error() is the errno). The view lasts until the next call.
  bool next(std::string_view& line);

  [[nodiscard]] std::uint64_t bytes() const noexcept { return consumed_; }
  [[nodiscard]] std::uint64_t lines() const noexcept { return lines_; }
  [[nodiscard]] int error() const noexcept { return error_; }
  /// How many reads brought data: a change means time may have passed.
  [[nodiscard]] std::uint64_t fills() const noexcept { return fills_; }

 private:
  bool fill();
  void skip_byte_order_mark();

  int fd_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::uint64_t consumed_ = 0;
  std::uint64_t lines_ = 0;
  std::uint64_t fills_ = 0;
  bool at_end_ = false;
  bool started_ = false;
  int error_ = 0;
};

/// Buffered writing to a file descriptor: results are appended to text() and
/// written out in blocks of 256 KiB, or after every record when the
/// descriptor is a terminal, so that a person sees each result at once.
class Output {
 public:
  Output(int fd, std::string name);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  [[nodiscard]] std::string& text() noexcept { return buffer_; }
  /// Ends one record: writes the buffer when it is large or interactive.
  void commit() {
    if (interactive_ || buffer_.size() >= flush_size) flush();
  }
  /// Writes everything buffered. Throws OutputError when a write fails; the
  /// buffer is dropped then, and every later flush throws again.
  void flush();
  [[nodiscard]] bool failed() const noexcept { return error_ != 0; }

  /// The progress line to clear before writing to the terminal (or none).
  void set_progress(Progress* progress) noexcept { progress_ = progress; }
  /// Removes the progress line before something else is written to stderr.
  void make_way() noexcept {
    if (progress_ != nullptr) progress_->clear();
  }

 private:
  static constexpr std::size_t flush_size = std::size_t{1} << 18;
  int fd_;
  std::string name_;
  Progress* progress_ = nullptr;
  bool interactive_;
  int error_ = 0;
  std::string buffer_;
};

/// The process's standard output.
[[nodiscard]] Output& standard_output();

/// Lets standard output clear `progress` before it writes, for the lifetime
/// of the scope.
class ProgressScope {
 public:
  explicit ProgressScope(Progress& progress) { standard_output().set_progress(&progress); }
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;
  ~ProgressScope() { standard_output().set_progress(nullptr); }
};

/// Owns a file descriptor the tool opened (none when negative) and closes it
/// however the run ends.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) noexcept : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  FileDescriptor& operator=(FileDescriptor&&) = delete;
  ~FileDescriptor();
  [[nodiscard]] int get() const noexcept { return fd_; }

 private:
  int fd_;
};

/// Writes `text` to standard error at once, after everything standard output
/// has buffered (so that the two keep their order on a terminal or in one
/// file) and after clearing the progress line. Throws OutputError when a
/// write fails.
void write_error(std::string_view text);

}  // namespace ui_core_tool

#endif  // UI_CORE_TOOL_LINE_IO_H
