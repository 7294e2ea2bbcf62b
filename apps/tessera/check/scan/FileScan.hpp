#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "quenlith/syntax/Marker.hpp"
#include "tessera/check/scan/EscapedLines.hpp"
#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/source/SourceLines.hpp"

namespace tessera::check::scan {

/// Every "<@" of a file that may matter, in order: the markers and the texts like markers. Borrows
/// the lines.
struct FileScan {
  /// `appendixLine` is the number of the line that starts the appendix, 0 if none does.
  FileScan(const source::SourceLines& lines, std::uint64_t appendixLine);

  /// Returns those of `code` that are on line `number`.
  std::span<const FoundMarker> codeOfLine(std::uint64_t number) const noexcept;

  /// Returns the line `number` as the parsers read it.
  std::u16string_view line(std::uint64_t number) const noexcept {
    return escaped.textOf(number, lines.line(number));
  }

  /// As the lines are in the file.
  const source::SourceLines& lines;
  EscapedLines escaped;
  std::uint64_t appendixLine;
  std::vector<FoundMarker> code;
  std::vector<FoundMarker> appendix;

 private:
  std::vector<FoundMarker> scanCode(std::uint64_t number);
  bool markEscapedTasks(std::vector<FoundMarker>& found,
                        const std::vector<FoundMarker>& foundInFile) const;
};

}  // namespace tessera::check::scan
