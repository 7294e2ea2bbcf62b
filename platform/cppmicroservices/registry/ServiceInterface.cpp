#include "cppmicroservices/ServiceInterface.h"

#include <cxxabi.h>

#include <cstdlib>
#include <ostream>

#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/ServiceFactory.h"

namespace cppmicroservices {

const std::string detail::kFactoryKey = "org.cppmicroservices.factory";

std::string detail::demangledName(const std::type_info& type) {
  const std::unique_ptr<char, void (*)(void*)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), std::free);
  return name.get();
}

void detail::requireInterfaceId(const std::string& interfaceId) {
  if (interfaceId.empty()) {
    throw ServiceException(
        "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro");
  }
}

std::shared_ptr<void> ExtractInterface(const InterfaceMapConstPtr& map,
                                       const std::string& interfaceId) {
  if (!map || map->empty()) return nullptr;
  auto entry = interfaceId.empty() ? map->begin() : map->find(interfaceId);
  // The identifier may be spelled with the global scope on one side only.
  if (entry == map->end()) {
    const bool hasScope = interfaceId.starts_with("::");
    entry = map->find(hasScope ? interfaceId.substr(2) : "::" + interfaceId);
  }
  return entry == map->end() ? nullptr : entry->second;
}

ServiceException::ServiceException(const std::string& message, const Type& type)
    : std::runtime_error(message), type(type) {}
ServiceException::~ServiceException() = default;

}  // namespace cppmicroservices

std::ostream& operator<<(std::ostream& os, const cppmicroservices::ServiceException& exception) {
  return os << "ServiceException: " << exception.what();
}

namespace cppmicroservices {

IllegalStateException::IllegalStateException(std::string message) : std::runtime_error(message) {}
IllegalStateException::~IllegalStateException() = default;

ServiceFactory::~ServiceFactory() = default;

}  // namespace cppmicroservices
