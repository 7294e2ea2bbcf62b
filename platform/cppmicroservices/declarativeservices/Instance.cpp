#include "Instance.hpp"

#include <stdexcept>

namespace cppmicroservices::declarativeservices {

Instance::Instance(const FactoryFunctions& factory,
                   const std::shared_ptr<service::component::ComponentContext>& context)
    : instance(factory.create(), factory.remove) {
  if (!instance) {
    throw std::runtime_error("its NewInstance_ function returned null, which means out of memory");
  }
  instance->CreateInstance(context);
  map = instance->GetInterfaceMap();
}

Instance::~Instance() {
  map.reset();
  instance->Deactivate();
}

}  // namespace cppmicroservices::declarativeservices
