#pragma once

#include <string>
#include <vector>

#include "tessera/inputs/GlobFilter.hpp"
#include "tessera/inputs/Input.hpp"

namespace tessera::inputs {

/// Finds the files of directories.
class DirectoryWalk {
 public:
  /// Borrows `globs`.
  DirectoryWalk(const GlobFilter& globs, bool respectsIgnoreFiles)
      : globs(globs), respectsIgnoreFiles(respectsIgnoreFiles) {}

  /// Appends the regular files in `directory` and below to `found` in byte order of their paths,
  /// without hidden ones, those that a .gitignore excludes and those that the globs do not accept.
  /// Does not follow symbolic links. A directory that cannot be read is appended itself.
  void list(const std::string& directory, std::vector<Input>& found) const;

 private:
  const GlobFilter& globs;
  bool respectsIgnoreFiles;
};

}  // namespace tessera::inputs
