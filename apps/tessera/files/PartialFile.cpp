#include "tessera/files/PartialFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/permissions.hpp"

namespace tessera::files {
namespace {

constexpr const char* kSuffix = ".partial";

/// Returns the file that `name` leads to: through symbolic links, if it exists.
std::string resolve(const std::string& name) {
  std::error_code error;
  const auto target = std::filesystem::canonical(name, error);
  return error ? name : target.string();
}

/// Returns the only absolute path of a file, which need not exist.
std::string absolute(const std::string& name) {
  std::error_code error;
  const auto path =
      std::filesystem::weakly_canonical(std::filesystem::absolute(name, error), error);
  return error ? name : path.string();
}

/// Calls ftruncate() until it is not interrupted.
bool cut(int descriptor, off_t size) {
  int result = -1;
  do {
    result = ::ftruncate(descriptor, size);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool isDirectlyWritten(const std::string& name) {
  struct stat status;
  return ::stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

OpenFolder openFolderOf(const std::string& name) {
  OpenFolder folder(name);
  if (!folder.isOpen()) failOutput(name, "cannot be created", errno);
  return folder;
}

/// Locks an open file for this process, unless another one has a lock. Workers do not inherit it:
/// when this process is killed, another run can begin though they may take a moment to end.
bool lock(int descriptor) {
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return ::fcntl(descriptor, F_SETLK, &whole) == 0;
}

/// Opens a file that is neither a regular one nor a folder.
int openDirectly(const std::string& name) {
  Descriptor file(::open(name.c_str(), O_WRONLY | O_CLOEXEC));
  if (file.get() < 0) failOutput(name, "cannot be created", errno);
  struct stat status;
  // Somebody may have replaced it meanwhile, perhaps by a link to another file.
  if (::fstat(file.get(), &status) == 0 && !S_ISREG(status.st_mode)) return file.release();
  throw diagnostics::OutputError({.file = name,
                                  .place = {},
                                  .what = "was replaced while it was opened",
                                  .remedy = "try again, or name another file"});
}

/// Returns what the system says about a regular file; nothing if there is none.
std::optional<struct stat> regularFile(const OpenFolder& folder, const std::string& entry) {
  struct stat status;
  if (!folder.stat(entry, status) || !S_ISREG(status.st_mode)) return std::nullopt;
  return status;
}

/// Opens and locks the partial file of one output.
class PartialOpening {
 public:
  PartialOpening(const OpenFolder& folder, const std::string& name)
      : folder(folder), name(name), path(name + kSuffix), entry(nameOfFile(path)) {}

  int openLocked() const {
    while (true) {
      // Not through a symbolic link that somebody put in the way.
      Descriptor file(folder.open(entry, O_RDWR | O_CREAT, mode()));
      if (file.get() < 0) failOpening();
      if (!lock(file.get())) failLocking(file);
      // Another run may have completed and renamed it before the lock was there.
      if (isStillThere(file)) return file.release();
    }
  }

 private:
  /// Until the file has the permissions of the one that it replaces, it is for its owner only.
  mode_t mode() const { return regularFile(folder, nameOfFile(name)) ? 0600 : 0666; }

  bool isStillThere(const Descriptor& file) const {
    struct stat held;
    struct stat named = {};
    const bool isKnown = ::fstat(file.get(), &held) == 0;
    if (!isKnown || (!folder.stat(entry, named) && errno != ENOENT)) {
      failOutput(name, "cannot be created", errno);
    }
    if (held.st_nlink == 0 || held.st_dev != named.st_dev || held.st_ino != named.st_ino) {
      return false;
    }
    if (S_ISREG(held.st_mode) && held.st_nlink == 1) return true;
    // A pipe, or a second name of a file that is elsewhere, was put there.
    failAsOther();
  }

  [[noreturn]] void failOpening() const {
    const int error = errno;
    struct stat status;
    // A symbolic link or a folder.
    if (folder.stat(entry, status) && !S_ISREG(status.st_mode)) failAsOther();
    failOutput(path, "cannot be created", error);
  }

  [[noreturn]] void failAsOther() const {
    throw diagnostics::OutputError(
        {.file = path,
         .place = {},
         .what = "exists, and is not the incomplete output of another run",
         .remedy = "remove it, or name another file"});
  }

  [[noreturn]] void failLocking(const Descriptor& file) const {
    const int error = errno;
    const bool isLocked = error == EACCES || error == EAGAIN;
    struct stat status;
    // Nobody has a lock, and nothing is lost.
    if (!isLocked && ::fstat(file.get(), &status) == 0 && status.st_size == 0) {
      folder.unlink(entry);
    }
    if (!isLocked) failOutput(path, "cannot be locked", error);
    throw diagnostics::OutputError({.file = path,
                                    .place = {},
                                    .what = "another run is writing it",
                                    .remedy = "wait for that run, or name another file"});
  }

  const OpenFolder& folder;
  const std::string& name;
  std::string path;
  std::string entry;
};

}  // namespace

OutputNames outputNames(const std::string& name) {
  const std::string complete = resolve(name);
  return {.complete = complete, .partial = complete + kSuffix};
}

bool haveCommonName(const std::string& name, const std::string& other) {
  const std::string first = absolute(outputNames(name).complete);
  const std::string second = absolute(outputNames(other).complete);
  return first == second || first + kSuffix == second || first == second + kSuffix;
}

PartialFile::PartialFile(const std::string& givenName, Leftover leftover, Incomplete incomplete)
    : PartialFile(givenName, incomplete, HeldInterruptions()) {
  // The destructor runs if this throws.
  if (leftover == Leftover::kReplaced) cutAfter(0);
}

PartialFile::PartialFile(const std::string& givenName, Incomplete incomplete,
                         const HeldInterruptions& /*held*/)
    : name(resolve(givenName)),
      folder(openFolderOf(name)),
      partial(isDirectlyWritten(name) ? std::string() : name + kSuffix),
      partialEntry(nameOfFile(partial)),
      number(partial.empty() ? openDirectly(name) : PartialOpening(folder, name).openLocked()),
      file(number, givenName) {
  if (partial.empty() || incomplete == Incomplete::kKept) return;
  removal.emplace(folder.number(), partialEntry);
}

PartialFile::~PartialFile() {
  if (number < 0) return;
  struct stat status;
  const bool isEmpty = ::fstat(number, &status) == 0 && status.st_size == 0;
  if (!partial.empty() && isIncomplete && (removal || isEmpty)) {
    folder.unlink(partialEntry);
  }
  ::close(number);
}

bool PartialFile::cutAfter(std::uint64_t size) {
  if (partial.empty()) return false;
  const auto end = static_cast<off_t>(size);
  if (!cut(number, end) || ::lseek(number, end, SEEK_SET) < 0) {
    failOutput(name, "cannot be written", errno);
  }
  return true;
}

void PartialFile::complete() {
  file.flush();
  if (partial.empty()) return;
  const std::string entry = nameOfFile(name);
  if (const auto old = regularFile(folder, entry)) takePermissions(entry, *old);
  if (::fdatasync(number) != 0) failWriting(errno);
  if (!folder.rename(partialEntry, entry)) failOutput(name, "cannot be replaced", errno);
  isIncomplete = false;
  removal.reset();
}

/// Whoever may read and write the old file may do so with the new one.
void PartialFile::takePermissions(const std::string& entry, const struct stat& old) {
  const Descriptor file(folder.open(entry, O_RDONLY | O_NONBLOCK));
  if (file.get() >= 0 && copyPermissions(file.get(), number)) return;
  // If that fails too, it is for its owner only.
  static_cast<void>(limitPermissions(number, old.st_mode));
}

void PartialFile::failWriting(int error) {
  // The system does not write the same bytes again: a run that continued the file would complete it
  // without them. An empty file is kept, so that an older output is not taken for that of this run.
  if (!removal && cut(number, 0)) isIncomplete = false;
  failOutput(name, "cannot be written", error);
}

}  // namespace tessera::files
