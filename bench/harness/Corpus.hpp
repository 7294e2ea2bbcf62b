#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/Snippet.hpp"

namespace bench {

/// The lines to parse, in the forms that the compared programs need.
class Corpus {
 public:
  /// Reads at most `lineLimit` lines of the UTF-8 file `path`. Throws std::runtime_error when
  /// there are none.
  static Corpus read(const std::string& path, std::size_t lineLimit);

  explicit Corpus(std::vector<std::string> utf8Lines);

  std::size_t lineCount() const noexcept { return lines.size(); }
  /// Lines without any character.
  std::size_t emptyLineCount() const noexcept { return emptyLines; }
  /// Bytes of UTF-8, without line endings.
  std::size_t byteCount() const noexcept { return bytes; }
  /// 16-bit code units, without line endings.
  std::size_t unitCount() const noexcept { return units; }
  /// Lines that contain "<@".
  std::size_t linesWithMarker() const noexcept { return markedLines; }

  const std::vector<std::string>& utf8Lines() const noexcept { return lines; }
  const std::vector<quenlith::build::markup::Snippet>& snippets() const noexcept {
    return snippetsOfLines;
  }
  /// All lines, each followed by LF.
  std::string text() const;
  /// An XML document whose root has one element per line with the line as its text.
  std::string xml() const;

 private:
  std::vector<std::string> lines;
  std::vector<quenlith::build::markup::Snippet> snippetsOfLines;
  std::size_t emptyLines = 0;
  std::size_t bytes = 0;
  std::size_t units = 0;
  std::size_t markedLines = 0;
};

/// Number of ASCII letters in `text`.
std::size_t countLetters(std::string_view text) noexcept;

}  // namespace bench
