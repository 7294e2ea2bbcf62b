#pragma once

#include <cstddef>
#include <string_view>

#include "quenlith/syntax/CommentStart.hpp"
#include "quenlith/syntax/MarkerMatch.hpp"

namespace quenlith::syntax {

/// Finds the markers of a text one after the other, without creating `Marker` objects.
///
/// Where markers overlap, the one that begins first counts. If the text at a "<@" does not match,
/// the search continues after that "<@". Even so the search is linear.
///
/// The backward search for a leader or an opener stops at the marker before it, and cannot pass an
/// earlier "<@", because "@" is not in any leader or opener. So it reads each unit at most once.
///
/// At most two attempts to match read any unit between a "<@" and its ">": outside its strings a
/// marker cannot contain "<@", so an attempt that reads past the "<@" of a later attempt does so
/// inside a string, while the later attempt starts outside a string. A quote ends the string of one
/// and starts a string of the other, and a backslash fails the one that is outside a string. So the
/// two are never in the same state, and only the one inside a string reads past the next "<@".
///
/// After its ">", an attempt reads blanks and a closer. No attempt begins there, since these do not
/// contain "<@". Of the two attempts that read the ">", one is inside a string and continues. The
/// other's closer contains another ">" only as its last unit. So at most one attempt at a time
/// reads a closer, and at most two read any unit there, too.
class MarkerFinder {
 public:
  struct Found {
    /// Start of the leader or opener.
    std::size_t position = 0;
    MarkerMatch match;
  };

  /// Borrows `text`. Markers of elements outside `elements` do not match.
  MarkerFinder(std::u16string_view text, Elements elements) : text(text), elements(elements) {}

  /// Finds the next marker; returns false at the end of the text.
  // Does not return a Found, because that is large, and copying it directly after it was written
  // stalls the processor.
  bool nextMarker(Found& found) noexcept;

 private:
  std::u16string_view text;
  Elements elements;
  // The position after the last marker, or after the "<@" of the last attempt.
  std::size_t at = 0;
};

}  // namespace quenlith::syntax
