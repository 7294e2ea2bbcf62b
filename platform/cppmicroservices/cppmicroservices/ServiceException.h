#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

/// The exception for a problem with a service.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceException : public std::runtime_error {
 public:
  enum Type {
    UNSPECIFIED = 0,
    UNREGISTERED = 1,
    FACTORY_ERROR = 2,      ///< A service factory made an object that cannot be used.
    FACTORY_EXCEPTION = 3,  ///< A service factory threw the nested exception.
    REMOTE = 5,
    FACTORY_RECURSION = 6  ///< A service factory asked for its own service.
  };

  ServiceException(const std::string& message, const Type& type = UNSPECIFIED);
  ~ServiceException() override;

  Type GetType() const { return type; }

 private:
  Type type;
};

}  // namespace cppmicroservices

/// Writes "ServiceException: " and the message.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(
    std::ostream& os, const cppmicroservices::ServiceException& exception);
