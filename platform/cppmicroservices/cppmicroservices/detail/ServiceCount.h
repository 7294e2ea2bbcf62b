#pragma once

#include <atomic>
#include <cstddef>
#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices::detail {

/// Counts the services that are registered under one interface, in all frameworks of the process.
using ServiceCount = std::atomic<std::size_t>;

/// Returns the count of the services under `interfaceId`, valid until the process ends. Throws
/// `ServiceException` when `interfaceId` is empty.
QUENLITH_CPPMICROSERVICES_EXPORT const ServiceCount& serviceCount(const std::string& interfaceId);

}  // namespace cppmicroservices::detail
