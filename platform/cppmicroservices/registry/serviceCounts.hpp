#pragma once

#include <string>

#include "cppmicroservices/detail/ServiceCount.h"

namespace cppmicroservices::detail {

/// Returns the count that `serviceCount` gives for `interfaceId`, for the registry to change.
ServiceCount& mutableServiceCount(const std::string& interfaceId);

}  // namespace cppmicroservices::detail
