#pragma once

#include <filesystem>
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
  /// Does not look below the directory.
  explicit IgnoreFiles(const std::string& directory);

  /// Whether one above the directory may exclude what is in it.
  bool areAbove() const noexcept { return above; }

  /// Makes sure that the .gitignore file in a directory below, with the path `path`, can be read.
  /// To be called before a path in that directory is looked up. Throws ProblemError when it cannot.
  static void admit(const std::string& path);

  /// `path` is relative to the directory; that of a directory ends in "/". Throws ProblemError when
  /// a .gitignore file above the directory cannot be read, and as PathRules does.
  bool exclude(const std::string& path);

 private:
  void readRules();

  std::filesystem::path folder;
  std::filesystem::path root;
  bool above = false;
  // Made when they are needed first: most directories have no such file.
  std::optional<PathRules> rules;
  // The path of the directory relative to the folder of the rules; empty or ends in "/".
  std::string prefix;
};

}  // namespace tessera::inputs
