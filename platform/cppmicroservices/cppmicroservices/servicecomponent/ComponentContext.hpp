#pragma once

#include <memory>
#include <string>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceInterface.h"

namespace cppmicroservices::service::component {

/// Gives a component the services that its references are bound to.
class QUENLITH_CPPMICROSERVICES_EXPORT ComponentContext {
 public:
  virtual ~ComponentContext() noexcept;

  /// Returns the service that the reference `name` is bound to, never null.
  ///
  /// Throws `ComponentException` when the manifest has no such reference, when the service is not
  /// a `T`, and when it cannot be made.
  template <class T>
  std::shared_ptr<T> LocateService(const std::string& name) const {
    return std::static_pointer_cast<T>(LocateService(name, us_service_interface_iid<T>()));
  }

 protected:
  virtual std::shared_ptr<void> LocateService(const std::string& name,
                                              const std::string& interfaceId) const = 0;
};

}  // namespace cppmicroservices::service::component
