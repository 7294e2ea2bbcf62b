#pragma once

#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices::service::component::ComponentConstants {

/// The header of a manifest that describes its components: "scr".
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_COMPONENT;

/// The service property with the component's name, a `std::string`: "component.name".
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string COMPONENT_NAME;

/// The service property with a number that is unique in the process, an `unsigned long`:
/// "component.id".
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string COMPONENT_ID;

}  // namespace cppmicroservices::service::component::ComponentConstants
