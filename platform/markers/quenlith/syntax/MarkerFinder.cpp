#include "quenlith/syntax/MarkerFinder.hpp"

namespace quenlith::syntax {

bool MarkerFinder::nextMarker(Candidate& found) noexcept {
  while (nextCandidate(found)) {
    if (found.match.problem == nullptr) return true;
  }
  return false;
}

// The backward search for a leader cannot run past a previous "<@", or into the marker before it,
// which ends with ">": none of these characters can be in a leader. So every unit is searched for
// a leader at most once.
bool MarkerFinder::nextCandidate(Candidate& found) noexcept {
  std::size_t opening = findOpening(text, at);
  while (opening != text.size()) {
    at = opening + 2;
    if (const auto leader = findLeader(text, opening)) {
      found.position = *leader;
      matchMarker(text, opening, elements, found.match);
      if (found.match.problem == nullptr) at = found.match.end;
      return true;
    }
    opening = findOpening(text, at);
  }
  return false;
}

}  // namespace quenlith::syntax
