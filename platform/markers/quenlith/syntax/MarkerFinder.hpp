#pragma once

#include <cstddef>
#include <string_view>

#include "quenlith/syntax/MarkerMatch.hpp"

namespace quenlith::syntax {

/// Finds the markers of a text one after the other, without creating `Marker` objects.
///
/// Where markers overlap, the one that begins first counts. If the text at a "<@" does not match,
/// the search continues after that "<@". Even so the search is linear, because at most two attempts
/// read any unit: outside its strings a marker cannot contain "<@", so an attempt that reads past
/// the "<@" of a later attempt does so inside a string, while the later attempt starts outside a
/// string. A quote ends the string of one and starts a string of the other, and a backslash fails
/// the one that is outside a string. So the two are never in the same state, and only the one
/// inside a string reads past the next "<@".
class MarkerFinder {
 public:
  /// A leader followed by "<@", and the result of matching it.
  struct Candidate {
    /// Start of the leader.
    std::size_t position = 0;
    MarkerMatch match;
  };

  /// Borrows `text`. Markers of elements outside `elements` do not match.
  MarkerFinder(std::u16string_view text, Elements elements) : text(text), elements(elements) {}

  // These two write to an output parameter and do not return a Candidate: it is large, and copying
  // it directly after it was written stalls the processor.

  /// Finds the next marker; returns false at the end of the text.
  bool nextMarker(Candidate& found) noexcept;

  /// Like `nextMarker`, but also finds candidates that are not markers.
  bool nextCandidate(Candidate& found) noexcept;

 private:
  std::u16string_view text;
  Elements elements;
  std::size_t at = 0;
};

}  // namespace quenlith::syntax
