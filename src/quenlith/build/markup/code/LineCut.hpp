#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::build::markup::code {

/// A piece of a line: neighbouring text of one owner.
struct LinePiece {
  fl::i18n::ustring text;
  /// Null for text that no marker owns.
  const core::MarkerInfo* owner;
};

/// Says which markers own which stretches of a line, and cuts the line accordingly.
///
/// Positions count 16-bit code units from the start of the line. Markers are borrowed; two
/// markers are two owners even when they are equal.
class LineCut {
 public:
  /// Gives the text [`begin`, `end`) to `owner`; takes it from an earlier owner.
  void own(std::size_t begin, std::size_t end, const core::MarkerInfo& owner);

  /// Leaves the own text of `marker` out of all pieces.
  void leaveOut(const core::MarkerInfo& marker);

  /// Returns the pieces of `line` in order, none of them empty. Text on both sides of what is
  /// left out is one piece when it has the same owner. O(n + m log m) for n code units and m
  /// stretches.
  std::vector<LinePiece> cut(std::u16string_view line) const;

 private:
  struct Run {
    std::size_t begin;
    std::size_t end;
    const core::MarkerInfo* owner;
    bool isMarkerText;
  };
  class Sweep;

  void add(const Run& stretch);
  std::vector<Run> runs(std::size_t lineLength) const;
  void fillGaps(std::size_t lineLength, std::vector<Run>& found) const;

  // In the order given: a later stretch wins over an earlier one where they overlap.
  std::vector<Run> stretches;
  /// Each stretch begins behind the one before, as nearly always: none overlaps another.
  bool ascending = true;
};

}  // namespace quenlith::build::markup::code
