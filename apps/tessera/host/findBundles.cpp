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
  // The runtime of the embedded framework is installed next to our libraries; that of an installed
  // framework stays where it is.
  const fs::path configured = TESSERA_DECLARATIVE_SERVICES;
  const fs::path embedded = folder / configured.filename();
  return {fs::exists(embedded) ? embedded.string() : configured.string(),
          (folder / TESSERA_PARSER_BUNDLE).string(), (folder / TESSERA_PIECE_BUNDLE).string()};
}

}  // namespace tessera::host
