#include "tessera/files/OpenFolder.hpp"

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>

namespace tessera::files {
namespace {

// O_PATH: the right to read the folder is not needed.
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// Returns the length of the folder's part of `path`, with its slash.
std::size_t folderLength(std::string_view path) noexcept {
  const std::size_t slash = path.rfind('/');
  return slash == path.npos ? 0 : slash + 1;
}

Descriptor openFolder(const std::string& path, std::size_t followed) {
  Descriptor folder(::open(followed == 0 ? "." : path.substr(0, followed).c_str(), kFolderFlags));
  const std::size_t size = folderLength(path);
  for (std::size_t at = followed; at < size && folder.get() >= 0;) {
    const std::size_t end = path.find('/', at);
    if (end != at) {
      const std::string name = path.substr(at, end - at);
      folder = Descriptor(::openat(folder.get(), name.c_str(), kFolderFlags | O_NOFOLLOW));
    }
    at = end + 1;
  }
  return folder;
}

/// Returns six random letters; empty, with errno, if there are none.
std::string makeSuffix() {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::array<unsigned char, 6> bytes{};
  ssize_t count = -1;
  do {
    count = ::getrandom(bytes.data(), bytes.size(), 0);
  } while (count < 0 && errno == EINTR);
  std::string suffix;
  if (count != static_cast<ssize_t>(bytes.size())) return suffix;
  for (const unsigned char byte : bytes) suffix += kLetters[byte % kLetters.size()];
  return suffix;
}

/// Returns as much of a name as leaves room for the rest of a temporary one, in whole characters.
std::string beginningOf(const std::string& name) {
  constexpr std::size_t kMostBytes = NAME_MAX - std::string_view("..tessera-XXXXXX").size();
  if (name.size() <= kMostBytes) return name;
  std::size_t size = kMostBytes;
  while (size > 0 && (static_cast<unsigned char>(name[size]) & 0xC0) == 0x80) --size;
  return name.substr(0, size);
}

}  // namespace

OpenFolder::OpenFolder(const std::string& path, std::size_t followed)
    : descriptor(openFolder(path, std::min(followed, folderLength(path)))) {}

int OpenFolder::open(const std::string& name, int flags, mode_t mode) const noexcept {
  return ::openat(number(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, mode);
}

Descriptor OpenFolder::openToRead(const std::string& name, int flags) const noexcept {
  Descriptor file(open(name, O_RDONLY | O_NONBLOCK | flags));
  if (file.get() >= 0 || errno != EAGAIN) return file;
  // Somebody has a lease. The name may be that of a pipe by now.
  const Descriptor found(open(name, O_PATH));
  struct stat status;
  if (found.get() < 0 || ::fstat(found.get(), &status) != 0 || !S_ISREG(status.st_mode))
    return file;
  std::array<char, 32> link;
  std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", found.get());
  return Descriptor(::open(link.data(), O_RDONLY | O_CLOEXEC));
}

bool OpenFolder::stat(const std::string& name, struct stat& status) const noexcept {
  return ::fstatat(number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool OpenFolder::isWritable(const std::string& name) const noexcept {
  return ::faccessat(number(), name.c_str(), W_OK, 0) == 0;
}

bool OpenFolder::unlink(const std::string& name) const noexcept {
  return ::unlinkat(number(), name.c_str(), 0) == 0;
}

bool OpenFolder::rename(const std::string& name, const std::string& newName) const noexcept {
  return ::renameat(number(), name.c_str(), number(), newName.c_str()) == 0;
}

int OpenFolder::createTemporary(const std::string& name, std::string& temporaryName) const {
  constexpr int kMostAttempts = 100;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    const std::string suffix = makeSuffix();
    if (suffix.empty()) return -1;
    temporaryName = '.' + beginningOf(name);
    temporaryName.append(".tessera-").append(suffix);
    const int file = open(temporaryName, O_RDWR | O_CREAT | O_EXCL, 0600);
    if (file >= 0 || errno != EEXIST) return file;
  }
  return -1;
}

void OpenFolder::synchronize() const noexcept {
  const Descriptor readable(open(".", O_RDONLY | O_DIRECTORY));
  if (readable.get() >= 0) ::fsync(readable.get());
}

std::string nameOfFile(const std::string& path) {
  return path.substr(folderLength(path));
}

}  // namespace tessera::files
