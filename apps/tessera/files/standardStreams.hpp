#pragma once

#include <array>
#include <optional>
#include <string>

#include "tessera/files/FileId.hpp"

namespace tessera::files {

/// Opens something in place of each standard stream that is closed, so that no file opened later
/// gets its descriptor: what is written to standard output would go into that file. Reading or
/// writing such a stream still fails.
void reserveStandardStreams() noexcept;

/// Returns whether the standard stream `descriptor` is the regular file `name`.
bool isRedirectedTo(int descriptor, const std::string& name) noexcept;

/// The regular files to which standard output and standard error were redirected when it was made.
class StreamFiles {
 public:
  StreamFiles() noexcept;

  /// Returns whether `file` is one of them; no file is not.
  bool contain(const std::optional<FileId>& file) const noexcept;

 private:
  std::array<std::optional<FileId>, 2> files;
};

}  // namespace tessera::files
