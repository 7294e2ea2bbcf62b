#pragma once

#include <cstddef>
#include <string>

#include "tessera/files/OutputFile.hpp"

namespace tessera::files {

/// A temporary file without a name, for text that is written now and needed later. It is gone when
/// the process ends, however that happens.
class SpoolFile {
 public:
  /// Throws OutputError.
  SpoolFile();
  ~SpoolFile();
  SpoolFile(const SpoolFile&) = delete;
  SpoolFile& operator=(const SpoolFile&) = delete;

  /// For text at the end of the file.
  OutputFile& output() noexcept { return file; }

  /// Goes to the start of the text; call it once, after all is written. Throws OutputError.
  void rewind();

  /// Replaces `text` by the next piece of the text; empty after its end. Throws OutputError.
  void read(std::string& text);

 private:
  // For errors.
  std::string name;
  int descriptor;
  OutputFile file;
};

}  // namespace tessera::files
