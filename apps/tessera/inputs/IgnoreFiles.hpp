#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "tessera/inputs/PathRules.hpp"

namespace tessera::inputs {

/// What the .gitignore files exclude below a directory: those in it and below, and when it is part
/// of a git work tree, those above it in the tree.
///
/// A directory that they exclude itself, but that the user named, only has its own rules.
class IgnoreFiles {
 public:
  /// Does not look into the directory. Throws ProblemError when a .gitignore file above it cannot
  /// be read.
  explicit IgnoreFiles(const std::string& directory);

  /// Reads the .gitignore file of the directory `path`, which is relative to the directory and
  /// empty or ends in "/". It is opened by the name `folder`, in which symbolic links are followed
  /// in the first `namedBytes` bytes only. Call it before a path in that directory is looked up.
  /// Throws as the constructor.
  void enter(const std::string& path, const std::string& folder, std::size_t namedBytes);

  /// `path` is relative to the directory; that of a directory ends in "/". Call it for the paths in
  /// the order of a walk, and not for those in a directory that is excluded.
  bool exclude(const std::string& path);

 private:
  /// The rules of one file.
  struct Level {
    /// The directory of the file, relative to the root of the work tree.
    std::string path;
    PathRules rules;
  };

  void readAbove(const std::filesystem::path& folder, const std::filesystem::path& root);
  bool selects(const std::string& path) const;

  // From the outermost directory inwards, those around the path looked up last.
  std::vector<Level> levels;
  // The directory, relative to the root of the work tree: empty or ends in "/".
  std::string prefix;
};

}  // namespace tessera::inputs
