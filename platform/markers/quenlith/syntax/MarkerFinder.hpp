#pragma once

#include <cstddef>
#include <string_view>

#include "quenlith/syntax/MarkerMatch.hpp"

namespace quenlith::syntax {

/// Finds the markers of a text one after the other, without making them.
///
/// The marker that begins first counts; what turns out to be none is searched again from behind
/// its "<@". This is linear. Outside its strings a marker holds no "<@", so an attempt that goes
/// on over the "<@" of another one does so inside a string, while the other attempt begins
/// outside of any. A quote moves the first one out of its string and the second one into one of
/// its own; a backslash ends the one that is outside. They never meet in the same state, and only
/// the one inside a string outlives the next "<@": at most two attempts read any unit.
class MarkerFinder {
 public:
  /// A text with a leader and a "<@", and what came of it.
  struct Candidate {
    /// Start of the leader.
    std::size_t position = 0;
    MarkerMatch match;
  };

  MarkerFinder(std::u16string_view source, Elements taken) : text(source), elements(taken) {}

  // What is found goes where the caller wants it: a candidate is large, and to copy it at once
  // after it was written stalls the processor.

  /// Finds the next marker; returns false at the end of the text.
  bool nextMarker(Candidate& found) noexcept;

  /// Like `nextMarker`, but also finds what is no marker.
  bool nextCandidate(Candidate& found) noexcept;

 private:
  std::u16string_view text;
  Elements elements;
  std::size_t at = 0;
};

}  // namespace quenlith::syntax
