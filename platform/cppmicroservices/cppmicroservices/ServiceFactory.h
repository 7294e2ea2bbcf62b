#pragma once

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceRegistrationBase.h"

namespace cppmicroservices {

class Bundle;

/// Makes the service object of each bundle that asks for the service.
///
/// The framework keeps an object while the bundle holds the service and calls from several
/// threads, but for one bundle only from one at a time.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceFactory {
 public:
  virtual ~ServiceFactory();

  /// Returns the service for `bundle`: an object for every interface of the registration.
  ///
  /// Where null is returned, an interface has no object, the factory throws or asks for its own
  /// service, `bundle` gets null and the framework listeners an error with a ServiceException.
  virtual InterfaceMapConstPtr GetService(const Bundle& bundle,
                                          const ServiceRegistrationBase& registration) = 0;

  /// Takes back `service`, which `bundle` no longer holds.
  virtual void UngetService(const Bundle& bundle, const ServiceRegistrationBase& registration,
                            const InterfaceMapConstPtr& service) = 0;
};

}  // namespace cppmicroservices
