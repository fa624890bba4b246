// cppmicroservices/Constants.h - names of the properties the registry knows
//
//   ServiceProperties props{{Constants::SERVICE_RANKING, Any(10)}};

#ifndef CPPMICROSERVICES_CONSTANTS_H
#define CPPMICROSERVICES_CONSTANTS_H

namespace cppmicroservices::Constants {

/// An int property that orders services of one interface: the highest ranking
/// is found first, and among equal rankings the service registered first. A
/// service without it, or with a value that is not an int, ranks 0.
inline constexpr const char* SERVICE_RANKING = "service.ranking";

}  // namespace cppmicroservices::Constants

#endif  // CPPMICROSERVICES_CONSTANTS_H
