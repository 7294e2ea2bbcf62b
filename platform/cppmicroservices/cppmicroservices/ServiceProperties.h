#pragma once

#include <string>
#include <unordered_map>

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices {

/// The properties of a service. Keys that differ in case only must not stand side by side.
using ServiceProperties = std::unordered_map<std::string, Any>;

}  // namespace cppmicroservices
