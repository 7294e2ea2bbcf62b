#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera::files {

/// Collects text and writes it in large pieces: callers append to `text()` and flush between
/// records.
class OutputText {
 public:
  /// `flushIfLarge` writes from `largeBytes` on.
  explicit OutputText(std::size_t largeBytes = kLargeBytes) : largeBytes(largeBytes) {}
  /// Text that was not flushed is lost.
  virtual ~OutputText() = default;
  OutputText(const OutputText&) = delete;
  OutputText& operator=(const OutputText&) = delete;

  /// The text that is still to be written; append to it.
  std::string& text() noexcept { return buffered; }

  /// Like `flush`, but only if much is buffered.
  void flushIfLarge() {
    if (buffered.size() >= largeBytes) flush();
  }

  /// Writes the buffered text. Throws OutputError; the text is then dropped, so that a later call
  /// does not write it twice.
  void flush();

 private:
  // With the record that reaches it usually less than 256 KiB.
  static constexpr std::size_t kLargeBytes = 240 * 1024;

  /// Writes all of `piece`, which is not empty. Throws OutputError.
  virtual void write(std::string_view piece) = 0;

  std::size_t largeBytes;
  std::string buffered;
};

}  // namespace tessera::files
