#include "tessera/inputs/DirectoryWalk.hpp"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>
#include <utility>

#include "tessera/inputs/IgnoreFiles.hpp"

namespace tessera::inputs {
namespace {

namespace fs = std::filesystem;

/// Returns the names in `directory` that count, last one first; those of directories end in "/".
/// Then the paths below come in byte order, because the "/" of a path is compared, too.
std::vector<std::string> readNames(const std::string& directory, std::error_code& error) {
  std::vector<std::string> names;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (name.starts_with('.')) continue;
    std::error_code isGone;
    const fs::file_type type = entry->symlink_status(isGone).type();
    if (type == fs::file_type::directory) {
      names.push_back(std::move(name) + '/');
    } else if (type == fs::file_type::regular) {
      names.push_back(std::move(name));
    }
  }
  std::ranges::sort(names, std::greater<>());
  return names;
}

/// One walk through a directory: the paths that are still to be looked at, the next one last.
class Walk {
 public:
  Walk(const std::string& directory, const GlobFilter& globs,
       const std::optional<IgnoreFiles>& ignored, std::vector<Input>& found)
      : root(directory.ends_with('/') ? directory : directory + '/'),
        globs(globs),
        ignored(ignored),
        found(found) {}

  void run() {
    open("");
    while (!pending.empty()) {
      const std::string path = std::move(pending.back());
      pending.pop_back();
      if (ignored && ignored->exclude(path)) continue;
      if (path.ends_with('/')) {
        open(path);
      } else if (globs.accept(path)) {
        found.push_back({.path = root + path, .isFound = true});
      }
    }
  }

 private:
  /// `path` is relative to the root.
  void open(const std::string& path) {
    std::error_code error;
    for (const std::string& name : readNames(root + path, error)) pending.push_back(path + name);
    if (error) found.push_back({.path = root + path});
  }

  std::string root;
  const GlobFilter& globs;
  const std::optional<IgnoreFiles>& ignored;
  std::vector<Input>& found;
  std::vector<std::string> pending;
};

}  // namespace

void DirectoryWalk::list(const std::string& directory, std::vector<Input>& found) const {
  std::optional<IgnoreFiles> ignored;
  if (respectsIgnoreFiles) ignored.emplace(directory);
  Walk(directory, globs, ignored, found).run();
}

}  // namespace tessera::inputs
