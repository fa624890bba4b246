// cppmicroservices/ServiceException.h - the failures the registry reports
//
// The registry throws ServiceException for a misused service interface, such
// as one whose interface id is empty; its text says what went wrong.

#ifndef CPPMICROSERVICES_SERVICEEXCEPTION_H
#define CPPMICROSERVICES_SERVICEEXCEPTION_H

#include <stdexcept>
#include <string>

namespace cppmicroservices {

class ServiceException : public std::runtime_error {
 public:
  /// What kind of failure it is; the registry itself reports UNSPECIFIED.
  enum Type { UNSPECIFIED = 0, UNREGISTERED = 1, FACTORY_ERROR = 2, FACTORY_EXCEPTION = 3 };

  explicit ServiceException(const std::string& message, Type type = UNSPECIFIED)
      : std::runtime_error(message), type_(type) {}

  [[nodiscard]] Type GetType() const noexcept { return type_; }

 private:
  Type type_;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEEXCEPTION_H
