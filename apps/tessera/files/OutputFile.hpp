#pragma once

#include <string>

namespace tessera::files {

/// Writes text to a file in large pieces: callers append to `text()` and say when a piece may
/// go out.
class OutputFile {
 public:
  /// Borrows the open file `descriptor`; `name` names it in errors.
  OutputFile(int descriptor, std::string name);
  /// Creates the file `name` or empties it. Throws OutputError.
  explicit OutputFile(const std::string& name);
  /// Closes a file of its own. What was not flushed is lost.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// What is still to be written. Appending to it is writing.
  std::string& text() noexcept { return held; }

  /// Writes what is held if it is much. Throws OutputError.
  void flushIfLarge() {
    if (held.size() >= kLargeBytes) flush();
  }

  /// Writes what is held. Throws OutputError; nothing is written twice after that.
  void flush();

 private:
  static constexpr std::size_t kLargeBytes = 256 * 1024;

  [[noreturn]] void fail(const char* deed) const;

  std::string name;
  std::string held;
  int descriptor;
  bool owned = false;
};

}  // namespace tessera::files
