#include "tessera/view/FileWatch.hpp"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::view {
namespace {

namespace fs = std::filesystem;

// A link has its content when it is created. A change of attributes may make a file readable.
constexpr unsigned kTouched =
    IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB;
constexpr unsigned kListed =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
// An editor writes a file in several steps, which are this close to each other.
constexpr std::chrono::milliseconds kPause{5};
// Changes that do not pause are shown nonetheless.
constexpr std::chrono::milliseconds kLongestBurst{50};
// The system follows no more of them either.
constexpr int kMaxLinks = 40;

[[noreturn]] void failWatch(const std::string& folder, int error) {
  throw diagnostics::ProblemError(
      {.file = folder,
       .place = {},
       .what = std::string("it cannot be watched for changes (") + std::strerror(error) + ")",
       .remedy = "name fewer directories, or raise fs.inotify.max_user_watches"});
}

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

/// Returns the nearest existing folder at or above `folder`, spelled in the same way.
std::string nearestExisting(std::string folder) {
  std::error_code ignored;
  while (!folder.empty() && !fs::is_directory(folder, ignored)) {
    folder.pop_back();
    folder = folderOf(folder);
  }
  return folder;
}

/// Returns the paths to which `path` leads through symbolic links, one after the other.
std::vector<std::string> targetsOf(const std::string& path) {
  std::vector<std::string> targets;
  std::error_code error;
  fs::path at = path;
  for (int count = 0; count < kMaxLinks; ++count) {
    const fs::path target = fs::read_symlink(at, error);
    if (error) break;
    at = at.parent_path() / target;
    targets.push_back(at.native());
  }
  return targets;
}

/// Returns whether an event says that other files may be listed.
bool changesList(unsigned mask, std::string_view name) {
  const bool isOtherFolder = (mask & IN_ISDIR) != 0 && (mask & IN_ATTRIB) != 0;
  return (mask & kListed) != 0 || isOtherFolder || name == ".gitignore";
}

bool isHidden(const fs::path& path) {
  return path.filename().native().starts_with('.');
}

/// Returns a directory and all below it that are not hidden, each with a slash at the end. A path
/// that is not a directory gives none.
std::vector<std::string> foldersBelow(const std::string& path) {
  std::error_code ignored;
  if (!fs::is_directory(path, ignored)) return {};
  std::vector<std::string> found{path.ends_with('/') ? path : path + '/'};
  fs::recursive_directory_iterator below(path, ignored);
  for (; below != fs::end(below); below.increment(ignored)) {
    if (!below->is_directory(ignored) || below->is_symlink(ignored)) continue;
    if (isHidden(below->path())) {
      below.disable_recursion_pending();
    } else {
      found.push_back(below->path().native() + '/');
    }
  }
  return found;
}

}  // namespace

void Changes::add(Changes others) {
  touched.merge(others.touched);
  isListChanged = isListChanged || others.isListChanged;
  isUnknown = isUnknown || others.isUnknown;
}

FileWatch::FileWatch() : descriptor(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  if (descriptor < 0) failWatch("tessera", errno);
}

FileWatch::~FileWatch() {
  ::close(descriptor);
}

void FileWatch::addDirectories(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    // A directory that was made in another before that was watched is found by the next round.
    for (bool isComplete = false; !isComplete;) {
      isComplete = true;
      for (const std::string& folder : foldersBelow(path)) {
        if (addFolder(folder)) isComplete = false;
      }
    }
  }
}

void FileWatch::addFoldersOf(const std::vector<inputs::Input>& inputs, Changes& changes) {
  std::map<std::string, bool> areNew;
  const auto addFolderOf = [&](const std::string& path) {
    const auto [folder, isFirst] = areNew.try_emplace(folderOf(path), false);
    if (isFirst) folder->second = addNearest(folder->first);
    return folder->second;
  };
  links.clear();
  for (const inputs::Input& input : inputs) {
    bool isNew = addFolderOf(input.path);
    // Those that were found are not links.
    const auto targets = input.isFound ? std::vector<std::string>() : targetsOf(input.path);
    for (const std::string& target : targets) {
      links[target].insert(input.path);
      if (addFolderOf(target)) isNew = true;
    }
    if (isNew) changes.touched.insert(input.path);
  }
}

/// Returns whether the folder exists and was not watched before by this name.
bool FileWatch::addNearest(const std::string& folder) {
  // What was made in a folder before that was watched is found by the next round.
  while (true) {
    const std::string nearest = nearestExisting(folder);
    const bool isNew = addFolder(nearest);
    if (!isNew || nearest == folder) return isNew;
  }
}

/// Returns whether the folder was not watched before by this name.
bool FileWatch::addFolder(const std::string& folder) {
  const char* const path = folder.empty() ? "." : folder.c_str();
  const int watch = ::inotify_add_watch(descriptor, path, kTouched | kListed | IN_ONLYDIR);
  if (watch >= 0) return folders[watch].insert(folder).second;
  if (errno == ENOSPC || errno == ENOMEM) failWatch(folder, errno);
  // A folder that is gone again is noticed in the one that contained it.
  return false;
}

Changes FileWatch::await(std::chrono::milliseconds patience) {
  Changes changes;
  if (!isReadable(patience)) return changes;
  const auto end = std::chrono::steady_clock::now() + kLongestBurst;
  do {
    readEvents(changes);
  } while (std::chrono::steady_clock::now() < end && isReadable(kPause));
  return changes;
}

bool FileWatch::isReadable(std::chrono::milliseconds patience) const {
  pollfd events{.fd = descriptor, .events = POLLIN, .revents = 0};
  return ::poll(&events, 1, static_cast<int>(patience.count())) > 0;
}

void FileWatch::readEvents(Changes& changes) {
  // Not on the stack, which may be small. Allocated memory is aligned for every type.
  std::vector<char> buffer(64 * 1024);
  const ssize_t size = ::read(descriptor, buffer.data(), buffer.size());
  for (std::size_t i = 0; size > 0 && i < static_cast<std::size_t>(size);) {
    const auto& event = *reinterpret_cast<const inotify_event*>(buffer.data() + i);
    note(event.wd, event.mask, event.len == 0 ? "" : event.name, changes);
    i += sizeof(inotify_event) + event.len;
  }
}

void FileWatch::note(int watch, unsigned mask, std::string_view name, Changes& changes) {
  if ((mask & (IN_Q_OVERFLOW | IN_MOVE_SELF)) != 0) changes.isUnknown = true;
  if (changesList(mask, name)) changes.isListChanged = true;
  const auto folder = folders.find(watch);
  if (folder == folders.end()) return;
  // It has another name, if any.
  if ((mask & IN_MOVE_SELF) != 0) ::inotify_rm_watch(descriptor, watch);
  if ((mask & (IN_IGNORED | IN_MOVE_SELF)) != 0) {
    folders.erase(folder);
    return;
  }
  if ((mask & kTouched) == 0) return;
  for (const std::string& spelling : folder->second) touch(spelling + std::string(name), changes);
}

void FileWatch::touch(std::string path, Changes& changes) const {
  const auto leading = links.find(path);
  if (leading != links.end()) {
    changes.touched.insert(leading->second.begin(), leading->second.end());
  }
  changes.touched.insert(std::move(path));
}

}  // namespace tessera::view
