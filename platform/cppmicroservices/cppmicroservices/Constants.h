#pragma once

#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices::Constants {

// The framework's own bundle.
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SYSTEM_BUNDLE_LOCATION;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SYSTEM_BUNDLE_SYMBOLICNAME;

// Headers of a bundle's manifest that the framework reads.
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string BUNDLE_ACTIVATOR;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string BUNDLE_DESCRIPTION;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string BUNDLE_NAME;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string BUNDLE_SYMBOLICNAME;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string BUNDLE_VENDOR;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string BUNDLE_VERSION;

// Properties of a service that the framework sets.
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string OBJECTCLASS;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_ID;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_SCOPE;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SCOPE_SINGLETON;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SCOPE_BUNDLE;

// Properties of a service that the registering bundle may set; the ranking is an
// integer that fits an `int`; any other value counts as 0, with a warning.
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_DESCRIPTION;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_PID;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_RANKING;
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string SERVICE_VENDOR;

}  // namespace cppmicroservices::Constants
