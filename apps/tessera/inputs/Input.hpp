#pragma once

#include <cstddef>
#include <string>

namespace tessera::inputs {

/// A file to read.
struct Input {
  /// As the user named it, or below a directory that the user named. "-" is standard input.
  std::string path;
  /// Whether it was found in a directory.
  bool isFound = false;
  /// Whether the user named it, too, perhaps by another path.
  bool isAlsoNamed = false;
  /// If so, the number of bytes at the start of `path` that name this directory, with a slash at
  /// the end. No symbolic link was followed in the rest.
  std::size_t namedBytes = 0;
  /// Whether it is the first of its run, perhaps of one that was interrupted.
  bool isFirst = false;

  /// Whether it is left out if it is binary, or the run itself writes it.
  bool mayBeLeftOut() const noexcept { return isFound && !isAlsoNamed; }
};

}  // namespace tessera::inputs
