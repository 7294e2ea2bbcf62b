#include "tessera/files/PartialFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::files {
namespace {

/// Returns the file that `name` leads to: through symbolic links, if it exists.
std::string resolve(const std::string& name) {
  std::error_code error;
  const auto target = std::filesystem::canonical(name, error);
  return error ? name : target.string();
}

bool isDirectlyWritten(const std::string& name) {
  struct stat status;
  return ::stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

int openFor(const std::string& name, const std::string& partial) {
  // Not through a symbolic link that somebody put in the way.
  return partial.empty() ? ::open(name.c_str(), O_WRONLY | O_CLOEXEC)
                         : ::open(partial.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
}

/// Returns whether `name` is the open file `descriptor`; nothing, with errno set, if that cannot be
/// found out.
std::optional<bool> isCalled(int descriptor, const std::string& name) {
  struct stat held;
  struct stat named;
  if (::fstat(descriptor, &held) != 0) return std::nullopt;
  if (::stat(name.c_str(), &named) != 0) {
    return errno == ENOENT ? std::optional(false) : std::nullopt;
  }
  return held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

/// Locks an open file for this process, unless another one has a lock. Workers do not inherit it:
/// when this process is killed, another run can begin though they may take a moment to end.
bool lock(int descriptor) {
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return ::fcntl(descriptor, F_SETLK, &whole) == 0;
}

/// Closes `descriptor`, the file `partial`, and says why it could not be locked.
[[noreturn]] void failLocking(const std::string& partial, int descriptor) {
  const int error = errno;
  const bool isLocked = error == EACCES || error == EAGAIN;
  struct stat status;
  // Nobody has a lock, and nothing is lost.
  if (!isLocked && ::fstat(descriptor, &status) == 0 && status.st_size == 0) {
    ::unlink(partial.c_str());
  }
  ::close(descriptor);
  if (!isLocked) failOutput(partial, "cannot be locked", error);
  throw diagnostics::OutputError({.file = partial,
                                  .place = {},
                                  .what = "another run is writing it",
                                  .remedy = "wait for that run, or name another file"});
}

/// Opens `partial` and locks it, or `name` if `partial` is empty.
int openLocked(const std::string& name, const std::string& partial) {
  while (true) {
    const int descriptor = openFor(name, partial);
    if (descriptor < 0) failOutput(name, "cannot be created", errno);
    if (partial.empty()) return descriptor;
    if (!lock(descriptor)) failLocking(partial, descriptor);
    // Another run may have completed and renamed it before the lock was there.
    const std::optional<bool> isOurs = isCalled(descriptor, partial);
    if (isOurs == true) return descriptor;
    const int error = errno;
    ::close(descriptor);
    if (!isOurs) failOutput(name, "cannot be created", error);
  }
}

}  // namespace

PartialFile::PartialFile(const std::string& givenName, Leftover leftover)
    : PartialFile(givenName, HeldInterruptions()) {
  // The destructor runs if this throws.
  if (leftover == Leftover::kReplaced) cutAfter(0);
}

PartialFile::PartialFile(const std::string& givenName, const HeldInterruptions& /*held*/)
    : name(resolve(givenName)),
      partial(isDirectlyWritten(name) ? std::string() : name + ".partial"),
      number(openLocked(name, partial)),
      file(number, givenName) {
  if (!partial.empty()) removal.emplace(partial);
}

void PartialFile::keepIncomplete() noexcept {
  removal.reset();
}

PartialFile::~PartialFile() {
  if (number < 0) return;
  struct stat status;
  const bool isEmpty = ::fstat(number, &status) == 0 && status.st_size == 0;
  if (!partial.empty() && isIncomplete && (removal || isEmpty)) ::unlink(partial.c_str());
  ::close(number);
}

bool PartialFile::cutAfter(std::uint64_t size) {
  if (partial.empty()) return false;
  const auto end = static_cast<off_t>(size);
  if (::ftruncate(number, end) != 0 || ::lseek(number, end, SEEK_SET) < 0) {
    failOutput(name, "cannot be written", errno);
  }
  return true;
}

void PartialFile::complete() {
  file.flush();
  if (partial.empty()) return;
  struct stat old;
  if (::stat(name.c_str(), &old) == 0) static_cast<void>(::fchmod(number, old.st_mode & 07777));
  if (::fdatasync(number) != 0) failOutput(name, "cannot be written", errno);
  if (::rename(partial.c_str(), name.c_str()) != 0) {
    failOutput(name, "cannot be replaced", errno);
  }
  isIncomplete = false;
  removal.reset();
}

}  // namespace tessera::files
