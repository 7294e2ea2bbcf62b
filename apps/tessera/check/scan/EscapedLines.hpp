#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"

namespace tessera::check::scan {

/// The lines with an escaped leader, "%%\", as the parsers read them: without the backslash.
///
/// Ranges count positions of that text, so the rules work with it. The positions that a report
/// shows are those of the file.
class EscapedLines {
 public:
  EscapedLines() = default;
  EscapedLines(const EscapedLines&) = delete;
  EscapedLines& operator=(const EscapedLines&) = delete;

  /// Adds the line `number` of the file if it has an escaped leader. Returns its text without the
  /// backslashes, valid as long as this object, or `line` itself.
  std::u16string_view add(std::uint64_t number, std::u16string_view line);

  /// Makes the line `number` one whose text is that of the file.
  void remove(std::uint64_t number) { lines.erase(number); }

  /// Returns the text of the line `number` without the backslashes, or `line`, its text in the
  /// file.
  std::u16string_view textOf(std::uint64_t number, std::u16string_view line) const noexcept;

  /// Returns the position in the file of a span in the texts without backslashes.
  catalogue::Span inFile(const catalogue::Span& span) const noexcept;

  /// Replaces the positions of `diagnostic` by those in the file. Removes a fix that would change
  /// the text next to a backslash. Adds a note to an unusable range that it does not count the
  /// backslash.
  void mapToFile(catalogue::Diagnostic& diagnostic) const;

 private:
  struct Line {
    std::u16string text;
    /// The positions in `text` of the units that follow a removed backslash, ascending.
    std::vector<std::uint64_t> removed;
  };

  bool isBesideBackslash(const catalogue::Position& position) const noexcept;
  void noteBackslash(catalogue::Diagnostic& diagnostic) const;

  std::unordered_map<std::uint64_t, Line> lines;
};

}  // namespace tessera::check::scan
