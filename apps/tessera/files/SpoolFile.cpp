#include "tessera/files/SpoolFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tessera/files/Interruption.hpp"

namespace tessera::files {
namespace {

constexpr std::size_t kPieceBytes = 64 * 1024;
const char* const kSpoolName = "a temporary file";

int openSpool() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  std::string name = (error ? std::filesystem::path("/tmp") : folder) / "tessera-XXXXXX";
  // None arrives while the file has a name.
  const HeldInterruptions held;
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) failOutput(name, "cannot be made", errno);
  ::unlink(name.c_str());
  return descriptor;
}

}  // namespace

SpoolFile::SpoolFile() : descriptor(openSpool()), file(descriptor, kSpoolName) {}

SpoolFile::~SpoolFile() {
  ::close(descriptor);
}

void SpoolFile::rewind() {
  file.flush();
  if (::lseek(descriptor, 0, SEEK_SET) != 0) failOutput(kSpoolName, "cannot be read", errno);
}

void SpoolFile::read(std::string& text) {
  text.resize(kPieceBytes);
  ssize_t count = -1;
  do {
    count = ::read(descriptor, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) failOutput(kSpoolName, "cannot be read", errno);
  text.resize(static_cast<std::size_t>(count));
}

}  // namespace tessera::files
