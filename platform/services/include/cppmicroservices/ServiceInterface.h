// cppmicroservices/ServiceInterface.h - the ids service interfaces are registered under
//
// A service is registered and looked up under a text id of its interface. By
// default the id is the demangled name of the interface type, so a provider
// and a user that name the same type agree on it without declaring anything;
// CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE gives a type another id. The
// declaration specialises a template of the global namespace, so it is
// written at global scope, after the interface's definition, and before any
// use of the id:
//
//   namespace demo { struct Clock { virtual ~Clock() = default; }; }
//   CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(demo::Clock, "demo.Clock/1.0")
//
//   const std::string& id = us_service_interface_iid<demo::Clock>();  // "demo.Clock/1.0"
//
// One object may be registered under several interfaces at once; an
// InterfaceMap holds its pointers by interface id, and MakeInterfaceMap
// builds one:
//
//   std::shared_ptr<cppmicroservices::InterfaceMap> map =
//       cppmicroservices::MakeInterfaceMap<demo::Clock, demo::Timer>(std::make_shared<Both>());
//   std::shared_ptr<demo::Timer> timer = cppmicroservices::ExtractInterface<demo::Timer>(map);

#ifndef CPPMICROSERVICES_SERVICEINTERFACE_H
#define CPPMICROSERVICES_SERVICEINTERFACE_H

#include <cstddef>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "cppmicroservices/GlobalConfig.h"
#include "cppmicroservices/ServiceException.h"

/// The id of interface T: a reference to a string that lives as long as the
/// program (or the library that asked first), the same object on every call.
template <class T>
std::string const& us_service_interface_iid();

namespace cppmicroservices {

/// A service object's pointers, one per interface id it is registered under.
/// Each pointer points to the part of the object that implements that
/// interface, so it may be cast back with std::static_pointer_cast.
using InterfaceMap = std::unordered_map<std::string, std::shared_ptr<void>>;
using InterfaceMapPtr = std::shared_ptr<InterfaceMap>;
using InterfaceMapConstPtr = std::shared_ptr<InterfaceMap const>;

namespace detail {

/// The readable name of a type ("demo::Clock"); empty if the C++ runtime
/// cannot demangle it.
std::string GetDemangledName(std::type_info const& typeInfo);

/// True when T is one of List.
template <class T, class... List>
struct Contains : std::disjunction<std::is_same<T, List>...> {};

}  // namespace detail

}  // namespace cppmicroservices

template <class T>
std::string const& us_service_interface_iid() {
  static const std::string name = cppmicroservices::detail::GetDemangledName(typeid(T));
  return name;
}

/// `void` names no interface: its id is empty.
template <>
inline std::string const& us_service_interface_iid<void>() {
  static const std::string name;
  return name;
}

/// Gives the interface `_service_interface_type` the id `_service_interface_id`.
#define CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(_service_interface_type, _service_interface_id) \
  template <>                                                                                      \
  inline const std::string& us_service_interface_iid<_service_interface_type>() {                  \
    static const std::string name(_service_interface_id);                                          \
    return name;                                                                                   \
  }

namespace cppmicroservices {

/// Builds the InterfaceMap of an object implementing every one of
/// Interfaces, keyed by their interface ids. The object is kept as a
/// shared_ptr to each interface part; an empty object gives empty pointers
/// (which the framework refuses to register).
template <class... Interfaces>
class MakeInterfaceMap {
 public:
  template <class Impl>
  MakeInterfaceMap(std::shared_ptr<Impl> const& impl)
      : m_interfaces(std::static_pointer_cast<Interfaces>(impl)...) {}

  operator InterfaceMapPtr() { return getInterfaceMap(); }
  operator InterfaceMapConstPtr() { return InterfaceMapConstPtr(getInterfaceMap()); }

 private:
  InterfaceMapPtr getInterfaceMap() {
    auto map = std::make_shared<InterfaceMap>();
    // The last interface goes in first; an id that appears twice keeps the
    // pointer of its last interface.
    insertFrom<sizeof...(Interfaces)>(*map);
    return map;
  }

  template <std::size_t N>
  void insertFrom(InterfaceMap& map) {
    if constexpr (N > 0) {
      using Interface = std::tuple_element_t<N - 1, std::tuple<Interfaces...>>;
      map.insert(std::make_pair(std::string(us_service_interface_iid<Interface>()),
                                std::static_pointer_cast<void>(std::get<N - 1>(m_interfaces))));
      insertFrom<N - 1>(map);
    }
  }

  std::tuple<std::shared_ptr<Interfaces>...> m_interfaces;
};

/// The pointer `map` holds for Interface, cast back to it; null when the map
/// has none.
template <class Interface>
std::shared_ptr<Interface> ExtractInterface(InterfaceMapConstPtr const& map) {
  auto iter = map->find(us_service_interface_iid<Interface>());
  if (iter != map->end()) return std::static_pointer_cast<Interface>(iter->second);
  return nullptr;
}

/// The pointer `map` holds for `interfaceId`; for an empty id, the first
/// pointer the map holds. Null when `map` is null or has none.
inline std::shared_ptr<void> ExtractInterface(InterfaceMapConstPtr const& map,
                                              std::string const& interfaceId) {
  if (!map) return nullptr;
  if (interfaceId.empty() && !map->empty()) return map->begin()->second;
  auto iter = map->find(interfaceId);
  if (iter != map->end()) return iter->second;
  return nullptr;
}

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEINTERFACE_H
