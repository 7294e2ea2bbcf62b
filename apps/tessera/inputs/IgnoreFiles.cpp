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
  folder = fs::canonical(directory, error);
  // One that does not exist has no files, either.
  root = error ? fs::path("/") : findRoot(folder);
  if (error) folder = root;
  for (fs::path parent = folder; parent != root && !above;) {
    parent = parent.parent_path();
    above = fs::exists(parent / ".gitignore", error);
  }
}

bool IgnoreFiles::exclude(const std::string& path) {
  if (!rules) readRules();
  return rules->select(prefix + path);
}

void IgnoreFiles::readRules() {
  rules = PathRules::inFolder(root.string());
  if (root == folder) return;
  prefix = folder.lexically_relative(root).string() + '/';
  if (!rules->select(prefix)) return;
  rules = PathRules::inFolder(folder.string());
  prefix.clear();
}

}  // namespace tessera::inputs
