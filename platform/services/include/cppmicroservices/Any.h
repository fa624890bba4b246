// cppmicroservices/Any.h - the value type of service properties
//
// A property value holds any copyable type; `any_cast` reads it back. The
// registry itself reads only "service.ranking", as an int.
//
//   cppmicroservices::ServiceProperties props{{"service.ranking", cppmicroservices::Any(5)}};
//   int rank = cppmicroservices::any_cast<int>(props.at("service.ranking"));

#ifndef CPPMICROSERVICES_ANY_H
#define CPPMICROSERVICES_ANY_H

#include <any>

namespace cppmicroservices {

/// Ownership: a value; a copy copies the held object. Threads: like an int.
using Any = std::any;
using std::any_cast;
using BadAnyCastException = std::bad_any_cast;

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_ANY_H
