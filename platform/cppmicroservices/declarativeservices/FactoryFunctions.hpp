#pragma once

#include <string>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/servicecomponent/detail/ComponentInstance.hpp>

namespace cppmicroservices::declarativeservices {

/// The two functions of a bundle's library that make and remove the instance of a component.
struct FactoryFunctions {
  using Instance = service::component::detail::ComponentInstance;

  /// Finds the functions for the component `name` of a bundle that is active. Throws
  /// `ComponentException` when the library does not export them.
  static FactoryFunctions find(const Bundle& bundle, const std::string& name);

  Instance* (*create)() = nullptr;
  void (*remove)(Instance*) = nullptr;
};

}  // namespace cppmicroservices::declarativeservices
