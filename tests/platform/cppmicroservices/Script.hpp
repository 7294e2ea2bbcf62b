#pragma once

#include <cppmicroservices/BundleContext.h>

#include <functional>

namespace embedded_framework {

/// What the activator of the bundle `scripted` does: a service that a test registers.
struct Script {
  std::function<void(cppmicroservices::BundleContext)> start = [](const auto&) {};
  std::function<void(cppmicroservices::BundleContext)> stop = [](const auto&) {};
};

}  // namespace embedded_framework
