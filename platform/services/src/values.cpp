// values.cpp - Any, the exceptions, the constants and type names

#include "cppmicroservices/Any.h"

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/SharedLibraryException.h"
#include "framework_impl.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace cppmicroservices {

namespace Constants {

const std::string SYSTEM_BUNDLE_LOCATION = "System Bundle";
const std::string SYSTEM_BUNDLE_SYMBOLICNAME = "system_bundle";
const std::string OBJECTCLASS = "objectclass";
const std::string SERVICE_ID = "service.id";
const std::string SERVICE_RANKING = "service.ranking";
const std::string SERVICE_SCOPE = "service.scope";
const std::string SCOPE_SINGLETON = "singleton";

}  // namespace Constants

namespace detail {

std::string GetDemangledName(std::type_info const& typeInfo) {
  int status = 0;
  char* demangled = abi::__cxa_demangle(typeInfo.name(), nullptr, nullptr, &status);
  std::string result;
  if (demangled != nullptr && status == 0) result = demangled;
  std::free(demangled);
  return result;
}

void ThrowBadAnyCastException(std::string const& funcName, std::type_info const& source,
                              std::type_info const& target) {
  throw BadAnyCastException("cppmicroservices::BadAnyCastException: " + funcName +
                            ": Failed to convert from cppmicroservices::Any type " +
                            GetDemangledName(source) + " to target type " +
                            GetDemangledName(target));
}

}  // namespace detail

// Defined here rather than in the header, so that `const Any empty;` has a
// user-provided default constructor to call.
Any::Any() = default;

std::string Any::ToString() const {
  if (Empty()) throw std::logic_error("empty any");
  return _content->ToString();
}

std::string Any::ToStringNoExcept() const {
  return Empty() ? std::string() : _content->ToString();
}

std::ostream& any_value_to_string(std::ostream& os, Any const& any) {
  os << any.ToString();
  return os;
}

ServiceException::ServiceException(std::string const& msg, Type const& kind)
    : std::runtime_error(msg), type(kind) {}
ServiceException::ServiceException(ServiceException const& o) = default;
ServiceException& ServiceException::operator=(ServiceException const& o) = default;
ServiceException::~ServiceException() = default;
ServiceException::Type ServiceException::GetType() const {
  return type;
}

IllegalStateException::IllegalStateException(std::string what)
    : std::runtime_error(std::move(what)) {}
IllegalStateException::~IllegalStateException() = default;

SharedLibraryException::SharedLibraryException(std::error_code ec, std::string what,
                                               cppmicroservices::Bundle bundle)
    : std::system_error(ec, what), origin(std::move(bundle)) {}
SharedLibraryException::~SharedLibraryException() = default;
Bundle SharedLibraryException::GetBundle() const {
  return origin;
}

std::string GetLastExceptionStr() {
  const std::exception_ptr current = std::current_exception();
  if (!current) return std::string();
  try {
    std::rethrow_exception(current);
  } catch (std::exception const& e) {
    return e.what();
  } catch (...) {
    return "unknown";
  }
}

}  // namespace cppmicroservices

std::ostream& operator<<(std::ostream& os, cppmicroservices::ServiceException const& exc) {
  return os << "ServiceException: " << exc.what();
}
