#pragma once

#include <cstdint>
#include <exception>
#include <iosfwd>
#include <string>
#include <utility>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

/// A change of the framework, or a problem that cannot be reported to a caller.
class FrameworkEvent {
 public:
  enum Type : std::uint32_t {
    FRAMEWORK_STARTED = 0x00000001,
    FRAMEWORK_ERROR = 0x00000002,
    FRAMEWORK_WARNING = 0x00000010,
    FRAMEWORK_INFO = 0x00000020,
    FRAMEWORK_STOPPED = 0x00000040,
    FRAMEWORK_STOPPED_UPDATE = 0x00000080,  ///< Reserved, never sent.
    FRAMEWORK_WAIT_TIMEDOUT = 0x00000200
  };

  /// Makes an invalid event, whose type means nothing.
  FrameworkEvent() = default;
  FrameworkEvent(Type type, const Bundle& bundle, const std::string& message,
                 std::exception_ptr exception = nullptr)
      : isValid(true),
        type(type),
        bundle(bundle),
        message(message),
        exception(std::move(exception)) {}

  explicit operator bool() const { return isValid; }
  Type GetType() const { return type; }
  Bundle GetBundle() const { return bundle; }
  std::string GetMessage() const { return message; }

  /// Returns the exception that caused the event, null when there is none.
  std::exception_ptr GetThrowable() const { return exception; }

  bool operator==(const FrameworkEvent&) const = default;

 private:
  bool isValid = false;
  Type type = FRAMEWORK_ERROR;
  Bundle bundle;
  std::string message;
  std::exception_ptr exception;
};

/// Writes the name of the type without its prefix.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          FrameworkEvent::Type type);

/// Writes the type, the message, the bundle and the text of the exception; "NONE" for an invalid
/// event.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const FrameworkEvent& event);

}  // namespace cppmicroservices
