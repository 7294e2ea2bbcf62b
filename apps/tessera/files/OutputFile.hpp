#pragma once

#include <string>

namespace tessera::files {

/// Writes text to a file in large pieces: callers append to `text()` and flush between records.
class OutputFile {
 public:
  /// Borrows the open file `descriptor`; `name` names it in errors.
  OutputFile(int descriptor, std::string name);
  /// Creates the file `name`, or truncates an existing one. Throws OutputError.
  explicit OutputFile(const std::string& name);
  /// Closes the file if this object opened it. Text that was not flushed is lost.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// The text that is still to be written; append to it.
  std::string& text() noexcept { return buffered; }

  /// Like `flush`, but only if much is buffered.
  void flushIfLarge() {
    if (buffered.size() >= kLargeBytes) flush();
  }

  /// Writes the buffered text. Throws OutputError; the text is then dropped, so that a later call
  /// does not write it twice.
  void flush();

 private:
  static constexpr std::size_t kLargeBytes = 256 * 1024;

  [[noreturn]] void fail(const char* what) const;

  std::string name;
  std::string buffered;
  int descriptor;
  bool owned = false;
};

}  // namespace tessera::files
