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
const char* const kRemedy =
    "set TMPDIR to a folder with enough space in which you may create files";

/// Returns the name with which the file is created.
std::string makeName() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return (error ? std::filesystem::path("/tmp") : folder) / "tessera-XXXXXX";
}

/// Completes the name.
int openSpool(std::string& name) {
  // None arrives while the file has a name.
  const HeldInterruptions held;
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) failOutput(name, "cannot be created", errno, kRemedy);
  ::unlink(name.c_str());
  return descriptor;
}

}  // namespace

SpoolFile::SpoolFile()
    : name(makeName()), descriptor(openSpool(name)), file(descriptor, name, kRemedy) {}

SpoolFile::~SpoolFile() {
  ::close(descriptor);
}

void SpoolFile::rewind() {
  file.flush();
  if (::lseek(descriptor, 0, SEEK_SET) != 0) failOutput(name, "cannot be read", errno, kRemedy);
}

void SpoolFile::read(std::string& text) {
  text.resize(kPieceBytes);
  ssize_t count = -1;
  do {
    count = ::read(descriptor, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) failOutput(name, "cannot be read", errno, kRemedy);
  text.resize(static_cast<std::size_t>(count));
}

}  // namespace tessera::files
