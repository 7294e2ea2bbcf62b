#pragma once

#include <string>
#include <vector>

#include "cppmicroservices/AnyMap.h"

namespace tessera::host {

/// A service that a component needs before its own one is registered.
struct Reference {
  std::string name;
  std::string interfaceId;
};

/// A component as the manifest of its bundle describes it.
struct Component {
  std::string name;
  std::vector<std::string> interfaceIds;
  /// Those that the component cannot be without.
  std::vector<Reference> references;
  /// Whether its service is to be registered as soon as its references are there: not with
  /// features that make this depend on more, which only an installed framework has.
  bool isAutomatic = true;
};

/// Returns the components in the manifest `headers` of a bundle. What is not as it should be is
/// left out: saying so is the framework's part.
std::vector<Component> readComponents(const cppmicroservices::AnyMap& headers);

/// Returns whether the bundle with the manifest `headers` has an activator, whose code runs at the
/// start.
bool hasActivator(const cppmicroservices::AnyMap& headers);

/// Returns the name of the function that makes the component `name`.
std::string factoryOf(const std::string& name);

}  // namespace tessera::host
