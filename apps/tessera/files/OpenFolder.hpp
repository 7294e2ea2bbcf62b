#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <string>

#include "tessera/files/Descriptor.hpp"

namespace tessera::files {

/// The folder of a file, held open: what is written, renamed or removed in it stays in this folder,
/// whatever its path leads to later.
///
/// Names are those of files in the folder, without a slash. A symbolic link is not followed: to
/// open one is an error, and the other functions are about the link. Errors are reported like those
/// of the system call of that name: by a negative number or false, and errno.
class OpenFolder {
 public:
  /// Opens the folder of the file `path`. Symbolic links are followed in the first `followed` bytes
  /// of `path` only, which end after a slash if not with the folder.
  explicit OpenFolder(const std::string& path, std::size_t followed = std::string::npos);

  /// If not, errno is the reason.
  bool isOpen() const noexcept { return descriptor.get() >= 0; }
  int number() const noexcept { return descriptor.get(); }

  /// `flags` as for open().
  int open(const std::string& name, int flags, mode_t mode = 0) const noexcept;
  /// Opens a file or folder to read. Does not wait until a named pipe has a writer, but until
  /// another process that has a lease on a regular file gives that up.
  Descriptor openToRead(const std::string& name, int flags = 0) const noexcept;
  bool stat(const std::string& name, struct stat& status) const noexcept;
  /// Returns whether the file may be written; a symbolic link is followed.
  bool isWritable(const std::string& name) const noexcept;
  bool unlink(const std::string& name) const noexcept;
  bool rename(const std::string& name, const std::string& newName) const noexcept;

  /// Creates and opens a file with a new name, ".NAME.tessera-XXXXXX", which becomes
  /// `temporaryName`; a long NAME is cut off.
  int createTemporary(const std::string& name, std::string& temporaryName) const;

  /// Writes the entries of the folder to the disk, as far as the system allows that.
  void synchronize() const noexcept;

 private:
  Descriptor descriptor;
};

/// Returns the part of `path` after its last slash.
std::string nameOfFile(const std::string& path);

}  // namespace tessera::files
