#include "tessera/files/standardStreams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

namespace tessera::files {
namespace {

void reserve(int descriptor, int mode) noexcept {
  if (::fcntl(descriptor, F_GETFD) >= 0) return;
  // open() returns the lowest free descriptor, and the lower ones are open by now.
  static_cast<void>(::open("/dev/null", mode));
}

}  // namespace

void reserveStandardStreams() noexcept {
  // Opened for the opposite direction, so that using it is an error, as for a closed stream.
  reserve(STDIN_FILENO, O_WRONLY);
  reserve(STDOUT_FILENO, O_RDONLY);
  reserve(STDERR_FILENO, O_RDONLY);
}

bool isRedirectedTo(int descriptor, const std::string& name) noexcept {
  const auto file = idOfStream(descriptor);
  return file && file == idOfFile(name);
}

StreamFiles::StreamFiles() noexcept : files{idOfStream(STDOUT_FILENO), idOfStream(STDERR_FILENO)} {}

bool StreamFiles::contain(const std::optional<FileId>& file) const noexcept {
  return file && std::ranges::find(files, file) != files.end();
}

}  // namespace tessera::files
