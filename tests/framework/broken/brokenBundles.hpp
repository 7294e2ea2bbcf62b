#pragma once

#include <ostream>
#include <string>
#include <vector>

/// How the file of a broken bundle is made out of the manifest of its row.
enum class Make {
  kBundle,        // library and archive, as it should be
  kNoFile,        // nothing
  kFolder,        // a folder in place of the file
  kManifestOnly,  // the manifest in place of the file
  kNoArchive,     // the library alone
  kCutArchive,    // the last bytes of the archive are missing
  kWrongBytes,    // one byte of the manifest is another one
  kOtherFile,     // the archive has another file
  kEmptyArchive,  // the archive has no file
  kNoFolder,      // the manifest stands outside of a folder
  kArchiveOnly,   // no library before the archive
  kOtherMachine,  // the library is for a machine of 32 bits
};

/// A bundle that is broken in one way.
struct BrokenBundle {
  const char* name;
  Make make;
  std::string manifest;
  // What the embedded framework says; FILE stands for the path.
  std::string message;
};

/// Shows the name where a test fails.
// NOLINTNEXTLINE(readability-identifier-naming): the test library fixes the name
inline void PrintTo(const BrokenBundle& bundle, std::ostream* out) {
  *out << bundle.name;
}

/// Returns the bundles, each with what is wrong with it and what is to be said of it.
const std::vector<BrokenBundle>& brokenBundles();
