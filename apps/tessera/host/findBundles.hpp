#pragma once

#include <string>

namespace tessera::host {

/// The files of the program's own bundles.
struct BundleFiles {
  std::string declarativeServices;
  std::string parsers;
  std::string pieces;
};

/// Returns the files of the bundles, relative to the program's own file. Does not check that they
/// exist.
BundleFiles findBundles();

}  // namespace tessera::host
