#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "tessera/files/Descriptor.hpp"
#include "tessera/files/OpenFolder.hpp"

namespace tessera::files {

/// A regular file that was read as a whole and can be replaced as a whole.
class RewritableFile {
 public:
  /// Reads the file `name`; a symbolic link is followed. Throws ProblemError when it cannot be
  /// read, is not a regular file, or changes while it is read.
  explicit RewritableFile(const std::string& name);

  /// Like that, but symbolic links are followed in the first `followed` bytes of `name` only, which
  /// end after a slash: for a file that was found below a folder, so that it is not one elsewhere.
  RewritableFile(const std::string& name, std::size_t followed);

  const std::string& bytes() const noexcept { return content; }

  /// Replaces the content of the file. Its owner and permissions stay (`copyPermissions`).
  ///
  /// The new content is written to a file in the same folder, ".NAME.tessera-XXXXXX", which then
  /// takes the place of the file: at any time the file is the old or the new one, complete. The
  /// folder is the one from which the file was read, wherever it has been moved since. Throws
  /// ProblemError, with the file unchanged, when it may not be written, has changed since it was
  /// read, has several names (only one of them would get the new content), they cannot be kept, or
  /// on any other error.
  void replace(std::string_view newContent);

 private:
  RewritableFile(const std::string& name, const std::string& path, std::size_t followed);

  void read();
  void requireUnchanged() const;
  void requireWritable() const;
  void writeTo(int descriptor, std::string_view newContent) const;
  [[noreturn]] void fail(const std::string& what, const std::string& remedy) const;

  std::string name;
  OpenFolder folder;
  // The name in the folder; not that of a symbolic link.
  std::string target;
  Descriptor source{-1};
  struct stat status = {};
  std::string content;
};

}  // namespace tessera::files
