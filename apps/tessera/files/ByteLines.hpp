#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tessera/files/FileReader.hpp"

namespace tessera::files {

/// Reads a file line by line, as soon as each line is available.
class ByteLines {
 public:
  /// Opens the file `name`, "-" for standard input. Throws ProblemError.
  explicit ByteLines(const std::string& name) : reader(name) {}

  /// Returns the next line without its LF, valid until the next call; nothing at the end. An LF
  /// at the end begins no further line. A byte order mark at the start is dropped. Throws
  /// ProblemError when the file cannot be read.
  std::optional<std::string_view> next();

  /// Returns whether the next line is already buffered, so that `next` will not wait.
  bool isNextHere() const noexcept { return buffered.find('\n', begin) != buffered.npos; }

 private:
  bool readMore();

  FileReader reader;
  std::string buffered;
  // The bytes before it have been returned.
  std::size_t begin = 0;
  bool atStart = true;
};

}  // namespace tessera::files
