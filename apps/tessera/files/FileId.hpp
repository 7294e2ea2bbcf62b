#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

namespace tessera::files {

/// What tells a regular file from all others that exist, whatever its name is.
struct FileId {
  dev_t device;
  ino_t number;

  bool operator==(const FileId&) const = default;
};

/// Return nothing for what is not a regular file, or cannot be looked at.
std::optional<FileId> idOf(const struct stat& status) noexcept;
std::optional<FileId> idOfFile(const std::string& name) noexcept;
std::optional<FileId> idOfStream(int descriptor) noexcept;

}  // namespace tessera::files
