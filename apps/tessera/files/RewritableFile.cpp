#include "tessera/files/RewritableFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::files {
namespace {

bool isSame(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/// Returns whether both are the same file in the same state.
bool isSame(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         isSame(a.st_mtim, b.st_mtim) && isSame(a.st_ctim, b.st_ctim);
}

/// An open file that is closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : number(number) {}
  ~Descriptor() {
    if (number >= 0) ::close(number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const noexcept { return number; }

  /// Returns whether the system reported no error.
  bool close() noexcept {
    const int closed = number;
    number = -1;
    return ::close(closed) == 0;
  }

 private:
  int number;
};

/// A file that is removed at the end, unless it was renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) : path(patternFor(target)) {
    number = ::mkostemp(path.data(), O_CLOEXEC);
  }
  ~TemporaryFile() {
    if (number >= 0 && !isRenamed) ::unlink(path.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// Negative if the file could not be created.
  int descriptor() const noexcept { return number; }

  bool renameTo(const std::string& target) noexcept {
    isRenamed = ::rename(path.c_str(), target.c_str()) == 0;
    return isRenamed;
  }

 private:
  static std::string patternFor(const std::string& target) {
    const std::filesystem::path file(target);
    return (file.parent_path() / ("." + file.filename().string() + ".tessera-XXXXXX")).string();
  }

  std::string path;
  int number = -1;
  bool isRenamed = false;
};

/// Writes the entry of the folder to the disk. Without that the rename may be lost when the machine
/// stops, but not the file.
void synchronizeFolderOf(const std::string& target) noexcept {
  const auto folder = std::filesystem::path(target).parent_path();
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.get() >= 0) ::fsync(descriptor.get());
}

}  // namespace

RewritableFile::RewritableFile(const std::string& name) : name(name) {
  std::error_code error;
  target = std::filesystem::canonical(name, error).string();
  if (error) failWithError("cannot be opened", error.value());
  read();
}

void RewritableFile::read() {
  const Descriptor descriptor(::open(target.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor.get() < 0) failWithError("cannot be opened", errno);
  if (::fstat(descriptor.get(), &status) != 0) failWithError("cannot be read", errno);
  if (!S_ISREG(status.st_mode)) {
    fail("cannot be fixed: it is not a regular file", "leave it out, or check it without --fix");
  }
  content.resize(static_cast<std::size_t>(status.st_size) + 1);
  std::size_t size = 0;
  while (size < content.size()) {
    const ssize_t count = ::read(descriptor.get(), content.data() + size, content.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithError("cannot be read", errno);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  content.resize(size);
  struct stat after = {};
  const bool isKnown = ::fstat(descriptor.get(), &after) == 0;
  if (!isKnown || !isSame(status, after) || size != static_cast<std::size_t>(status.st_size)) {
    fail("changed while it was read", "try again when no other program writes it");
  }
}

void RewritableFile::requireUnchanged() const {
  struct stat now = {};
  if (::stat(target.c_str(), &now) == 0 && isSame(status, now)) return;
  fail("changed after it was read", "try again when no other program writes it");
}

void RewritableFile::requireWritable() const {
  if (::access(target.c_str(), W_OK) != 0) failWithError("may not be written", errno);
  if (status.st_nlink > 1) {
    fail("has several names (hard links), and only one would get the new content",
         "copy it, or correct it by hand");
  }
}

void RewritableFile::replace(std::string_view newContent) {
  requireWritable();
  TemporaryFile temporary(target);
  if (temporary.descriptor() < 0) failWithError("cannot be replaced in its folder", errno);
  Descriptor descriptor(temporary.descriptor());
  writeTo(descriptor.get(), newContent);
  if (!descriptor.close()) failWithError("cannot be written", errno);
  requireUnchanged();
  if (!temporary.renameTo(target)) failWithError("cannot be replaced", errno);
  synchronizeFolderOf(target);
}

void RewritableFile::writeTo(int descriptor, std::string_view newContent) const {
  while (!newContent.empty()) {
    const ssize_t count = ::write(descriptor, newContent.data(), newContent.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithError("cannot be written", errno);
    newContent.remove_prefix(static_cast<std::size_t>(count));
  }
  // A change of the owner may clear bits of the mode, so that comes first. Only a privileged user
  // may give a file away: then the file belongs to who corrects it, as after a copy.
  if (::fchown(descriptor, status.st_uid, status.st_gid) != 0 &&
      ::fchown(descriptor, static_cast<uid_t>(-1), status.st_gid) != 0) {
    errno = 0;
  }
  if (::fchmod(descriptor, status.st_mode & 07777) != 0) failWithError("cannot be written", errno);
  if (::fsync(descriptor) != 0) failWithError("cannot be written", errno);
}

void RewritableFile::fail(const std::string& what, const std::string& remedy) const {
  throw diagnostics::ProblemError({.file = name, .place = {}, .what = what, .remedy = remedy});
}

void RewritableFile::failWithError(const std::string& what, int error) const {
  const char* remedy =
      error == ENOENT || error == ENOTDIR ? "check the name"
      : error == EACCES || error == EPERM || error == EROFS
          ? "ask for the right to write it and its folder, or check it without --fix"
      : error == ENOSPC ? "make room, and try again"
                        : "check it without --fix";
  fail(what + ": " + std::generic_category().message(error), remedy);
}

}  // namespace tessera::files
