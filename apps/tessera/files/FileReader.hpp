#pragma once

#include <cstddef>
#include <string>

namespace tessera::files {

/// Reads the bytes of one file, or of standard input, front to back.
class FileReader {
 public:
  /// Opens the file `name`; "-" is standard input. Throws ProblemError when it cannot be
  /// opened or is a directory.
  explicit FileReader(const std::string& name);
  ~FileReader();
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;

  /// Reads up to `size` bytes (not 0) to `target` and returns how many; 0 is the end. May return
  /// fewer before the end. Throws ProblemError when the file cannot be read.
  std::size_t read(char* target, std::size_t size);

  /// Returns the size of a regular file in bytes when it was opened, else 0.
  std::size_t expectedSizeBytes() const noexcept { return sizeBytes; }

 private:
  void examine();
  [[noreturn]] void fail(const char* what, int error) const;

  std::string name;
  int descriptor = 0;
  std::size_t sizeBytes = 0;
};

}  // namespace tessera::files
