#include "oracle/support/World.hpp"

#include <cstdio>
#include <limits>
#include <utility>

#include "oracle/support/Random.hpp"
#include "oracle/support/scanLiterally.hpp"
#include "oracle/support/show.hpp"

namespace quenlith::oracle {

namespace {

/// Prints at the end of the program how many faults there were.
struct FaultCount {
  ~FaultCount() {
    if (count != 0) std::printf("%zu calls of services and receivers failed\n", count);
  }
  std::size_t count = 0;
};
FaultCount faults;

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
  return Random(a * 31 + b).next();
}

std::uint64_t hashOf(const ustring& text, std::uint64_t seed) {
  for (const char16_t unit : text) seed = mix(seed, unit);
  return mix(seed, text.size());
}

std::uint64_t hashOf(const PlainMarker& marker, std::uint64_t salt) {
  return hashOf(marker.id, hashOf(marker.type, hashOf(marker.element, salt)));
}

std::string showRange(const std::optional<Range>& range) {
  if (!range) return "no range";
  return '[' + std::to_string(range->first) + ',' + std::to_string(range->second) + ')';
}

std::string showMarker(const PlainMarker& marker) {
  return show(canonicalText(marker));
}

ustring wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

}  // namespace

void planFailure(WorldPlan& plan, std::size_t faultyCall, std::size_t way) {
  plan.fault = kThrowing[way % kThrowing.size()];
  plan.faultyCall = faultyCall;
  plan.faultCount = way < kThrowing.size() ? 1 : std::numeric_limits<std::size_t>::max();
}

World::World(const WorldPlan& worldPlan) : plan(worldPlan) {}

void World::log(const std::string& message) {
  if (plan.logging) noteCall("log " + message);
}

void World::noteCall(std::string event) {
  note(std::move(event));
  const std::size_t number = calls++;
  if (number < plan.faultyCall || number - plan.faultyCall >= plan.faultCount) return;
  ++faults.count;
  plan.fault();
}

void World::planFault(std::size_t skipped, std::function<void()> fault) {
  plan.fault = std::move(fault);
  plan.faultyCall = calls + skipped;
  plan.faultCount = 1;
}

bool World::canParse(std::size_t parser, const PlainMarker& marker) {
  const bool accepted = answer(plan.codeElementParsers[parser], marker);
  noteCall("canParse " + std::to_string(parser) + ' ' + showMarker(marker) +
           (accepted ? " yes" : " no"));
  return accepted;
}

PieceResult World::parsePiece(std::size_t parser, const ustring& text,
                              const std::optional<PlainMarker>& marker,
                              const std::optional<Range>& range) {
  if (parser == defaultParser() && plan.builtInDefaultParser) {
    return {PieceResult::Kind::kFresh, text};
  }
  noteCall("parse " + std::to_string(parser) + ' ' + show(text) + ' ' +
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

bool World::isApplicable(std::size_t parser, const PlainMarker& marker) {
  const bool applicable = answer(plan.contributorParsers[parser], marker);
  noteCall("isApplicable " + std::to_string(parser) + ' ' + showMarker(marker) +
           (applicable ? " yes" : " no"));
  return applicable;
}

Contribution World::contribute(std::size_t parser, const PlainMarker& marker) {
  noteCall("contribute " + std::to_string(parser) + ' ' + showMarker(marker));
  throwIfPlanned();
  Contribution contribution;
  contribution.feature = wide("f" + std::to_string(parser)) + marker.element;
  if (!falls(plan.oddResultOneIn, 2)) {
    contribution.data.emplace();
    contribution.data->emplace("result", static_cast<double>(results));
  }
  return contribution;
}

void World::setAppendix(const std::vector<ustring>& entries) {
  appendix.clear();
  for (const ustring& text : entries) appendix.push_back({text, scanLiterally(text).at(0)});
}

std::optional<AppendixEntry> World::findEntry(const PlainMarker& marker) {
  noteCall("findEntry " + showMarker(marker));
  throwIfPlanned();
  for (const AppendixEntry& entry : appendix) {
    if (entry.marker.element == marker.element && entry.marker.id == marker.id) return entry;
  }
  return std::nullopt;
}

bool World::answer(const AnswerRule& rule, const PlainMarker& marker) {
  ++questions;
  switch (rule.kind) {
    case AnswerRule::Kind::kNever:
      return false;
    case AnswerRule::Kind::kAlways:
      return true;
    case AnswerRule::Kind::kElement:
      return marker.element == rule.element;
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
