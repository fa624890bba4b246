// cppmicroservices/ServiceInterface.h - the ids under which service interfaces are registered
//
// A service is registered and looked up under a text id of its interface. By
// default the id is the demangled name of the interface type, so a provider
// and a user that name the same type agree on it without declaring anything;
// CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE gives a type another id. The
// declaration specialises a template of the global namespace, so it must be
// written at global scope, after the interface's definition:
//
//   namespace demo { struct Clock { virtual ~Clock() = default; }; }
//   CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(demo::Clock, "demo.Clock/1.0")

#ifndef CPPMICROSERVICES_SERVICEINTERFACE_H
#define CPPMICROSERVICES_SERVICEINTERFACE_H

#include <string>
#include <typeinfo>

namespace cppmicroservices::detail {

/// The readable name of a type ("demo::Clock"); the mangled name if the C++
/// runtime cannot demangle it.
[[nodiscard]] std::string GetDemangledName(const std::type_info& type);

/// The text the registry throws ServiceException with when an interface id is
/// empty, that is, when a declaration gave the interface no usable id.
inline constexpr const char* empty_interface_id_text =
    "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro";

}  // namespace cppmicroservices::detail

/// The id of interface T. The default id is computed once per type and kept,
/// since every lookup asks for it.
template <class T>
std::string us_service_interface_iid() {
  static const std::string id = cppmicroservices::detail::GetDemangledName(typeid(T));
  return id;
}

/// `void` names no interface.
template <>
inline std::string us_service_interface_iid<void>() {
  return std::string();
}

/// Gives the interface `_service_interface_type` the id `_service_interface_id`.
#define CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(_service_interface_type, _service_interface_id) \
  template <>                                                                                      \
  inline std::string us_service_interface_iid<_service_interface_type>() {                         \
    return _service_interface_id;                                                                  \
  }

#endif  // CPPMICROSERVICES_SERVICEINTERFACE_H
