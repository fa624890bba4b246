// cppmicroservices/SharedLibraryException.h - a bundle whose library failed
//
// Bundle::Start throws SharedLibraryException when the bundle's activator
// fails with a std::system_error: the code is the original's, what() is the
// original's what() followed by the code's message, and GetBundle() is the
// bundle that failed.
//
//   try {
//     bundle.Start();
//   } catch (const cppmicroservices::SharedLibraryException& e) {
//     report(e.GetBundle().GetSymbolicName(), e.code());
//   }

#ifndef CPPMICROSERVICES_SHAREDLIBRARYEXCEPTION_H
#define CPPMICROSERVICES_SHAREDLIBRARYEXCEPTION_H

#include <string>
#include <system_error>

#include "cppmicroservices/Bundle.h"

namespace cppmicroservices {

/// Ownership: a value. Threads: like an int.
class SharedLibraryException final : public std::system_error {
 public:
  explicit SharedLibraryException(std::error_code ec, std::string what,
                                  cppmicroservices::Bundle origin);
  ~SharedLibraryException() override;

  Bundle GetBundle() const;

 private:
  Bundle origin;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SHAREDLIBRARYEXCEPTION_H
