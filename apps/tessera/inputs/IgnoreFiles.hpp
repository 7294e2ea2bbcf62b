#pragma once

#include <optional>
#include <string>

#include "tessera/inputs/PathRules.hpp"

namespace tessera::inputs {

/// What the .gitignore files exclude below a directory: those in it and below, and when it is part
/// of a git work tree, those above it in the tree.
///
/// A directory that they exclude itself, but that the user named, only has its own rules.
class IgnoreFiles {
 public:
  /// Throws as PathRules does.
  explicit IgnoreFiles(const std::string& directory);

  /// `path` is relative to the directory; that of a directory ends in "/".
  bool exclude(const std::string& path) const { return rules->select(prefix + path); }

 private:
  std::optional<PathRules> rules;
  // The path of the directory relative to the folder of the rules; empty or ends in "/".
  std::string prefix;
};

}  // namespace tessera::inputs
