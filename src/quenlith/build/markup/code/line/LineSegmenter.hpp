#pragma once

#include <boost/container/small_vector.hpp>
#include <cstddef>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::build::markup::code::line {

/// A segment of a line: neighbouring text of one owner.
struct LineSegment {
  /// A part of the line, or of the cut's own memory where it had to be joined.
  std::u16string_view text;
  /// Null for text that no marker owns.
  const core::MarkerInfo* owner = nullptr;
};

/// Says which markers own which spans of a line, and cuts the line accordingly.
///
/// Positions count 16-bit code units from the start of the line. Markers are borrowed; two
/// markers are two owners even when they are equal.
class LineSegmenter {
 public:
  /// Gives the text [`begin`, `end`) to `owner`; takes it from an earlier owner.
  void assign(std::size_t begin, std::size_t end, const core::MarkerInfo& owner);

  /// Leaves the own text of `marker` out of all segments.
  void exclude(const core::MarkerInfo& marker);

  // Lists that most lines need no memory for.
  using Segments = boost::container::small_vector<LineSegment, 4>;

  /// Returns the segments of `line` in order, none of them empty, valid until the next cut and as
  /// long as both the cut and the line are. Text on both sides of what is left out is one segment
  /// when it has the same owner. O(n + m log m) for n code units and m spans.
  Segments split(std::u16string_view line);

 private:
  struct Run {
    Run(std::size_t runBegin, std::size_t runEnd, const core::MarkerInfo* runOwner,
        bool runIsMarkerText) noexcept
        : begin(runBegin), end(runEnd), owner(runOwner), isMarkerText(runIsMarkerText) {}

    std::size_t begin;
    std::size_t end;
    const core::MarkerInfo* owner;
    bool isMarkerText;
  };
  class Sweep;
  using Runs = boost::container::small_vector<Run, 8>;

  void add(std::size_t begin, std::size_t end, const core::MarkerInfo& marker, bool isMarkerText);
  template <class Group>
  void join(std::u16string_view line, Group& group, LineSegment& segment);
  Runs runs(std::size_t lineLength) const;
  void fillGaps(std::size_t lineLength, Runs& found) const;

  // In the order given: a later span wins over an earlier one where they overlap.
  boost::container::small_vector<Run, 4> spans;
  /// Each span begins behind the one before, as nearly always: none overlaps another.
  bool ascending = true;
  // The texts of the segments that are several runs, one behind the other.
  fl::i18n::ustring joined;
};

}  // namespace quenlith::build::markup::code::line
