#include "cppmicroservices/servicecomponent/ComponentConstants.hpp"
#include "cppmicroservices/servicecomponent/ComponentContext.hpp"
#include "cppmicroservices/servicecomponent/ComponentException.hpp"
#include "cppmicroservices/servicecomponent/detail/ComponentInstance.hpp"

// Defines the type information of these classes once for all bundles.
namespace cppmicroservices::service::component {

namespace ComponentConstants {

const std::string SERVICE_COMPONENT = "scr";
const std::string COMPONENT_NAME = "component.name";
const std::string COMPONENT_ID = "component.id";

}  // namespace ComponentConstants

ComponentException::ComponentException(const std::string& message) : std::runtime_error(message) {}

ComponentException::~ComponentException() = default;

ComponentContext::~ComponentContext() noexcept = default;

detail::ComponentInstance::~ComponentInstance() noexcept = default;

}  // namespace cppmicroservices::service::component
