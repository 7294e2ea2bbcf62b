#pragma once

#include <string>

namespace tessera::host {

/// Where the bundles are that every run of the program needs.
struct BundleFiles {
  std::string declarativeServices;
  std::string parsers;
};

/// Returns the files of the bundles, found from the program's own place. They are not looked at.
BundleFiles findBundles();

}  // namespace tessera::host
