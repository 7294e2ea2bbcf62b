#pragma once

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices::detail {

/// Sends `event` to the framework listeners. For the Declarative Services runtime only.
QUENLITH_CPPMICROSERVICES_EXPORT void sendFrameworkEvent(const BundleContext& context,
                                                         const FrameworkEvent& event);

}  // namespace cppmicroservices::detail
