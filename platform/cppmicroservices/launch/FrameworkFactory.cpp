#include "cppmicroservices/FrameworkFactory.h"

#include "components/ComponentDescription.hpp"
#include "cppmicroservices/Framework.h"
#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices {

// The core of the framework knows nothing of Declarative Services. It is told here how to check the
// components of a manifest, so that a bundle with a bad one is not installed at all.
Framework FrameworkFactory::NewFramework() {
  auto owner = detail::FrameworkCore::make(&detail::checkComponents);
  auto bundle = owner->core->find(0);
  return Framework(std::move(bundle), std::move(owner));
}

}  // namespace cppmicroservices
