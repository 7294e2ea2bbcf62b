#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tessera/source/lines.hpp"

namespace tessera::source {

/// The lines of a file, code and appendix, by number: all of them or some.
///
/// Lines have no ending. Line numbers are 1-based, positions in a line count 16-bit code units from
/// 0.
class SourceLines {
 public:
  SourceLines() = default;

  /// Takes the lines of the code, and, if `appendixLine` is not empty, that line, which starts the
  /// appendix, and the lines after it.
  SourceLines(JoinedLines code, std::u16string appendixLine, JoinedLines appendix);

  /// Takes some lines of a file: `texts` are those that `numbers` names, in ascending order. The
  /// others are empty.
  SourceLines(std::vector<std::uint64_t> numbers, JoinedLines texts);

  /// Returns how many lines it has.
  std::uint64_t count() const noexcept { return lines.size(); }

  /// Returns the code, whose lines end in LF. The views of its lines are views of it.
  std::u16string_view code() const noexcept {
    return blocks.empty() ? std::u16string_view() : blocks.front()->text;
  }

  /// Returns the line `number`. Empty for the number after the last line.
  std::u16string_view line(std::uint64_t number) const noexcept;

  /// Returns the number of characters before the code unit `unit` of a line; `unit` may be the
  /// length of the line. Constant time on average, also for long lines.
  std::uint64_t countCharactersBefore(std::uint64_t number, std::uint64_t unit) const;

 private:
  void add(const JoinedLines& block);

  // The views of `lines` refer to these texts, which never move: short strings would.
  std::vector<std::unique_ptr<const JoinedLines>> blocks;
  std::vector<std::u16string_view> lines;
  // The numbers of `lines`; empty if it has all lines of the file.
  std::vector<std::uint64_t> numbers;
  // For each long line that was asked for: the number of characters before every kStride-th unit.
  mutable std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> counts;
};

}  // namespace tessera::source
