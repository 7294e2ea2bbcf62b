#include "quenlith/syntax/MarkerCandidate.hpp"

#include <algorithm>

#include "quenlith/syntax/CommentStart.hpp"
#include "quenlith/syntax/MarkerMatch.hpp"
#include "quenlith/syntax/MarkerUnits.hpp"

namespace quenlith::syntax {

namespace {

struct Problem {
  MarkerProblem problem = MarkerProblem::kNone;
  std::size_t position = 0;
};

// Finds the candidates of a text one after the other. The search is linear for the reasons that
// `MarkerFinder` gives; those are independent of leaders and elements.
class CandidateFinder {
 public:
  explicit CandidateFinder(std::u16string_view text) : text(text) {}

  bool next(MarkerCandidate& candidate) {
    while (nextOpening()) {
      const Problem found = findProblem();
      const bool isMarker = found.problem == MarkerProblem::kNone;
      at = isMarker ? match.end : opening + 2;
      if (!isMarker || match.known != KnownElement::kOther) {
        fill(candidate, found);
        if (isMarker) afterMarker = skipBlanks(match.end);
        return true;
      }
    }
    return false;
  }

 private:
  bool nextOpening() {
    opening = findOpening(text, at);
    if (opening == text.size()) return false;
    comment = findCommentStart(text, at, opening);
    matchMarker(text, opening, comment.form, Elements::kAnyAndAppendix, match);
    return true;
  }

  Problem findProblem() const {
    const bool isOther = match.known == KnownElement::kOther && !match.element.empty();
    if (isOther && match.element != kAppendixElement) {
      return {MarkerProblem::kUnknownElement, opening + 2};
    }
    const bool isBodyWhole = match.bodyEnd != 0;
    if (!isBodyWhole) return {match.problem, match.end};
    if (!isComplete(comment.form)) return findLeaderProblem();
    if (match.problem == MarkerProblem::kNone && isOther) return findAppendixProblem();
    return {match.problem, match.end};
  }

  Problem findLeaderProblem() const {
    switch (comment.form) {
      case CommentForm::kTooShort:
        return {MarkerProblem::kLeaderTooShort, comment.position};
      case CommentForm::kUnspacedRemark:
        return {MarkerProblem::kMissingBlankAfterRemark, opening};
      default:
        return {MarkerProblem::kMissingLeader, opening};
    }
  }

  // The position is that of the part, or the other text, that the line must not contain.
  Problem findAppendixProblem() const {
    const std::size_t afterElement = opening + 2 + match.element.size();
    if (afterElement + 1 != match.bodyEnd) return {MarkerProblem::kBadAppendixLine, afterElement};
    const std::size_t after = skipBlanks(match.end);
    if (after != text.size() && text[after] != u'\n')
      return {MarkerProblem::kBadAppendixLine, after};
    std::size_t before = comment.position;
    while (before > 0 && isBlank(text[before - 1])) {
      --before;
    }
    if (before != 0 && text[before - 1] != u'\n')
      return {MarkerProblem::kBadAppendixLine, before - 1};
    return {MarkerProblem::kNone, match.end};
  }

  std::size_t skipBlanks(std::size_t from) const {
    return std::min(text.find_first_not_of(u" \t", from), text.size());
  }

  void fill(MarkerCandidate& candidate, const Problem& found) const {
    candidate = MarkerCandidate();
    candidate.position = comment.position;
    candidate.opening = opening;
    candidate.comment = comment.form;
    candidate.followsMarker = comment.position <= afterMarker && afterMarker != 0;
    candidate.problem = found.problem;
    candidate.problemPosition = found.position;
    if (match.bodyEnd != 0) candidate.bodyEnd = match.bodyEnd;
    candidate.element = match.element;
    candidate.type = match.type;
    candidate.id = match.id;
    candidate.range = match.rangeText;
    candidate.data = match.data;
    candidate.jsonReason = match.jsonReason;
  }

  std::u16string_view text;
  std::size_t at = 0;
  // The position after the last marker and the blanks after it; 0 before the first marker.
  std::size_t afterMarker = 0;
  std::size_t opening = 0;
  CommentStart comment;
  MarkerMatch match;
};

}  // namespace

std::vector<MarkerCandidate> findMarkerCandidates(std::u16string_view text) {
  std::vector<MarkerCandidate> candidates;
  CandidateFinder finder(text);
  MarkerCandidate candidate;
  while (finder.next(candidate)) candidates.push_back(candidate);
  return candidates;
}

std::vector<MarkerCandidate> findDamagedMarkers(std::u16string_view text) {
  std::vector<MarkerCandidate> damaged;
  CandidateFinder finder(text);
  MarkerCandidate candidate;
  while (finder.next(candidate)) {
    if (candidate.problem != MarkerProblem::kNone) damaged.push_back(candidate);
  }
  return damaged;
}

}  // namespace quenlith::syntax
