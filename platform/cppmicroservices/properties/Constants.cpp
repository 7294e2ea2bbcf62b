#include "cppmicroservices/Constants.h"

namespace cppmicroservices::Constants {

const std::string SYSTEM_BUNDLE_LOCATION = "System Bundle";
const std::string SYSTEM_BUNDLE_SYMBOLICNAME = "system_bundle";

const std::string BUNDLE_ACTIVATOR = "bundle.activator";
const std::string BUNDLE_DESCRIPTION = "bundle.description";
const std::string BUNDLE_NAME = "bundle.name";
const std::string BUNDLE_SYMBOLICNAME = "bundle.symbolic_name";
const std::string BUNDLE_VENDOR = "bundle.vendor";
const std::string BUNDLE_VERSION = "bundle.version";

const std::string OBJECTCLASS = "objectclass";
const std::string SERVICE_ID = "service.id";
const std::string SERVICE_SCOPE = "service.scope";
const std::string SCOPE_SINGLETON = "singleton";
const std::string SCOPE_BUNDLE = "bundle";

const std::string SERVICE_DESCRIPTION = "service.description";
const std::string SERVICE_PID = "service.pid";
const std::string SERVICE_RANKING = "service.ranking";
const std::string SERVICE_VENDOR = "service.vendor";

}  // namespace cppmicroservices::Constants
