#pragma once

#include <string>
#include <vector>

namespace quenlith::elf {

/// What a shared library says about itself in its dynamic section.
struct SharedLibrary {
  /// Its DT_SONAME, "" without one.
  std::string soname;
  /// The libraries that it was linked with, in order: DT_NEEDED.
  std::vector<std::string> needed;
  /// The folders in which the loader looks for these, with $ORIGIN replaced: RUNPATH, else RPATH.
  std::vector<std::string> searchPaths;
  /// Whether these are the RUNPATH, which the loader searches after the folders of LD_LIBRARY_PATH.
  /// It searches an RPATH before them.
  bool hasRunPath = false;
};

/// Reads the dynamic section of the shared library `path`. Throws `UnusableLibrary` when the file
/// is not a shared library for this machine. No code of it is run.
SharedLibrary readSharedLibrary(const std::string& path);

/// Returns the names of the symbols that the library `path` defines for others, in no particular
/// order. Throws like `readSharedLibrary`.
std::vector<std::string> readDefinedSymbols(const std::string& path);

}  // namespace quenlith::elf
