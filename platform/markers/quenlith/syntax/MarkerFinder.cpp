#include "quenlith/syntax/MarkerFinder.hpp"

namespace quenlith::syntax {

bool MarkerFinder::nextMarker(Candidate& found) noexcept {
  while (nextCandidate(found)) {
    if (found.match.problem == nullptr) return true;
  }
  return false;
}

// A leader ends the search backwards at the previous "<@" at the latest, and at the ">" of a
// marker before it: neither holds a character of a leader.
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
