#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace tessera::source {

/// Converts the bytes of a file, chunk by chunk, to UTF-16 whose lines end in LF.
///
/// A byte order mark at the start is dropped, CRLF becomes LF, a CR without LF stays.
class SourceDecoder {
 public:
  /// The most bytes that one call takes.
  static constexpr std::size_t kChunkBytes = 64 * 1024;

  /// `file` names the file in errors; `expectedBytes` is its size, 0 if not known.
  SourceDecoder(std::string file, std::size_t expectedBytes);

  /// Takes the next bytes and returns how many were used: all but the beginning of a character
  /// that is cut off at the end, which the caller passes again with the bytes after it. Throws
  /// ProblemError with the place of the first byte that is not UTF-8.
  std::size_t append(std::string_view bytes);

  /// Takes the last bytes and returns the text; call it once. Throws like `append`.
  std::u16string finish(std::string_view bytes);

 private:
  void convert(std::string_view bytes);
  void appendUnits(std::size_t count);
  void joinLineEndings(std::size_t from);
  [[noreturn]] void fail(unsigned char byte) const;

  std::string file;
  std::u16string text;
  // Units are converted into this buffer, which stays in the processor's cache. Converting into
  // `text` would need resize(), which writes every unit once more.
  std::unique_ptr<char16_t[]> units;
  bool atStart = true;
  bool lastWasReturn = false;
};

}  // namespace tessera::source
