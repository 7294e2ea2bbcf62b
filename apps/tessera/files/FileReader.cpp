#include "tessera/files/FileReader.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/openBelow.hpp"

namespace tessera::files {
namespace {

constexpr std::size_t kExaminedBytes = 8 * 1024;

const char* remedyForReading(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "check the name";
    case EACCES:
    case EPERM:
      return "check its permissions, or name another file";
    case EISDIR:
      return "name the files in it";
    default:
      return "name a file that can be read";
  }
}

}  // namespace

FileReader::FileReader(const std::string& name) : name(name) {
  if (name == "-") return;
  Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  examine(file);
  descriptor = file.release();
}

FileReader::FileReader(const std::string& name, std::size_t followed) : name(name) {
  Descriptor file = openBelow(name, followed);
  const bool isLink = file.get() < 0 && (errno == ELOOP || errno == ENOTDIR);
  if (!isLink) examine(file);
  if (!fileId) {
    throw diagnostics::ProblemError(
        {.file = name,
         .place = {},
         .what = name.ends_with('/') ? "cannot be read: it is not a directory any more"
                                     : "cannot be read: it is not a regular file any more",
         .remedy = "try again when no other program replaces it"});
  }
  descriptor = file.release();
}

FileReader::FileReader(const std::string& name, Descriptor file) : name(name) {
  examine(file);
  descriptor = file.release();
}

FileReader::~FileReader() {
  if (descriptor != 0) ::close(descriptor);
}

void FileReader::examine(const Descriptor& file) {
  if (file.get() < 0) fail("cannot be opened", errno);
  struct stat status;
  if (::fstat(file.get(), &status) != 0) fail("cannot be read", errno);
  if (S_ISDIR(status.st_mode)) fail("cannot be read", EISDIR);
  fileId = idOf(status);
  if (fileId) sizeBytes = static_cast<std::size_t>(status.st_size);
}

bool FileReader::looksBinary() {
  std::string bytes(kExaminedBytes, '\0');
  std::size_t size = 0;
  while (size < bytes.size()) {
    const std::size_t count = read(bytes.data() + size, bytes.size() - size);
    size += count;
    if (count == 0 || isAtEnd) break;
  }
  bytes.resize(size);
  ahead = std::move(bytes);
  return ahead.find('\0') != std::string::npos;
}

std::size_t FileReader::read(char* target, std::size_t size) {
  if (!ahead.empty()) return readAhead(target, size);
  while (true) {
    const ssize_t count = isAtEnd ? 0 : ::read(descriptor, target, size);
    if (count >= 0) return advance(static_cast<std::size_t>(count), size);
    if (errno == EAGAIN) {
      awaitBytes();
    } else if (errno != EINTR) {
      fail("cannot be read", errno);
    }
  }
}

/// Notes what a read gave. A regular file gives fewer bytes than wanted only at its end, or if a
/// signal interrupts it: to read once more would only tell that this is the end.
std::size_t FileReader::advance(std::size_t count, std::size_t wanted) noexcept {
  readBytes += count;
  isAtEnd = sizeBytes != 0 && readBytes >= sizeBytes && count < wanted;
  return count;
}

/// Standard input may be a pipe that does not block.
void FileReader::awaitBytes() const {
  pollfd stream{.fd = descriptor, .events = POLLIN, .revents = 0};
  if (::poll(&stream, 1, -1) < 0 && errno != EINTR) fail("cannot be read", errno);
}

std::size_t FileReader::readAhead(char* target, std::size_t size) noexcept {
  const std::size_t count = ahead.copy(target, size);
  ahead.erase(0, count);
  return count;
}

void FileReader::fail(const char* what, int error) const {
  throw diagnostics::ProblemError(
      {.file = name,
       .place = {},
       .what = std::string(what) + ": " + std::generic_category().message(error),
       .remedy = remedyForReading(error)});
}

}  // namespace tessera::files
