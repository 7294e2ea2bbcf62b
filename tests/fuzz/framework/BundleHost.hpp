#pragma once

#include <cppmicroservices/AnyMap.h>

#include <optional>
#include <string>
#include <vector>

namespace quenlith::fuzz {

/// What a framework makes of the library of a bundle.
struct InstalledBundles {
  /// The headers of each bundle.
  std::vector<cppmicroservices::AnyMap> headers;
  /// Why the library was refused.
  std::optional<std::string> refusal;
};

/// Installs the bundles of the library `path` in a framework that runs as long as this process, and
/// uninstalls them.
InstalledBundles installOnce(const std::string& path);

}  // namespace quenlith::fuzz
