#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tessera/files/Descriptor.hpp"
#include "tessera/files/FileId.hpp"

namespace tessera::files {

/// Reads the bytes of one file, or of standard input, front to back.
class FileReader {
 public:
  /// Opens the file `name`; "-" is standard input. Throws ProblemError when it cannot be
  /// opened or is a directory.
  explicit FileReader(const std::string& name);
  /// Opens a file that was found below a folder, so that it is not one elsewhere: symbolic links
  /// are followed in the first `followed` bytes of `name` only, which end after a slash. Also
  /// throws when it is not a regular file: it has been replaced since.
  FileReader(const std::string& name, std::size_t followed);
  /// Reads an open file; `name` is for messages. Throws as the first form.
  FileReader(const std::string& name, Descriptor file);
  ~FileReader();
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;

  const std::string& path() const noexcept { return name; }
  /// Nothing for standard input and for what is not a regular file.
  const std::optional<FileId>& id() const noexcept { return fileId; }

  /// Returns whether the file is binary: the first 8 KiB contain a NUL. Only before the first
  /// `read`, which returns these bytes all the same. Throws ProblemError as that does.
  bool looksBinary();

  /// Reads up to `size` bytes (not 0) to `target` and returns how many; 0 is the end. May return
  /// fewer before the end. Throws ProblemError when the file cannot be read.
  std::size_t read(char* target, std::size_t size);

  /// Returns the size of a regular file in bytes when it was opened, else 0.
  std::size_t expectedSizeBytes() const noexcept { return sizeBytes; }

 private:
  void examine(const Descriptor& file);
  std::size_t advance(std::size_t count, std::size_t wanted) noexcept;
  void awaitBytes() const;
  std::size_t readAhead(char* target, std::size_t size) noexcept;
  [[noreturn]] void fail(const char* what, int error) const;

  std::string name;
  int descriptor = 0;
  std::optional<FileId> fileId;
  std::size_t sizeBytes = 0;
  // How many bytes were read from the file, and whether no others will come.
  std::size_t readBytes = 0;
  bool isAtEnd = false;
  // What was read before it was asked for.
  std::string ahead;
};

}  // namespace tessera::files
