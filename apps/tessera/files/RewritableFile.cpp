#include "tessera/files/RewritableFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/files/permissions.hpp"

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

/// A file next to another one that is removed at the end or by an interruption, unless it took its
/// place.
class TemporaryFile {
 public:
  TemporaryFile(const OpenFolder& folder, const std::string& target)
      : TemporaryFile(folder, target, HeldInterruptions()) {}
  ~TemporaryFile() {
    if (removal) folder.unlink(name);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// Negative if the file could not be created.
  Descriptor& descriptor() noexcept { return file; }

  bool renameTo(const std::string& target) noexcept {
    if (!folder.rename(name, target)) return false;
    removal.reset();
    return true;
  }

 private:
  /// No interruption arrives before it is known that the file is to be removed.
  TemporaryFile(const OpenFolder& folder, const std::string& target,
                const HeldInterruptions& /*held*/)
      : folder(folder), file(folder.createTemporary(target, name)) {
    if (file.get() >= 0) removal.emplace(folder.number(), name);
  }

  const OpenFolder& folder;
  std::string name;
  Descriptor file;
  std::optional<RemovedOnInterruption> removal;
};

[[noreturn]] void failWithError(const std::string& name, const std::string& what, int error) {
  const char* remedy = error == ENOENT || error == ENOTDIR ? "check the name"
                       : error == EACCES || error == EPERM || error == EROFS
                           ? "change the permissions of the file and its folder, let the owner of "
                             "the file fix it, or "
                             "leave out --fix"
                       : error == ENOSPC ? "free some disk space, and try again"
                                         : "check it without --fix";
  throw diagnostics::ProblemError({.file = name,
                                   .place = {},
                                   .what = what + ": " + std::generic_category().message(error),
                                   .remedy = remedy});
}

/// Returns where `name` leads to, if it is a symbolic link.
std::string resolveExisting(const std::string& name) {
  std::error_code error;
  if (!std::filesystem::is_symlink(name, error)) return name;
  const auto target = std::filesystem::canonical(name, error);
  if (error) failWithError(name, "cannot be opened", error.value());
  return target.string();
}

}  // namespace

RewritableFile::RewritableFile(const std::string& name)
    : RewritableFile(name, resolveExisting(name), std::string::npos) {}

RewritableFile::RewritableFile(const std::string& name, std::size_t followed)
    : RewritableFile(name, name, followed) {}

RewritableFile::RewritableFile(const std::string& name, const std::string& path,
                               std::size_t followed)
    : name(name), folder(path, followed), target(nameOfFile(path)) {
  if (!folder.isOpen()) failWithError(name, "cannot be opened", errno);
  read();
}

void RewritableFile::read() {
  source = folder.openToRead(target);
  if (source.get() < 0) failWithError(name, "cannot be opened", errno);
  if (::fstat(source.get(), &status) != 0) failWithError(name, "cannot be read", errno);
  if (!S_ISREG(status.st_mode)) {
    fail("cannot be fixed: it is not a regular file", "leave it out, or check it without --fix");
  }
  content.resize(static_cast<std::size_t>(status.st_size) + 1);
  std::size_t size = 0;
  while (size < content.size()) {
    const ssize_t count = ::read(source.get(), content.data() + size, content.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithError(name, "cannot be read", errno);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  content.resize(size);
  struct stat after = {};
  const bool isKnown = ::fstat(source.get(), &after) == 0;
  if (!isKnown || !isSame(status, after) || size != static_cast<std::size_t>(status.st_size)) {
    fail("changed while it was read", "try again when no other program writes it");
  }
}

void RewritableFile::requireUnchanged() const {
  struct stat now = {};
  if (folder.stat(target, now) && isSame(status, now)) return;
  fail("changed after it was read", "try again when no other program writes it");
}

void RewritableFile::requireWritable() const {
  if (!folder.isWritable(target)) failWithError(name, "is not writable", errno);
  if (status.st_nlink > 1) {
    fail("has several names (hard links), and only one would get the new content",
         "copy it, or correct it by hand");
  }
}

void RewritableFile::replace(std::string_view newContent) {
  requireWritable();
  TemporaryFile temporary(folder, target);
  Descriptor& file = temporary.descriptor();
  if (file.get() < 0) failWithError(name, "cannot be replaced in its folder", errno);
  writeTo(file.get(), newContent);
  if (!file.close()) failWithError(name, "cannot be written", errno);
  requireUnchanged();
  if (!temporary.renameTo(target)) failWithError(name, "cannot be replaced", errno);
  // Without that the rename may be lost when the machine stops, but not the file.
  folder.synchronize();
}

void RewritableFile::writeTo(int descriptor, std::string_view newContent) const {
  while (!newContent.empty()) {
    const ssize_t count = ::write(descriptor, newContent.data(), newContent.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithError(name, "cannot be written", errno);
    newContent.remove_prefix(static_cast<std::size_t>(count));
  }
  if (!copyPermissions(source.get(), descriptor)) {
    failWithError(name, "cannot be replaced by a file with its owner and permissions", errno);
  }
  if (::fsync(descriptor) != 0) failWithError(name, "cannot be written", errno);
}

void RewritableFile::fail(const std::string& what, const std::string& remedy) const {
  throw diagnostics::ProblemError({.file = name, .place = {}, .what = what, .remedy = remedy});
}

}  // namespace tessera::files
