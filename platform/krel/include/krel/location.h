// krel/location.h - keys of the host environment: source locations and block ids
//
// A Location says where a model item is defined (file, line, column). A
// DravikId identifies a block of the host block-diagram environment. Both are
// plain values that the kernel copies and passes on.

#ifndef KREL_LOCATION_H
#define KREL_LOCATION_H

#include <cstdint>
#include <ostream>

#include "krel/ustring.h"

namespace krel {

/// Ownership: a plain value. Threads: like an int.
class Location {
 public:
  Location() = default;
  Location(ustring file, std::uint32_t line, std::uint32_t column)
      : file_(std::move(file)), line_(line), column_(column) {}

  [[nodiscard]] const ustring& file() const noexcept { return file_; }
  [[nodiscard]] std::uint32_t line() const noexcept { return line_; }
  [[nodiscard]] std::uint32_t column() const noexcept { return column_; }

  friend bool operator==(const Location&, const Location&) = default;

 private:
  ustring file_;
  std::uint32_t line_ = 0;
  std::uint32_t column_ = 0;
};

/// The text form "file:line:column".
[[nodiscard]] ustring to_user_string(const Location& location);
std::ostream& operator<<(std::ostream& os, const Location& location);

/// Ownership: a plain value. Threads: like an int.
class DravikId {
 public:
  DravikId() = default;
  explicit DravikId(krel::ustring id) : id_(std::move(id)) {}

  [[nodiscard]] const krel::ustring& ustring() const noexcept { return id_; }

  friend bool operator==(const DravikId&, const DravikId&) = default;

 private:
  krel::ustring id_;
};

std::ostream& operator<<(std::ostream& os, const DravikId& id);

}  // namespace krel

#endif  // KREL_LOCATION_H
