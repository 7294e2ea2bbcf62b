#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tessera::check::scan {

/// Tells where the characters of a line begin, as readers see them: extended grapheme clusters
/// (Unicode Standard Annex 29). The line is read once, when it is first asked about beyond ASCII.
class CharacterBreaks {
 public:
  /// Returns whether a character begins or the line ends at `at`. Always the same line.
  bool isBreak(std::u16string_view line, std::uint64_t at);

  /// Returns the extent of the character that `at` is inside of.
  std::pair<std::uint64_t, std::uint64_t> characterAround(std::u16string_view line,
                                                          std::uint64_t at);

 private:
  void read(std::u16string_view line);

  // Where characters begin, ascending; empty before the line is read.
  std::vector<std::uint64_t> begins;
};

}  // namespace tessera::check::scan
