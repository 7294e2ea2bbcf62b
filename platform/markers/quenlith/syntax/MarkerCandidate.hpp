#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "quenlith/export/markers.hpp"
#include "quenlith/syntax/CommentForm.hpp"
#include "quenlith/syntax/MarkerProblem.hpp"

namespace quenlith::syntax {

/// A "<@" in a text: a marker, or the exact reason why it is not one. Borrows from the text.
///
/// Positions count 16-bit code units from the start of the text.
struct MarkerCandidate {
  /// The first character of the leader or opener, also if it is too short; otherwise of the "<@".
  std::uint64_t position = 0;

  /// The position of the "<@".
  std::uint64_t opening = 0;

  CommentForm comment = CommentForm::kNone;

  /// Whether only blanks are between `position` and the marker before it. A marker needs its own
  /// leader or opener, also after another one.
  bool followsMarker = false;

  /// `kNone` for a marker. Of several problems, the unknown element comes first, then a problem
  /// between "<@" and ">", then one of the comment around it.
  MarkerProblem problem = MarkerProblem::kNone;

  /// The first unit that breaks the grammar; the end of the text if the text is cut off there. The
  /// start of the name for an unknown element, the "<@" for a missing leader, the leader itself if
  /// it is too short, and the position where the closer must begin for a missing closer. For a
  /// marker, the position after it.
  std::uint64_t problemPosition = 0;

  /// The position after the ">" if the text from "<@" to it is that of a marker, apart from the
  /// name of the element.
  std::optional<std::uint64_t> bodyEnd;

  // The parts as written, up to the problem; empty if absent. Each is a view of the text, so that
  // its position is known.

  std::u16string_view element;
  std::u16string_view type;
  /// A quoted id includes its quotes and its escapes.
  std::u16string_view id;
  /// From bracket to bracket.
  std::u16string_view range;
  /// From brace to brace.
  std::u16string_view data;

  /// What is wrong with the JSON of `kBadQuotedId` and `kBadData`, as text for a person. A
  /// constant.
  const char* jsonReason = "";
};

/// Returns every "<@" of `text` that is not inside a marker or a proper appendix line, by ascending
/// position: the markers that `get_markers_from_snippet(text, false)` returns, and all others with
/// their problem. Most of the others are no mistakes: whether to report one is for the caller to
/// decide. Linear for any text.
QUENLITH_MARKERS_EXPORT std::vector<MarkerCandidate> findMarkerCandidates(std::u16string_view text);

/// Like `findMarkerCandidates`, but returns only the candidates that are not markers.
QUENLITH_MARKERS_EXPORT std::vector<MarkerCandidate> findDamagedMarkers(std::u16string_view text);

}  // namespace quenlith::syntax
