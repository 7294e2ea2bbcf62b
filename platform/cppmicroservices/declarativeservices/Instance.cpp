#include "Instance.hpp"

#include <stdexcept>

namespace cppmicroservices::declarativeservices {

Instance::Instance(const FactoryFunctions& factory,
                   const std::shared_ptr<service::component::ComponentContext>& context)
    : instance(factory.create(), factory.remove) {
  if (!instance) {
    throw std::runtime_error("out of memory, as its NewInstance_ function returned null");
  }
  instance->CreateInstance(context);
  map = instance->GetInterfaceMap();
}

Instance::~Instance() {
  map.reset();
  instance->Deactivate();
}

}  // namespace cppmicroservices::declarativeservices
