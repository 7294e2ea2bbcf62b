#include "quenlith/syntax/MarkerFinder.hpp"

#include "quenlith/syntax/openingSearch.hpp"

namespace quenlith::syntax {

std::optional<MarkerFinder::Candidate> MarkerFinder::nextMarker() noexcept {
  auto candidate = nextCandidate();
  while (candidate && candidate->match.problem != nullptr) {
    candidate = nextCandidate();
  }
  return candidate;
}

// A leader ends the search backwards at the previous "<@" at the latest, and at the ">" of a
// marker before it: neither holds a character of a leader.
std::optional<MarkerFinder::Candidate> MarkerFinder::nextCandidate() noexcept {
  std::size_t opening = findOpening(text, at);
  while (opening != std::u16string_view::npos) {
    at = opening + 2;
    if (const auto leader = findLeader(text, opening)) {
      const MarkerMatch match = matchMarker(text, opening, elements);
      if (match.problem == nullptr) {
        at = match.end;
      }
      return Candidate{*leader, match};
    }
    opening = findOpening(text, at);
  }
  return std::nullopt;
}

}  // namespace quenlith::syntax
