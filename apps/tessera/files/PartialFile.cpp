#include "tessera/files/PartialFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/files/permissions.hpp"

namespace tessera::files {
namespace {

constexpr const char* kSuffix = ".partial";
constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

/// Returns the file that `name` leads to, if it is a symbolic link and that exists.
std::string resolve(const std::string& name, std::error_code& error) {
  if (!std::filesystem::is_symlink(name, error)) return name;
  const auto target = std::filesystem::canonical(name, error);
  return error ? name : target.string();
}

std::string resolveToWrite(const std::string& name) {
  std::error_code error;
  std::string target = resolve(name, error);
  if (!error || error == std::errc::no_such_file_or_directory) return target;
  failOutput(name, "cannot be created", error.value());
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

/// Opens and locks the partial file of one output.
class PartialOpening {
 public:
  PartialOpening(const OpenFolder& folder, const std::string& name)
      : folder(folder), name(name), path(name + kSuffix), entry(nameOfFile(path)) {}

  int openLocked(Leftover leftover) const {
    constexpr int kMostAttempts = 100;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
      Descriptor file = create();
      const bool isNew = file.get() >= 0;
      if (!isNew) file = openLeftover();
      // Another run may have completed and renamed it meanwhile.
      if (file.get() < 0 || !holdLock(file)) continue;
      if (isNew) return file.release();
      if (leftover == Leftover::kContinued) return continueWith(std::move(file));
      // It may have other permissions than this run gives.
      if (!folder.unlink(entry)) failOutput(path, "cannot be removed", errno);
    }
    failAsWritten();
  }

 private:
  /// The result is negative if there is one already.
  Descriptor create() const {
    Descriptor file(
        folder.open(entry, O_RDWR | O_CREAT | O_EXCL, isReplacing() ? kOwnerOnly : 0666));
    if (file.get() < 0 && errno != EEXIST) failOpening();
    return file;
  }

  /// Not through a symbolic link that somebody put in the way. The result is negative if there is
  /// none any more.
  Descriptor openLeftover() const {
    Descriptor file(folder.open(entry, O_RDWR));
    if (file.get() < 0 && errno != ENOENT) failOpening();
    return file;
  }

  /// Whether the file takes the place of another one: until it has its permissions, it is for its
  /// owner only.
  bool isReplacing() const {
    struct stat status;
    return folder.stat(nameOfFile(name), status) && S_ISREG(status.st_mode);
  }

  int continueWith(Descriptor file) const {
    struct stat status;
    if (::fstat(file.get(), &status) != 0) failOutput(path, "cannot be read", errno);
    if (status.st_uid != ::geteuid()) failAsForeign();
    // Where the system refuses that, all files have the same mode.
    if (isReplacing()) static_cast<void>(::fchmod(file.get(), kOwnerOnly));
    return file.release();
  }

  /// Returns whether the file has its name once it is locked.
  bool holdLock(const Descriptor& file) const {
    if (!lock(file.get())) failLocking(file);
    return isStillThere(file);
  }

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
    const bool isThere = folder.stat(entry, status);
    // A symbolic link or a folder.
    if (isThere && !S_ISREG(status.st_mode)) failAsOther();
    if (isThere && error == EACCES && status.st_uid != ::geteuid()) failAsForeign();
    failOutput(isThere ? path : name, "cannot be created", error);
  }

  [[noreturn]] void failAsOther() const {
    throw diagnostics::OutputError(
        {.file = path,
         .place = {},
         .what = "exists, and is not the incomplete output of another run",
         .remedy = "remove it, or name another file"});
  }

  [[noreturn]] void failAsForeign() const {
    throw diagnostics::OutputError(
        {.file = path,
         .place = {},
         .what = "exists, and belongs to another user",
         .remedy = "let that user continue or remove it, or name another file"});
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
    failAsWritten();
  }

  [[noreturn]] void failAsWritten() const {
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
  std::error_code unused;
  const std::string complete = resolve(name, unused);
  return {.complete = complete, .partial = complete + kSuffix};
}

bool haveCommonName(const std::string& name, const std::string& other) {
  const std::string first = absolute(outputNames(name).complete);
  const std::string second = absolute(outputNames(other).complete);
  return first == second || first + kSuffix == second || first == second + kSuffix;
}

PartialFile::PartialFile(const std::string& givenName, Leftover leftover, Incomplete incomplete)
    : PartialFile(resolveToWrite(givenName)) {
  // The destructor runs if this throws.
  open(leftover, incomplete);
  file.emplace(number, givenName);
}

PartialFile::PartialFile(std::string resolvedName)
    : name(std::move(resolvedName)),
      folder(openFolderOf(name)),
      partial(isDirectlyWritten(name) ? std::string() : name + kSuffix),
      partialEntry(nameOfFile(partial)) {}

void PartialFile::open(Leftover leftover, Incomplete incomplete) {
  if (partial.empty()) {
    number = openDirectly(name);
    return;
  }
  // No interruption arrives before it is known that the file is to be removed.
  const HeldInterruptions held;
  number = PartialOpening(folder, name).openLocked(leftover);
  if (incomplete == Incomplete::kRemoved) removal.emplace(folder.number(), partialEntry);
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
  file->flush();
  if (partial.empty()) return;
  const std::string entry = nameOfFile(name);
  struct stat status;
  const bool isReplacing = folder.stat(entry, status) && S_ISREG(status.st_mode);
  // Another process may have a lease on it.
  const Descriptor old = isReplacing ? folder.openToRead(entry) : Descriptor(-1);
  if (::fdatasync(number) != 0) failWriting(errno);
  // With the permissions of the other file, but without its name, it could perhaps not be
  // continued.
  const HeldInterruptions held;
  if (isReplacing) takePermissions(old);
  if (!folder.rename(partialEntry, entry)) failReplacing(errno);
  isIncomplete = false;
  removal.reset();
}

/// Takes those of the file that is replaced; it is not open if it may not be read.
void PartialFile::takePermissions(const Descriptor& old) {
  const bool isKnown = old.get() >= 0;
  if (isKnown && (copyPermissions(old.get(), number) || restrictPermissions(old.get(), number))) {
    return;
  }
  if (::fchmod(number, kOwnerOnly) != 0) failReplacing(errno);
}

/// Takes the permissions back, as far as possible.
void PartialFile::failReplacing(int error) {
  [[maybe_unused]] const bool isOurs = ::fchown(number, ::geteuid(), ::getegid()) == 0;
  [[maybe_unused]] const bool isPrivate = ::fchmod(number, kOwnerOnly) == 0;
  failOutput(name, "cannot be replaced", error);
}

void PartialFile::failWriting(int error) {
  // The system does not write the same bytes again: a run that continued the file would complete it
  // without them. An empty file is kept, so that an older output is not taken for that of this run.
  if (!removal && cut(number, 0)) isIncomplete = false;
  failOutput(name, "cannot be written", error);
}

}  // namespace tessera::files
