#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessera::inputs {

/// Every `count`-th input, beginning with the one numbered `index`. 1 <= index <= count.
struct Shard {
  std::uint64_t index = 1;
  std::uint64_t count = 1;
};

/// Which files a command reads, as the user said it.
struct InputOptions {
  /// Files, directories, and at most one "-" for standard input.
  std::vector<std::string> paths;
  /// A file with more paths, "-" for standard input; empty if there is none.
  std::string listFile;
  /// Whether paths in that file end in NUL, not in a line feed.
  bool isNulSeparated = false;
  /// Files of directories must match one of them. In the syntax of .gitignore; "!" excludes.
  std::vector<std::string> globs;
  /// Whether .gitignore excludes files of directories.
  bool respectsIgnoreFiles = true;
  /// Whether a file that several paths lead to is read only once (`dropRepeated`).
  bool dropsRepeated = false;
  Shard shard;
};

}  // namespace tessera::inputs
