#include "tessera/host/findBundles.hpp"

#include <filesystem>

namespace tessera::host {
namespace {

namespace fs = std::filesystem;

// The build tree has the shape of the installed one.
fs::path libraryFolder() {
  const fs::path program = fs::read_symlink("/proc/self/exe");
  return program.parent_path() / TESSERA_LIBRARY_FOLDER;
}

}  // namespace

BundleFiles findBundles() {
  const fs::path folder = libraryFolder();
  // The runtime of the embedded framework is a file name. That of an installed framework is an
  // absolute path, which replaces the folder.
  return {(folder / TESSERA_DECLARATIVE_SERVICES).string(),
          (folder / TESSERA_PARSER_BUNDLE).string(), (folder / TESSERA_PIECE_BUNDLE).string()};
}

}  // namespace tessera::host
