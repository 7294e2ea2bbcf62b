#include "quenlith/syntax/MarkerFinder.hpp"

namespace quenlith::syntax {

bool MarkerFinder::nextMarker(Found& found) noexcept {
  std::size_t opening = findOpening(text, at);
  while (opening != text.size()) {
    const CommentStart comment = findCommentStart(text, at, opening);
    at = opening + 2;
    if (isComplete(comment.form)) {
      matchMarker(text, opening, comment.form, elements, found.match);
      if (found.match.problem == MarkerProblem::kNone) {
        found.position = comment.position;
        at = found.match.end;
        return true;
      }
    }
    opening = findOpening(text, at);
  }
  return false;
}

}  // namespace quenlith::syntax
