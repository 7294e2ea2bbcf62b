#pragma once

#include <string>
#include <vector>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceProperties.h"

namespace cppmicroservices::detail {

/// Describes a service that a component needs.
struct ReferenceDescription {
  std::string name;
  std::string interfaceId;
};

/// Describes a component as the manifest of its bundle does. Identifiers of interfaces have no `::`
/// at their start.
struct ComponentDescription {
  /// The name, which is the class unless the manifest gives another.
  std::string name;
  std::vector<std::string> interfaceIds;
  ServiceProperties properties;
  std::vector<ReferenceDescription> references;
};

/// Returns the components that a manifest describes, in order; none without an entry "scr".
///
/// Throws `std::runtime_error` when the entry is malformed or uses a feature that this framework
/// does not have: the text names the file, the path in the manifest, the component if it is known,
/// and the remedy. `location` is the bundle's file.
QUENLITH_CPPMICROSERVICES_EXPORT std::vector<ComponentDescription> readComponents(
    const AnyMap& headers, const std::string& location);

/// Throws like `readComponents`.
void checkComponents(const AnyMap& headers, const std::string& location);

}  // namespace cppmicroservices::detail
