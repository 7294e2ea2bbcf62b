#include <gtest/gtest.h>

#include <string>

#include "exhaustive/LineComparison.hpp"

// The line parser and its twin agree on every line of up to seven units of an alphabet.

namespace quenlith::exhaustive {
namespace {

using oracle::AnswerRule;
using oracle::WorldPlan;
using Units = LineComparison::Units;

// Halves of markers and of the sequence that is replaced, so that markers come into being, are
// damaged and are replaced in every place; text, and halves of a pair.
const Units& fragments() {
  static const Units units = {u"%", u"\\", u"<@output", u"<@text:anchor", u"#a", u" [0,1]",
                              u">", u"x",  u"\xD83D",   u"\xDE00",        u"/*", u"*/"};
  return units;
}

// Whole markers whose ranges are valid, nested, overlapping, reaching into or around a marker,
// beginning where one ends, or past the end, as the units before and after them decide.
const Units& ranges() {
  static const Units units = {u"x",
                              u"\xD83D",
                              u"\xDE00",
                              u"%%\\",
                              u"#<@output [0,2]>",
                              u"#<@output [1,20]>",
                              u"#<@output [16,17]>",
                              u"#<@control [1,3]>",
                              u"#<@text:anchor#a [0,1]>",
                              u"#<@task>"};
  return units;
}

// Each of the four elements is treated in another way: a parser accepts outputs, another one
// controls, a contributor adds data to anchors, and nobody accepts tasks.
WorldPlan planForLines(bool logging) {
  WorldPlan plan;
  plan.codeElementParsers = {{AnswerRule::Kind::kElement, u"output"},
                             {AnswerRule::Kind::kElement, u"control"}};
  plan.contributorParsers = {{AnswerRule::Kind::kElement, u"text"}};
  plan.builtInDefaultParser = true;
  plan.logging = logging;
  return plan;
}

void compareLines(const std::string& name, const Units& alphabet, std::size_t units, bool logging) {
  const WorldPlan plan = planForLines(logging);
  const auto part = [&](std::size_t first, std::size_t second) {
    LineComparison comparison(plan, alphabet, first, second);
    comparison.extend(units - kSpread);
    return comparison.getOutcome();
  };
  // All threads have one log.
  const Threads threads = logging ? Threads::kOne : Threads::kAll;
  const Outcome outcome = forEachPair(alphabet.size(), threads, part);
  report(name + " of up to " + std::to_string(units) + " units", outcome, "markers");
}

TEST(ExhaustiveLines, OfFragmentsAgreeWithTheTwin) {
  compareLines("fragments", fragments(), unitsOfThisRun(), false);
}

TEST(ExhaustiveLines, OfMarkersWithRangesAgreeWithTheTwin) {
  compareLines("markers with ranges", ranges(), unitsOfThisRun(), false);
}

TEST(ExhaustiveLines, WriteTheSameLogAsTheTwin) {
  compareLines("log", ranges(), 3, true);
}

}  // namespace
}  // namespace quenlith::exhaustive
