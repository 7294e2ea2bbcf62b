#include "tessera/inputs/DirectoryWalk.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "tessera/files/openBelow.hpp"
#include "tessera/inputs/IgnoreFiles.hpp"

namespace tessera::inputs {
namespace {

struct DirectoryCloser {
  void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

enum class EntryType { kFile, kDirectory, kOther };

EntryType typeOf(const std::string& path, const dirent& entry) {
  if (entry.d_type == DT_REG) return EntryType::kFile;
  if (entry.d_type == DT_DIR) return EntryType::kDirectory;
  if (entry.d_type != DT_UNKNOWN) return EntryType::kOther;
  struct stat status;
  // A file that cannot be looked at is listed, so that an error is reported; one that is gone is
  // not.
  if (::lstat(path.c_str(), &status) != 0) {
    return errno == ENOENT ? EntryType::kOther : EntryType::kFile;
  }
  if (S_ISDIR(status.st_mode)) return EntryType::kDirectory;
  return S_ISREG(status.st_mode) ? EntryType::kFile : EntryType::kOther;
}

struct Entries {
  /// The names that count, last one first; those of directories end in "/". Then the paths below
  /// come in byte order, because the "/" of a path is compared, too.
  std::vector<std::string> names;
  bool haveIgnoreFile = false;
  std::error_code error;
};

/// The iterator of the standard library ends the process when it has no memory for an entry.
Entries readEntries(const std::string& directory, std::size_t namedBytes) {
  Entries entries;
  files::Descriptor file = files::openBelow(directory, namedBytes, O_DIRECTORY);
  const std::unique_ptr<DIR, DirectoryCloser> stream(file.get() < 0 ? nullptr
                                                                    : ::fdopendir(file.get()));
  // The stream closes it.
  if (stream) file.release();
  errno = stream ? 0 : errno;
  while (const dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
    std::string name = entry->d_name;
    entries.haveIgnoreFile |= name == ".gitignore";
    if (name.starts_with('.')) continue;
    const EntryType type = typeOf(directory + name, *entry);
    if (type == EntryType::kDirectory) name += '/';
    if (type != EntryType::kOther) entries.names.push_back(std::move(name));
    errno = 0;
  }
  entries.error.assign(errno, std::generic_category());
  std::ranges::sort(entries.names, std::greater<>());
  return entries;
}

/// One walk through a directory: the paths that are still to be looked at, the next one last.
class Walk {
 public:
  Walk(const std::string& directory, const GlobFilter& globs, std::optional<IgnoreFiles>& ignored,
       std::vector<Input>& found)
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
        add(path);
      }
    }
  }

 private:
  /// `path` is relative to the root.
  void open(const std::string& path) {
    const Entries entries = readEntries(root + path, root.size());
    if (entries.haveIgnoreFile && ignored) ignored->enter(path, root + path, root.size());
    for (const std::string& name : entries.names) pending.push_back(path + name);
    if (entries.error) add(path);
  }

  void add(const std::string& path) {
    found.push_back({.path = root + path, .isFound = true, .namedBytes = root.size()});
  }

  std::string root;
  const GlobFilter& globs;
  std::optional<IgnoreFiles>& ignored;
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
