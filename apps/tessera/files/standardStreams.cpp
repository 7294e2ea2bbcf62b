#include "tessera/files/standardStreams.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
  struct stat stream;
  struct stat file;
  return ::fstat(descriptor, &stream) == 0 && ::stat(name.c_str(), &file) == 0 &&
         S_ISREG(stream.st_mode) && stream.st_dev == file.st_dev && stream.st_ino == file.st_ino;
}

}  // namespace tessera::files
