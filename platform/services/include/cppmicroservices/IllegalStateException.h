// cppmicroservices/IllegalStateException.h - use of a context that is no longer valid
//
// Every operation of a BundleContext that reads false throws
// IllegalStateException("The bundle context is no longer valid"): a
// default-constructed context, one of a framework that has stopped, and one
// of a bundle that has stopped.
//
//   try {
//     (void)stale_context.GetServiceReference<Clock>();
//   } catch (const cppmicroservices::IllegalStateException& e) {
//     // e.what() == "The bundle context is no longer valid"
//   }

#ifndef CPPMICROSERVICES_ILLEGALSTATEEXCEPTION_H
#define CPPMICROSERVICES_ILLEGALSTATEEXCEPTION_H

#include <stdexcept>
#include <string>

namespace cppmicroservices {

/// Ownership: a value. Threads: like an int.
class IllegalStateException final : public std::runtime_error {
 public:
  explicit IllegalStateException(std::string what);
  ~IllegalStateException() override;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_ILLEGALSTATEEXCEPTION_H
