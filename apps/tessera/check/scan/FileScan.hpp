#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "quenlith/syntax/Marker.hpp"
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

  const source::SourceLines& lines;
  std::uint64_t appendixLine;
  std::vector<FoundMarker> code;
  std::vector<FoundMarker> appendix;
};

}  // namespace tessera::check::scan
