#pragma once

#include <cppmicroservices/BundleContext.h>

#include <functional>

namespace embedded_framework {

/// What the activator of the bundle `scripted` does: a service that a test registers.
struct Script {
  std::function<void()> make = [] {};
  std::function<void(cppmicroservices::BundleContext)> start = [](const auto&) {};
  std::function<void(cppmicroservices::BundleContext)> stop = [](const auto&) {};

  /// The function of the bundle's library that returns its context. The activator's constructor
  /// sets it.
  cppmicroservices::BundleContext (*contextOfBundle)() = nullptr;

  /// Returns what the library has stored of its context. The activator's constructor sets it.
  cppmicroservices::BundleContextPrivate* (*storedContext)() = nullptr;
};

}  // namespace embedded_framework
