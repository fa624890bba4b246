// cppmicroservices/ServiceException.h - failures of the service layer
//
// ServiceException reports a misused service interface, such as one whose
// interface id is empty; GetType() tells the kind of failure, what() the text.
//
//   try {
//     auto ref = context.GetServiceReference<Unnamed>();
//   } catch (const cppmicroservices::ServiceException& e) {
//     // e.GetType() == ServiceException::UNSPECIFIED
//   }

#ifndef CPPMICROSERVICES_SERVICEEXCEPTION_H
#define CPPMICROSERVICES_SERVICEEXCEPTION_H

#include <ostream>
#include <stdexcept>
#include <string>

namespace cppmicroservices {

/// Ownership: a value. Threads: like an int.
class ServiceException : public std::runtime_error {
 public:
  /// The kind of failure. The framework throws UNSPECIFIED for a misused
  /// interface; the other kinds belong to parts of the service layer this
  /// registry leaves out (service factories, remote services).
  enum Type {
    UNSPECIFIED = 0,
    UNREGISTERED = 1,
    FACTORY_ERROR = 2,
    FACTORY_EXCEPTION = 3,
    REMOTE = 5,
    FACTORY_RECURSION = 6
  };

  ServiceException(std::string const& msg, Type const& type = UNSPECIFIED);
  ServiceException(ServiceException const& o);
  ServiceException& operator=(ServiceException const& o);
  ~ServiceException() override;

  Type GetType() const;

 private:
  Type type;
};

}  // namespace cppmicroservices

/// Writes "ServiceException: " and the text.
std::ostream& operator<<(std::ostream& os, cppmicroservices::ServiceException const& exc);

#endif  // CPPMICROSERVICES_SERVICEEXCEPTION_H
