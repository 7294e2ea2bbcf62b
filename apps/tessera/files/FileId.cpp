#include "tessera/files/FileId.hpp"

namespace tessera::files {

std::optional<FileId> idOf(const struct stat& status) noexcept {
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  return FileId{.device = status.st_dev, .number = status.st_ino};
}

std::optional<FileId> idOfFile(const std::string& name) noexcept {
  struct stat status;
  return ::stat(name.c_str(), &status) == 0 ? idOf(status) : std::nullopt;
}

std::optional<FileId> idOfStream(int descriptor) noexcept {
  struct stat status;
  return ::fstat(descriptor, &status) == 0 ? idOf(status) : std::nullopt;
}

}  // namespace tessera::files
