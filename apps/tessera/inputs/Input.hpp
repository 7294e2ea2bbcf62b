#pragma once

#include <string>

namespace tessera::inputs {

/// A file to read.
struct Input {
  /// As the user named it, or below a directory that the user named. "-" is standard input.
  std::string path;
  /// Whether it was found in a directory: binary files found there are left out.
  bool isFound = false;
};

}  // namespace tessera::inputs
