#include <gtest/gtest.h>

#include <array>
#include <iostream>

#include "oracle/line/LineCase.hpp"
#include "oracle/support/RunSettings.hpp"
#include "oracle/support/Tally.hpp"

namespace quenlith::oracle {
namespace {

// A case has two lines on average.
constexpr std::size_t kCases = 110'000;
constexpr std::size_t kLeastLines = 200'000;
constexpr std::size_t kLeast = 1'000;
// Each one is run for every call of a service. A whole run lets it fail in all ways.
constexpr std::size_t kFaultCases = 400;

struct FactRow {
  const char* name;
  bool LineFacts::*fact;
};

constexpr std::array<FactRow, 20> kFactRows = {{
    {"valid range", &LineFacts::validRange},
    {"invalid range: begin not before end", &LineFacts::beginNotBeforeEnd},
    {"invalid range: end beyond the line", &LineFacts::endBeyondLine},
    {"invalid range: begins in or at a marker's text", &LineFacts::beginsInMarker},
    {"invalid range: ends within a marker's text", &LineFacts::endsInMarker},
    {"invalid range: encloses a marker's text", &LineFacts::enclosesMarker},
    {"range with a saturated number", &LineFacts::saturatedRange},
    {"range inside another's", &LineFacts::rangeInsideAnother},
    {"ranges that overlap", &LineFacts::rangesOverlap},
    {"equal markers with valid ranges", &LineFacts::equalMarkersWithRanges},
    {"equal failures", &LineFacts::equalFailures},
    {"unhandled marker", &LineFacts::unhandledMarker},
    {"anchor on a line with a task", &LineFacts::anchorOnTaskLine},
    {"anchor that is set", &LineFacts::anchorSet},
    {"%%\\ that makes a marker", &LineFacts::normalisingMakesMarker},
    {"%%\\ that breaks a marker", &LineFacts::normalisingBreaksMarker},
    {"line without any child", &LineFacts::noPieceAtAll},
    {"nothing but marker text", &LineFacts::onlyMarkerText},
    {"owned piece that no parser takes", &LineFacts::pieceWithoutParser},
    {"contribution", &LineFacts::contribution},
}};

Tally emptyTally(const RunSettings& settings) {
  Tally tally;
  for (const FactRow& row : kFactRows) tally.addRow(row.name, settings.leastOf(kLeast));
  tally.addRow("lines", settings.leastOf(kLeastLines));
  return tally;
}

void count(const std::vector<LineFacts>& lines, Tally& tally) {
  for (const LineFacts& facts : lines) {
    for (std::size_t row = 0; row < kFactRows.size(); ++row) {
      if (facts.*kFactRows[row].fact) tally.count(row);
    }
    tally.count(kFactRows.size());
  }
}

bool runCase(const RunSettings& settings, std::size_t number, Tally& tally) {
  Random random(settings.seedOf(number));
  const LineCase lineCase = randomLineCase(random);
  std::vector<LineFacts> facts;
  if (runTwin(lineCase, facts) == runReal(lineCase)) {
    count(facts, tally);
    return true;
  }
  ADD_FAILURE() << settings.repeatHint(number) << '\n' << report(shrink(lineCase));
  return false;
}

TEST(LineOracle, RandomLinesAgreeWithTheTwin) {
  const RunSettings settings = RunSettings::fromEnvironment(kCases);
  Tally tally = emptyTally(settings);
  const auto run = [&](std::size_t number) { return runCase(settings, number, tally); };
  if (!settings.runCases(run)) return;
  std::cout << tally;
  for (const std::string& row : tally.shortRows()) ADD_FAILURE() << "too seldom: " << row;
}

/// Lets every call of a service throw while a line is parsed, and while it is parsed again.
bool runFaults(const RunSettings& settings, std::size_t number) {
  Random random(settings.seedOf(number));
  LineCase lineCase = randomLineCase(random);
  lineCase.plan.logging = true;
  lineCase.lines = {lineCase.lines.front(), lineCase.lines.front()};
  const std::size_t calls = countCalls(lineCase);
  const bool isWhole = settings.cases >= settings.wholeCases;
  for (std::size_t call = 0; call < calls; ++call) {
    for (std::size_t way = 0; way < kWaysToFail; ++way) {
      if (!isWhole && way != (number + call) % kWaysToFail) continue;
      planFailure(lineCase.plan, call, way);
      if (agree(lineCase)) continue;
      ADD_FAILURE() << settings.repeatHint(number) << ", call " << call << '\n' << report(lineCase);
      return false;
    }
  }
  return true;
}

TEST(LineOracle, LinesInWhichAServiceThrowsAgreeWithTheTwin) {
  const RunSettings settings = RunSettings::fromEnvironment(kFaultCases);
  settings.runCases([&](std::size_t number) { return runFaults(settings, number); });
}

}  // namespace
}  // namespace quenlith::oracle
