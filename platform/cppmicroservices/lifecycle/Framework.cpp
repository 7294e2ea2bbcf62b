#include "cppmicroservices/Framework.h"

#include <stdexcept>

#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices {

namespace {

detail::SystemBundle& systemBundle(detail::BundlePrivate& bundle) {
  return static_cast<detail::SystemBundle&>(bundle);
}

}  // namespace

Framework::Framework(Bundle bundle) : Bundle(std::move(bundle)) {
  if (valid().id != 0) throw std::logic_error("the bundle " + d->symbolicName + " is no framework");
}

Framework::Framework(std::shared_ptr<detail::BundlePrivate> bundle,
                     std::shared_ptr<detail::FrameworkOwner> frameworkOwner)
    : Bundle(std::move(bundle), std::move(frameworkOwner)) {}

void Framework::Init() {
  systemBundle(valid()).init();
}

FrameworkEvent Framework::WaitForStop(const std::chrono::milliseconds& timeout) {
  return systemBundle(valid()).waitForStop(timeout);
}

}  // namespace cppmicroservices
