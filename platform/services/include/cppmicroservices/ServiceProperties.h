// cppmicroservices/ServiceProperties.h - the properties a service is registered with
//
// A map from property name to value, given to BundleContext::RegisterService
// and copied by the registry; see Constants.h for the names it reads.

#ifndef CPPMICROSERVICES_SERVICEPROPERTIES_H
#define CPPMICROSERVICES_SERVICEPROPERTIES_H

#include <string>
#include <unordered_map>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Constants.h"

namespace cppmicroservices {

/// Ownership: a value. Threads: like an int.
using ServiceProperties = std::unordered_map<std::string, Any>;

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEPROPERTIES_H
