#pragma once

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/inputs/Input.hpp"

namespace tessera::view {

/// What has changed on disk.
struct Changes {
  /// Paths of files that were written, replaced or removed, as the inputs spell them.
  std::set<std::string> touched;
  /// Whether files may have come, gone or been renamed.
  bool isListChanged = false;
  /// Whether there were too many changes to tell which. Any file may have changed then, and the
  /// list.
  bool isUnknown = false;

  /// Adds what has changed according to `others`.
  void add(Changes others);

  bool isEmpty() const noexcept { return touched.empty() && !isListChanged && !isUnknown; }
};

/// Notices changes of files and of what directories contain, by inotify(7).
class FileWatch {
 public:
  /// Throws ProblemError when the system has no room for another watch.
  FileWatch();
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  /// Watches those of `paths` that are directories, with all below that are not hidden. What is
  /// watched already stays so. Throws ProblemError.
  ///
  /// A directory that is made later is reported as a change of the list: call this again then, and
  /// list the files only afterwards, because what happens in an unwatched directory is not noticed.
  void addDirectories(const std::vector<std::string>& paths);

  /// Watches the folders of `inputs`, and of the files to which those lead that are symbolic links;
  /// in place of a folder that does not exist, the nearest one above it. Read the inputs only
  /// afterwards. Adds those to `changes` whose folder was not watched before, because they may have
  /// changed meanwhile. Throws ProblemError.
  void addFoldersOf(const std::vector<inputs::Input>& inputs, Changes& changes);

  /// Waits for changes, for at most `patience`, and then until there are none for a moment, so that
  /// what was written in several steps is one change.
  Changes await(std::chrono::milliseconds patience);

 private:
  bool addNearest(const std::string& folder);
  bool addFolder(const std::string& folder);
  bool isReadable(std::chrono::milliseconds patience) const;
  void readEvents(Changes& changes);
  void note(int watch, unsigned mask, std::string_view name, Changes& changes);
  void touch(std::string path, Changes& changes) const;

  int descriptor;
  // How paths spell each folder, by the watch: with a slash at the end, or empty.
  std::map<int, std::set<std::string>> folders;
  // The inputs that are symbolic links, by the paths to which they lead.
  std::map<std::string, std::set<std::string>> links;
};

}  // namespace tessera::view
