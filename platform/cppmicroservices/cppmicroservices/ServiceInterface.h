#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceException.h"

namespace cppmicroservices::detail {
QUENLITH_CPPMICROSERVICES_EXPORT std::string demangledName(const std::type_info& type);
}

/// Returns the identifier of the service interface `T`: the one declared by
/// CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE, else the qualified name of the type.
template <class T>
const std::string& us_service_interface_iid() {
  static const std::string identifier = cppmicroservices::detail::demangledName(typeid(T));
  return identifier;
}

/// Returns the empty identifier: void is not an interface.
template <>
inline const std::string& us_service_interface_iid<void>() {
  static const std::string identifier;
  return identifier;
}

/// Declares the identifier of a service interface. To be used outside of any namespace, after
/// the definition of the class.
#define CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(serviceInterface, interfaceIdentifier) \
  template <>                                                                             \
  inline const std::string& us_service_interface_iid<serviceInterface>() {                \
    static const std::string identifier(interfaceIdentifier);                             \
    return identifier;                                                                    \
  }

namespace cppmicroservices {

class ServiceFactory;

/// A service: for each of its interface identifiers the object that implements it.
using InterfaceMap = std::unordered_map<std::string, std::shared_ptr<void>>;
using InterfaceMapPtr = std::shared_ptr<InterfaceMap>;
using InterfaceMapConstPtr = std::shared_ptr<const InterfaceMap>;

namespace detail {

/// The key under which an interface map holds a service factory.
QUENLITH_CPPMICROSERVICES_EXPORT extern const std::string kFactoryKey;

/// Throws `ServiceException` when `interfaceId` is empty.
QUENLITH_CPPMICROSERVICES_EXPORT void requireInterfaceId(const std::string& interfaceId);

}  // namespace detail

/// Makes the interface map of one object under several interfaces, or of a service factory.
template <class... Interfaces>
class MakeInterfaceMap {
 public:
  /// Takes the object, which must derive from every one of the interfaces.
  template <class Impl>
  MakeInterfaceMap(const std::shared_ptr<Impl>& impl) : map(std::make_shared<InterfaceMap>()) {
    (map->emplace(us_service_interface_iid<Interfaces>(),
                  std::static_pointer_cast<Interfaces>(impl)),
     ...);
  }

  /// Takes a factory. Throws `ServiceException` when it is null.
  MakeInterfaceMap(const std::shared_ptr<ServiceFactory>& factory)
      : map(std::make_shared<InterfaceMap>()) {
    if (!factory) throw ServiceException("The service factory argument must not be nullptr.");
    (map->emplace(us_service_interface_iid<Interfaces>(), nullptr), ...);
    map->emplace(detail::kFactoryKey, factory);
  }

  operator InterfaceMapPtr() { return map; }
  operator InterfaceMapConstPtr() { return map; }

 private:
  InterfaceMapPtr map;
};

/// Returns the object of `map` under `Interface`, null when there is none.
template <class Interface>
std::shared_ptr<Interface> ExtractInterface(const InterfaceMapConstPtr& map) {
  const auto entry = map->find(us_service_interface_iid<Interface>());
  return entry == map->end() ? nullptr : std::static_pointer_cast<Interface>(entry->second);
}

/// Returns the object of `map` under `interfaceId`, an arbitrary one when that is empty, null when
/// there is none. `map` may be null.
QUENLITH_CPPMICROSERVICES_EXPORT std::shared_ptr<void> ExtractInterface(
    const InterfaceMapConstPtr& map, const std::string& interfaceId);

/// Converts `factory` to the type that `BundleContext::RegisterService` takes.
template <class T>
std::shared_ptr<ServiceFactory> ToFactory(const std::shared_ptr<T>& factory) {
  return std::static_pointer_cast<ServiceFactory>(factory);
}

}  // namespace cppmicroservices
