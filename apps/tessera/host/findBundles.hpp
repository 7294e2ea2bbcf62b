#pragma once

#include <string>

namespace tessera::host {

/// The files of the bundles that every run of the program needs.
struct BundleFiles {
  std::string declarativeServices;
  std::string parsers;
};

/// Returns the files of the bundles, relative to the program's own file. Does not check that they
/// exist.
BundleFiles findBundles();

}  // namespace tessera::host
