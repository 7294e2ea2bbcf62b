#pragma once

#include <memory>
#include <string>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/ServiceRegistration.h>

/// A component of a bundle that a test makes. Its class is one of `framework/broken/base.cpp`.
struct MadeComponent {
  std::string className;
  std::vector<std::string> interfaces;
  std::vector<std::string> references;
};

/// Writes a library of the given name with one bundle for each list of components, and installs it.
/// Returns the bundles in order.
std::vector<cppmicroservices::Bundle> installMade(
    cppmicroservices::BundleContext context, const std::string& library,
    const std::vector<std::vector<MadeComponent>>& bundles);

/// Registers a service under `interfaceId`, which no code can use.
cppmicroservices::ServiceRegistrationU registerNamed(cppmicroservices::BundleContext context,
                                                     const std::string& interfaceId);
