// service_lookup_impl.h - finding the one service object create_source asks
//
// The registry may change between any two calls into it: the service found
// by GetServiceReference can be withdrawn (and the framework stopped) before
// GetService is asked for its object, and the registry then throws rather
// than answering "nothing". Both mean that there is no service object, which
// create_source reports as CannotCreateSource; this lookup turns them into an
// empty pointer, and lets every other failure of the registry through.
//
// `between` runs after the reference is obtained and before the object is
// asked for; it exists so that tests can withdraw the service exactly there.

#ifndef UI_CORE_SRC_SOURCE_SERVICE_LOOKUP_IMPL_H
#define UI_CORE_SRC_SOURCE_SERVICE_LOOKUP_IMPL_H

#include <memory>
#include <stdexcept>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/ServiceReference.h"

namespace ui::core::detail {

struct NothingBetween {
  void operator()() const noexcept {}
};

/// The best service registered for S in `context`, or empty when the context
/// is not valid, no service is registered, or the registry has no object for
/// it by the time it is asked (the service was withdrawn, or the framework
/// stopped, in between). The reference is released on return.
template <class S, class Between = NothingBetween>
std::shared_ptr<S> find_service_object(cppmicroservices::BundleContext context,
                                       Between&& between = Between()) {
  if (!context) return nullptr;
  try {
    const cppmicroservices::ServiceReference<S> reference = context.GetServiceReference<S>();
    if (!reference) return nullptr;
    between();
    return context.GetService(reference);
  } catch (const cppmicroservices::IllegalStateException&) {
    // The context became invalid after it was checked: no framework, no object.
    return nullptr;
  } catch (const std::invalid_argument&) {
    // GetService refuses a reference whose service is no longer registered.
    return nullptr;
  }
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_SOURCE_SERVICE_LOOKUP_IMPL_H
