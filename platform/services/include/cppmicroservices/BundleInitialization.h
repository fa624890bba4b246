// cppmicroservices/BundleInitialization.h - what makes a shared library a bundle
//
// Every bundle library contains CPPMICROSERVICES_INITIALIZE_BUNDLE exactly
// once, at global scope, in a source built with US_BUNDLE_NAME defined to
// the bundle's name (ui_core_add_bundle generates that source):
//
//   #include "cppmicroservices/BundleInitialization.h"
//
//   CPPMICROSERVICES_INITIALIZE_BUNDLE
//
// The macro defines, as extern "C" functions of the library:
//   - US_SET_CTX_FUNC(US_BUNDLE_NAME), which the framework calls with the
//     bundle's context when the bundle starts and with null when the context
//     becomes invalid, and US_GET_CTX_FUNC(US_BUNDLE_NAME), which returns it;
//   - _us_bundle_symbolic_name, which returns US_STR(US_BUNDLE_NAME). This
//     registry reads no manifest: it loads the library, and a library that
//     defines this function itself (not through a library it depends on) is
//     a bundle of that name.

#ifndef US_BUNDLE_NAME
#error Missing US_BUNDLE_NAME preprocessor define
#endif

#ifndef CPPMICROSERVICES_BUNDLEINITIALIZATION_H
#define CPPMICROSERVICES_BUNDLEINITIALIZATION_H

#include <atomic>
#include <functional>

#include "cppmicroservices/GlobalConfig.h"

namespace cppmicroservices {

class BundleContextPrivate;

/// The function the framework keeps to hand a bundle its context.
using SetBundleContextFn = std::function<void(BundleContextPrivate*)>;

}  // namespace cppmicroservices

#define CPPMICROSERVICES_INITIALIZE_BUNDLE                                                  \
  std::atomic<cppmicroservices::BundleContextPrivate*> US_CTX_INS(US_BUNDLE_NAME){};        \
                                                                                            \
  extern "C" cppmicroservices::BundleContextPrivate* US_GET_CTX_FUNC(US_BUNDLE_NAME)(void); \
  extern "C" cppmicroservices::BundleContextPrivate* US_GET_CTX_FUNC(US_BUNDLE_NAME)() {    \
    return US_CTX_INS(US_BUNDLE_NAME).load();                                               \
  }                                                                                         \
                                                                                            \
  extern "C" US_ABI_EXPORT void US_SET_CTX_FUNC(US_BUNDLE_NAME)(                            \
      cppmicroservices::BundleContextPrivate * ctx);                                        \
  extern "C" US_ABI_EXPORT void US_SET_CTX_FUNC(US_BUNDLE_NAME)(                            \
      cppmicroservices::BundleContextPrivate * ctx) {                                       \
    US_CTX_INS(US_BUNDLE_NAME).store(ctx);                                                  \
  }                                                                                         \
                                                                                            \
  extern "C" US_ABI_EXPORT char const* _us_bundle_symbolic_name(void);                      \
  extern "C" US_ABI_EXPORT char const* _us_bundle_symbolic_name(void) {                     \
    return US_STR(US_BUNDLE_NAME);                                                          \
  }

#endif  // CPPMICROSERVICES_BUNDLEINITIALIZATION_H
