#include <gtest/gtest.h>

#include <limits>

#include "conformance/ParserHost.hpp"
#include "quenlith/build/markup/code/line/PositionCheck.hpp"

namespace quenlith::conformance {
namespace {

using build::markup::code::line::isUsableRange;
using foundation::json::Value;

ustring rangeText(std::size_t begin, std::size_t end) {
  const std::string text = " [" + std::to_string(begin) + ',' + std::to_string(end) + ']';
  return {text.begin(), text.end()};
}

struct PositionCase {
  const char* why;
  ustring before;
  std::size_t begin;
  std::size_t end;
  bool valid;
};

// Parses a line of `test.before` and the marker under test, "# <@output ...>".
bool isValid(const PositionCase& test) {
  ParserHost host;
  const NodeRecord line =
      host.onlyLine(test.before + u"# <@output" + rangeText(test.begin, test.end) + u">");
  return line.failures.empty();
}

const ustring kWithDamagedMarker = u"0123456789%<@task#>abcdef";
// The marker is ten units long and ends at 20.
const ustring kWithMarker = u"0123456789%<@task#t>bcdefg";

const std::vector<PositionCase> kPositions = {
    // Ranges that touch no marker.
    {"begin is end", u"abcdefg", 0, 0, false},
    {"begin is after end", u"abcdefg", 4, 2, false},
    {"all of the text", u"abcdefg", 0, 7, true},
    // Ranges near a marker.
    {"ends where the marker begins", kWithMarker, 3, 10, true},
    {"ends one unit within the marker", kWithMarker, 3, 11, false},
    {"ends where the marker ends", kWithMarker, 3, 20, false},
    {"begins where the marker begins", kWithMarker, 10, 12, false},
    {"begins within the marker", kWithMarker, 15, 22, false},
    {"begins where the marker ends", kWithMarker, 20, 25, false},
    {"begins one unit past the end of the marker", kWithMarker, 21, 25, true},
    {"encloses the marker", kWithMarker, 8, 21, false},
    // A damaged marker does not invalidate a range.
    {"over a damaged marker", kWithDamagedMarker, 3, 22, true},
    // An unhandled marker does.
    {"over an unhandled marker", u"01%<@text>bcdefg", 1, 12, false},
};

TEST(PositionRules, RangesAreCheckedAgainstEveryMarkerOfTheLine) {
  for (const PositionCase& test : kPositions) EXPECT_EQ(isValid(test), test.valid) << test.why;
}

struct RangeCase {
  std::uint64_t begin;
  std::uint64_t end;
  bool usable;
};

TEST(PositionRules, ARangeMayCoverAWholeLineWithoutMarkers) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  const std::vector<RangeCase> cases = {{0, 0, false},    {4, 2, false},     {0, 30, true},
                                        {0, 31, false},   {29, 30, true},    {30, 30, false},
                                        {30, 31, false},  {0, kMost, false}, {kMost, kMost, false},
                                        {kMost, 0, false}};
  for (const RangeCase& test : cases) {
    EXPECT_EQ(isUsableRange(test.begin, test.end, 30, {}), test.usable)
        << test.begin << ' ' << test.end;
  }
}

TEST(PositionRules, ARangeMayEndWhereAMarkerBeginsButNotBeginWhereItEnds) {
  build::markup::core::MarkerInfo marker;
  marker.position = 10;
  marker.length = 5;
  const std::vector<RangeCase> cases = {{3, 10, true},   {3, 11, false},  {15, 20, false},
                                        {16, 20, true},  {8, 16, false},  {10, 11, false},
                                        {14, 20, false}, {3, 15, false},  {9, 10, true},
                                        {9, 11, false},  {10, 15, false}, {0, 30, false}};
  for (const RangeCase& test : cases) {
    EXPECT_EQ(isUsableRange(test.begin, test.end, 30, {&marker, 1}), test.usable)
        << test.begin << ' ' << test.end;
  }
}

TEST(PositionRules, ARangeMayEndAtTheLinesEndAndNotBeyondIt) {
  ParserHost host;
  // The marker at the start is 19 units long; the text after it ends at 22.
  EXPECT_TRUE(host.onlyLine(u"# <@output [20,22]>xyz").failures.empty());
  EXPECT_FALSE(host.onlyLine(u"# <@output [20,23]>xyz").failures.empty());
}

TEST(PositionRules, ARangeMayExtendUpToItsMarkerButNotIntoIt) {
  ParserHost host;
  // The marker begins at 5.
  EXPECT_TRUE(host.onlyLine(u"abcde# <@output [0,5]>").failures.empty());
  EXPECT_FALSE(host.onlyLine(u"abcde# <@output [0,6]>").failures.empty());
}

TEST(PositionRules, ARangeOverItsOwnMarkersTextIsAFailure) {
  ParserHost host;
  const NodeRecord line = host.onlyLine(u"abc # <@output#o [4,6]> de");
  ASSERT_EQ(line.failures.size(), 1U);
  EXPECT_EQ(host.takeMessages(),
            (std::vector<std::string>{"In LineNodeParserService",
                                      "Building a bad position parser failure"}));
}

TEST(PositionRules, TheFailureCarriesTheRangeAsTwoDoubles) {
  ParserHost host;
  const NodeRecord line = host.onlyLine(u"abcdefgh # <@text:anchor#a [7,3]>");
  FailureRecord expected;
  expected.failureId = u"invalid_position_data";
  expected.featureId = u"text";
  expected.subFeatureId = u"anchor";
  expected.markerId = u"a";
  expected.data["position"] = Value(std::vector<Value>{Value(7.0), Value(3.0)});
  EXPECT_EQ(line.failures, std::vector<FailureRecord>{expected});
}

TEST(PositionRules, NumbersThatAreTooLargeAreAFailure) {
  ParserHost host;
  const NodeRecord line = host.onlyLine(u"abc # <@output [1,99999999999999999999999]>");
  ASSERT_EQ(line.failures.size(), 1U);
  const Value expected(std::vector<Value>{Value(1.0), Value(18446744073709551616.0)});
  EXPECT_EQ(line.failures[0].data.at("position"), expected);
}

TEST(PositionRules, EqualFailuresOfALineAreRecordedOnce) {
  ParserHost host;
  const NodeRecord line =
      host.onlyLine(u"# <@output#o [5,5]> # <@output#o [5,5]> # <@output#o [6,5]>");
  EXPECT_EQ(line.failures.size(), 2U);
}

TEST(ContributionRules, EveryApplicableParserGivesOneContributionWithOneLineData) {
  WorldPlan plan;
  plan.contributorParsers = {takes(u"output"), takes(u"task"), takes(u"output")};
  ParserHost host(plan);
  const NodeRecord line = host.onlyLine(u"x # <@output#o>");
  const JsonMap first = {{"result", Value(1.0)}};
  const JsonMap second = {{"result", Value(2.0)}};
  EXPECT_EQ(line.contributions,
            (std::vector<ContributionRecord>{{u"f0output", {first}}, {u"f2output", {second}}}));
}

TEST(ContributionRules, EveryApplicableParserIsLoggedBeforeItIsCalled) {
  WorldPlan plan;
  plan.contributorParsers = {takes(u"output"), takes(u"task"), takes(u"output")};
  ParserHost host(plan);
  host.onlyLine(u"# <@output>");
  EXPECT_EQ(
      host.takeTrace(),
      (std::vector<std::string>{"log In LineNodeParserService", "getLineContributorDataParsers",
                                "getCodeElementParsers", "isApplicable 0 \"%<@output>\" yes",
                                "log Found an applicable line contributor data parser",
                                "contribute 0 \"%<@output>\"", "isApplicable 1 \"%<@output>\" no",
                                "isApplicable 2 \"%<@output>\" yes",
                                "log Found an applicable line contributor data parser",
                                "contribute 2 \"%<@output>\"", "parse 0 \"\" no marker no range"}));
}

TEST(FeatureRules, EachElementPutsTheCanonicalTextOfItsKindIntoMarkerTypes) {
  ParserHost host;
  const auto typesOf = [&](const ustring& text) { return host.parseLine(text).markerTypes; };
  EXPECT_EQ(typesOf(u"# <@text:anchor#a>"), (std::set<ustring>{Marker(u"text").toString()}));
  EXPECT_EQ(typesOf(u"# <@control:slider#c>"), (std::set<ustring>{Marker(u"control").toString()}));
  EXPECT_EQ(typesOf(u"# <@output#o {\"a\":1}>"), (std::set<ustring>{Marker(u"output").toString()}));
  EXPECT_EQ(typesOf(u"# <@task#t>"), (std::set<ustring>{Marker(u"task").toString()}));
  EXPECT_TRUE(typesOf(u"# <@text>").empty());
}

}  // namespace
}  // namespace quenlith::conformance
