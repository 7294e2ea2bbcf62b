#include "tessera/inputs/IgnoreFiles.hpp"

#include <filesystem>
#include <system_error>

namespace tessera::inputs {
namespace {

namespace fs = std::filesystem;

/// Returns the root of the git work tree that contains `directory`, or `directory` without one.
fs::path findRoot(const fs::path& directory) {
  std::error_code ignored;
  for (fs::path folder = directory;; folder = folder.parent_path()) {
    if (fs::exists(folder / ".git", ignored)) return folder;
    if (folder == folder.root_path()) return directory;
  }
}

}  // namespace

IgnoreFiles::IgnoreFiles(const std::string& directory) {
  std::error_code error;
  const fs::path folder = fs::canonical(directory, error);
  // One that does not exist has no files, either.
  const fs::path root = error ? fs::path("/") : findRoot(folder);
  rules = PathRules::inFolder(root.string());
  if (error || root == folder) return;
  prefix = folder.lexically_relative(root).string() + '/';
  if (!rules->select(prefix)) return;
  rules = PathRules::inFolder(folder.string());
  prefix.clear();
}

}  // namespace tessera::inputs
