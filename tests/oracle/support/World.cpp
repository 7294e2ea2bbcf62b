#include "oracle/support/World.hpp"

#include "oracle/support/Random.hpp"
#include "oracle/support/show.hpp"

namespace quenlith::oracle {

namespace {

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
  return Random(a * 31 + b).next();
}

std::uint64_t hashOf(const ustring& text, std::uint64_t seed) {
  for (const char16_t unit : text) seed = mix(seed, unit);
  return mix(seed, text.size());
}

std::uint64_t hashOf(const Marker& marker, std::uint64_t salt) {
  return hashOf(marker.getId(), hashOf(marker.getType(), hashOf(marker.getElement(), salt)));
}

std::string showRange(const std::optional<Range>& range) {
  if (!range) return "no range";
  return '[' + std::to_string(range->first) + ',' + std::to_string(range->second) + ')';
}

std::string showMarker(const Marker& marker) {
  return show(marker.toString());
}

ustring wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

}  // namespace

World::World(const WorldPlan& worldPlan) : plan(worldPlan) {}

void World::log(const std::string& message) {
  if (plan.logging) note("log " + message);
}

bool World::canParse(std::size_t parser, const Marker& marker) {
  const bool accepted = answer(plan.codeElementParsers[parser], marker);
  note("canParse " + std::to_string(parser) + ' ' + showMarker(marker) +
       (accepted ? " yes" : " no"));
  return accepted;
}

PieceResult World::parsePiece(std::size_t parser, const ustring& text,
                              const std::optional<Marker>& marker,
                              const std::optional<Range>& range) {
  if (parser == defaultParser() && plan.builtInDefaultParser) {
    return {PieceResult::Kind::kFresh, text};
  }
  note("parse " + std::to_string(parser) + ' ' + show(text) + ' ' +
       (marker ? showMarker(*marker) : "no marker") + ' ' + showRange(range));
  throwIfPlanned();
  PieceResult result;
  result.text = parser == defaultParser() ? text : wide("n" + std::to_string(results));
  if (falls(plan.oddResultOneIn, 1)) {
    result.kind =
        results % 2 == 0 ? PieceResult::Kind::kEmptyHandle : PieceResult::Kind::kLastOneAgain;
  }
  return result;
}

bool World::isApplicable(std::size_t parser, const Marker& marker) {
  const bool applicable = answer(plan.contributorParsers[parser], marker);
  note("isApplicable " + std::to_string(parser) + ' ' + showMarker(marker) +
       (applicable ? " yes" : " no"));
  return applicable;
}

Contribution World::contribute(std::size_t parser, const Marker& marker) {
  note("contribute " + std::to_string(parser) + ' ' + showMarker(marker));
  throwIfPlanned();
  Contribution contribution;
  contribution.feature = wide("f" + std::to_string(parser)) + marker.getElement();
  if (!falls(plan.oddResultOneIn, 2)) {
    contribution.data.emplace();
    contribution.data->emplace("result", static_cast<double>(results));
  }
  return contribution;
}

std::optional<Marker> World::findEntry(const Marker& marker) {
  note("findEntry " + showMarker(marker));
  throwIfPlanned();
  for (const Marker& entry : appendix) {
    if (entry.getElement() == marker.getElement() && entry.getId() == marker.getId()) return entry;
  }
  return std::nullopt;
}

bool World::answer(const AnswerRule& rule, const Marker& marker) {
  ++questions;
  switch (rule.kind) {
    case AnswerRule::Kind::kNever:
      return false;
    case AnswerRule::Kind::kAlways:
      return true;
    case AnswerRule::Kind::kElement:
      return marker.getElement() == rule.element;
    case AnswerRule::Kind::kByMarker:
      return hashOf(marker, rule.salt) % 2 == 0;
    case AnswerRule::Kind::kByCall:
      return mix(rule.salt, questions) % 2 == 0;
  }
  return false;
}

bool World::falls(std::uint64_t oneIn, std::uint64_t purpose) const {
  return oneIn != 0 && mix(mix(plan.salt, results), purpose) % oneIn == 0;
}

void World::throwIfPlanned() {
  ++results;
  if (falls(plan.throwOneIn, 3)) throw ServiceFailure();
}

}  // namespace quenlith::oracle
