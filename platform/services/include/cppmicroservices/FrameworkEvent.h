// cppmicroservices/FrameworkEvent.h - what a framework reports
//
// Framework::WaitForStop returns a FrameworkEvent that tells how the wait
// ended; its bundle is the framework.
//
//   cppmicroservices::FrameworkEvent event = framework.WaitForStop(std::chrono::seconds(5));
//   if (event.GetType() == cppmicroservices::FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT) ...

#ifndef CPPMICROSERVICES_FRAMEWORKEVENT_H
#define CPPMICROSERVICES_FRAMEWORKEVENT_H

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace cppmicroservices {

class Bundle;
class FrameworkEventData;

/// Ownership: a handle to an immutable event. Threads: copies may be used on
/// any threads at once.
class FrameworkEvent {
  std::shared_ptr<FrameworkEventData> d;

 public:
  enum Type : uint32_t {
    FRAMEWORK_STARTED = 0x00000001,
    FRAMEWORK_ERROR = 0x00000002,
    FRAMEWORK_WARNING = 0x00000010,
    FRAMEWORK_INFO = 0x00000020,
    FRAMEWORK_STOPPED = 0x00000040,
    FRAMEWORK_STOPPED_UPDATE = 0x00000080,
    FRAMEWORK_WAIT_TIMEDOUT = 0x00000200
  };

  /// An event of nothing: it reads false, its type is FRAMEWORK_ERROR, its
  /// bundle reads false, its message is empty and it has no exception.
  FrameworkEvent();

  explicit operator bool() const;

  FrameworkEvent(Type type, Bundle const& bundle, std::string const& message,
                 const std::exception_ptr exception = nullptr);

  Bundle GetBundle() const;
  std::string GetMessage() const;
  std::exception_ptr GetThrowable() const;
  Type GetType() const;
};

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_FRAMEWORKEVENT_H
