// cppmicroservices/FrameworkFactory.h - making frameworks
//
//   #include "cppmicroservices/Framework.h"
//   #include "cppmicroservices/FrameworkFactory.h"
//
//   cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
//   framework.Start();

#ifndef CPPMICROSERVICES_FRAMEWORKFACTORY_H
#define CPPMICROSERVICES_FRAMEWORKFACTORY_H

namespace cppmicroservices {

class Framework;

class FrameworkFactory {
 public:
  /// A new framework with no bundles and no services, not started (state
  /// STATE_INSTALLED); its context reads false until Init or Start.
  Framework NewFramework();
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_FRAMEWORKFACTORY_H
