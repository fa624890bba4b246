// cppmicroservices/ServiceProperties.h - the properties a service is registered with
//
// A map from property name to value, given to BundleContext::RegisterService,
// which keeps a copy. Names are compared without regard to case: two names
// that differ only in case may not both be given. See Constants.h for the
// names the framework reads and sets.
//
//   cppmicroservices::ServiceProperties props{
//       {cppmicroservices::Constants::SERVICE_RANKING, cppmicroservices::Any(10)}};

#ifndef CPPMICROSERVICES_SERVICEPROPERTIES_H
#define CPPMICROSERVICES_SERVICEPROPERTIES_H

#include <string>
#include <unordered_map>

#include "cppmicroservices/Any.h"

namespace cppmicroservices {

/// Ownership: a value. Threads: like an int.
using ServiceProperties = std::unordered_map<std::string, Any>;

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_SERVICEPROPERTIES_H
