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

/// Describes a component as the manifest of its bundle does.
struct ComponentDescription {
  /// The name, which is the class unless the manifest gives another.
  std::string name;
  std::vector<std::string> interfaceIds;
  ServiceProperties properties;
  std::vector<ReferenceDescription> references;
};

/// Returns the components that a manifest describes, in order; none without an entry "scr".
///
/// Throws `std::runtime_error` when the entry is not as it should be, or asks for something that
/// this framework does not have: the text names the file, the place in the manifest and the
/// remedy, and the component where it has a name already. `location` is the bundle's file.
QUENLITH_CPPMICROSERVICES_EXPORT std::vector<ComponentDescription> readComponents(
    const AnyMap& headers, const std::string& location);

/// Like `readComponents`, for what it throws.
void checkComponents(const AnyMap& headers, const std::string& location);

}  // namespace cppmicroservices::detail
