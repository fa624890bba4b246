// cppmicroservices/Constants.h - names of the properties and bundles the framework defines
//
// Service properties are looked up by these names, whatever the case of the
// letters: "Service.Ranking" is the ranking too.
//
//   cppmicroservices::ServiceProperties props{
//       {cppmicroservices::Constants::SERVICE_RANKING, cppmicroservices::Any(10)}};

#ifndef CPPMICROSERVICES_CONSTANTS_H
#define CPPMICROSERVICES_CONSTANTS_H

#include <string>

namespace cppmicroservices::Constants {

/// The location of the framework itself, seen as a bundle: "System Bundle".
extern const std::string SYSTEM_BUNDLE_LOCATION;

/// The symbolic name of the framework itself, seen as a bundle: "system_bundle".
extern const std::string SYSTEM_BUNDLE_SYMBOLICNAME;

/// "objectclass": the interface ids a service is registered under (a
/// std::vector<std::string>). Set by the framework.
extern const std::string OBJECTCLASS;

/// "service.id": the number of a registration (a long), unique in the
/// process and increasing in registration order. Set by the framework.
extern const std::string SERVICE_ID;

/// "service.ranking": an int property that orders the services of one
/// interface. A lookup finds the highest ranking, and among equal rankings
/// the service registered first (the lowest SERVICE_ID). A service without
/// it ranks 0. A value of another type is refused at registration with
/// std::invalid_argument (CppMicroServices leaves that case undefined: it
/// asserts when it compares such a ranking).
extern const std::string SERVICE_RANKING;

/// "service.scope": how a service object is shared; the framework sets
/// SCOPE_SINGLETON ("singleton"): every user gets the one registered object.
extern const std::string SERVICE_SCOPE;
extern const std::string SCOPE_SINGLETON;

}  // namespace cppmicroservices::Constants

#endif  // CPPMICROSERVICES_CONSTANTS_H
