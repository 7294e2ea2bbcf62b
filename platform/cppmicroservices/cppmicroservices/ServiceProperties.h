#pragma once

#include <string>
#include <unordered_map>

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices {

/// The properties of a service. Keys must not differ in case only.
using ServiceProperties = std::unordered_map<std::string, Any>;

}  // namespace cppmicroservices
