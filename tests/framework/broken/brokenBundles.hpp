#pragma once

#include <ostream>
#include <string>
#include <vector>

/// How the file of a broken bundle is made from its manifest.
enum class Make {
  kBundle,        // an intact library and archive
  kNoFile,        // nothing
  kFolder,        // a folder in place of the file
  kManifestOnly,  // the manifest in place of the file
  kNoArchive,     // the library alone
  kCutArchive,    // the last bytes of the archive are missing
  kWrongBytes,    // one byte of the manifest is changed
  kOtherFile,     // the archive has another file
  kEmptyArchive,  // the archive has no file
  kNoFolder,      // the manifest is not in a folder
  kArchiveOnly,   // no library before the archive
  kOtherMachine,  // the library is for a 32-bit machine
};

/// A bundle that is broken in one way.
struct BrokenBundle {
  const char* name;
  Make make;
  std::string manifest;
  // The message of the embedded framework, with FILE in place of the path.
  std::string message;
};

/// Prints the name when a test fails.
// NOLINTNEXTLINE(readability-identifier-naming): the test library fixes the name
inline void PrintTo(const BrokenBundle& bundle, std::ostream* out) {
  *out << bundle.name;
}

/// Returns the bundles, each with its fault and the expected message.
const std::vector<BrokenBundle>& brokenBundles();
