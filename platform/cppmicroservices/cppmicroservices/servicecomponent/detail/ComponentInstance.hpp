#pragma once

#include <memory>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/servicecomponent/ComponentContext.hpp"

namespace cppmicroservices::service::component::detail {

/// Makes and keeps the implementation object of one component, for the runtime.
class QUENLITH_CPPMICROSERVICES_EXPORT ComponentInstance {
 public:
  virtual ~ComponentInstance() noexcept;

  /// Makes the implementation object from the services of its references. Throws what the context
  /// and the constructor throw; no object exists then.
  virtual void CreateInstance(const std::shared_ptr<ComponentContext>& context) = 0;

  /// Releases the implementation object.
  virtual void Deactivate() = 0;

  /// Returns the object under each interface that the component provides. There must be one.
  virtual InterfaceMapPtr GetInterfaceMap() = 0;
};

}  // namespace cppmicroservices::service::component::detail
