#pragma once

#include <memory>

#include <cppmicroservices/servicecomponent/ComponentContext.hpp>

#include "FactoryFunctions.hpp"

namespace cppmicroservices::declarativeservices {

/// Owns the instance of a component and, through it, the implementation object.
class Instance {
 public:
  /// Makes both. Throws what the constructor of the implementation throws, and
  /// `std::runtime_error` when the factory gives no instance.
  Instance(const FactoryFunctions& factory,
           const std::shared_ptr<service::component::ComponentContext>& context);

  /// Destroys the implementation, then the instance.
  ~Instance();

  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  /// Returns the implementation under each of its interfaces.
  InterfaceMapConstPtr services() const { return map; }

 private:
  std::unique_ptr<FactoryFunctions::Instance, void (*)(FactoryFunctions::Instance*)> instance;
  InterfaceMapConstPtr map;
};

}  // namespace cppmicroservices::declarativeservices
