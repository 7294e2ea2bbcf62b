#pragma once

#include <boost/container/small_vector.hpp>
#include <cstddef>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::build::markup::code::line {

/// A segment of a line: consecutive text with the same owner.
struct LineSegment {
  /// Refers to the line, or to memory of the segmenter where it had to be joined.
  std::u16string_view text;
  /// Null for text that no marker owns.
  const core::MarkerInfo* owner = nullptr;
};

/// Collects which markers own which spans of a line, and splits the line into segments by owner.
///
/// Positions count 16-bit code units from the start of the line. Markers are borrowed; two
/// markers are two owners even when they are equal.
class LineSegmenter {
 public:
  /// Assigns the text [`begin`, `end`) to `owner`, which replaces an earlier owner.
  void assign(std::size_t begin, std::size_t end, const core::MarkerInfo& owner);

  /// Excludes the own text of `marker` from all segments.
  void exclude(const core::MarkerInfo& marker);

  // With inline capacity, so that most lines do not allocate.
  using Segments = boost::container::small_vector<LineSegment, 4>;

  /// Returns the segments of `line` in order, none of them empty. They are valid until the next
  /// `split` and for the life of the segmenter and the line. Text before and after excluded text is
  /// one segment when it has the same owner. O(n + m log m) for n code units and m spans.
  Segments split(std::u16string_view line);

 private:
  struct Run {
    Run(std::size_t begin, std::size_t end, const core::MarkerInfo* owner,
        bool isMarkerText) noexcept
        : begin(begin), end(end), owner(owner), isMarkerText(isMarkerText) {}

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

  // In the order of the calls: where two spans overlap, the later one counts.
  boost::container::small_vector<Run, 4> spans;
  // Each span begins at or after the end of the one before, as on nearly all lines: none overlap.
  bool ascending = true;
  // The texts of the segments that consist of several runs, concatenated.
  fl::i18n::ustring joined;
};

}  // namespace quenlith::build::markup::code::line
