#include "tessera/view/FileWatch.hpp"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::view {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kTouched = IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
constexpr unsigned kListed =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
// An editor writes a file in several steps, which are this close to each other.
constexpr std::chrono::milliseconds kPause{5};
// Changes that do not pause are shown nonetheless.
constexpr std::chrono::milliseconds kLongestBurst{50};

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

void FileWatch::addFoldersOf(const std::vector<inputs::Input>& inputs) {
  std::set<std::string> found;
  for (const inputs::Input& input : inputs) found.insert(folderOf(input.path));
  for (const std::string& folder : found) addFolder(folder);
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
  if ((mask & IN_Q_OVERFLOW) != 0) changes.isUnknown = true;
  if ((mask & kListed) != 0) changes.isListChanged = true;
  const auto folder = folders.find(watch);
  if ((mask & IN_IGNORED) != 0 && folder != folders.end()) {
    folders.erase(folder);
    return;
  }
  if ((mask & kTouched) == 0 || folder == folders.end()) return;
  for (const std::string& spelling : folder->second) {
    changes.touched.insert(spelling + std::string(name));
  }
}

}  // namespace tessera::view
