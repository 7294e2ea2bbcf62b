#pragma once

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceRegistrationBase.h"

namespace cppmicroservices {

class Bundle;

/// Makes the service object for each bundle that gets the service.
///
/// The framework keeps an object while the bundle uses the service. It calls a factory from several
/// threads, but from one at a time for the same bundle; a call that is under way when that bundle
/// stops does not count after its next start. Two factories must not get each other's service in
/// two threads: each would wait for the other one for ever.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceFactory {
 public:
  virtual ~ServiceFactory();

  /// Returns the service for `bundle`: an object for every interface of the registration.
  ///
  /// When it returns null, an object for an interface is missing, or it throws or gets its own
  /// service, `bundle` gets null and the framework listeners an error with a ServiceException.
  virtual InterfaceMapConstPtr GetService(const Bundle& bundle,
                                          const ServiceRegistrationBase& registration) = 0;

  /// Takes back `service`, which `bundle` no longer uses. Cannot get its own service for `bundle`.
  virtual void UngetService(const Bundle& bundle, const ServiceRegistrationBase& registration,
                            const InterfaceMapConstPtr& service) = 0;
};

}  // namespace cppmicroservices
