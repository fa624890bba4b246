// cppmicroservices/FrameworkFactory.h - making frameworks
//
//   auto framework = cppmicroservices::FrameworkFactory().NewFramework();

#ifndef CPPMICROSERVICES_FRAMEWORKFACTORY_H
#define CPPMICROSERVICES_FRAMEWORKFACTORY_H

#include "cppmicroservices/Framework.h"

namespace cppmicroservices {

class FrameworkFactory {
 public:
  /// A new framework with an empty registry, not yet started.
  [[nodiscard]] Framework NewFramework();
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_FRAMEWORKFACTORY_H
