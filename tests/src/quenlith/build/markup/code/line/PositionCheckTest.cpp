#include "quenlith/build/markup/code/line/PositionCheck.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "support/LogCollector.hpp"

namespace {

using document::kdzero::LineNode;
using foundation::json::Value;
using quenlith::build::markup::code::line::addPositionFailure;
using quenlith::build::markup::code::line::isUsableRange;
using quenlith::build::markup::core::MarkerInfo;
using quenlith::syntax::Marker;

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

MarkerInfo markerAt(std::uint64_t position, std::uint64_t length) {
  return {Marker(u"output"), position, length, std::nullopt};
}

struct Case {
  std::uint64_t begin;
  std::uint64_t end;
  bool usable;
};

void expectEach(const std::vector<Case>& cases, std::uint64_t lineLength,
                const std::vector<MarkerInfo>& markers) {
  for (const Case& each : cases) {
    EXPECT_EQ(isUsableRange(each.begin, each.end, lineLength, markers), each.usable)
        << "[" << each.begin << ", " << each.end << ")";
  }
}

TEST(PositionCheck, WithoutMarkersLooksAtTheLineOnly) {
  expectEach(
      {
          {0, 0, false},
          {4, 2, false},
          {0, 1, true},
          {0, 20, true},
          {19, 20, true},
          {0, 21, false},
          {20, 20, false},
          {20, 21, false},
          {kLargest, kLargest, false},
          {kLargest, 3, false},
          {3, kLargest, false},
          {kLargest - 1, kLargest, false},
      },
      20, {});
  expectEach({{0, 0, false}, {0, 1, false}}, 0, {});
}

TEST(PositionCheck, TheTextOfAMarkerIsTouchedWithinItsClosedBounds) {
  expectEach(
      {
          {3, 10, true},   // ends where the text begins
          {3, 11, false},  // ends within
          {3, 15, false},  // ends where the text ends
          {9, 16, false},  // encloses it
          {8, 16, false},
          {10, 12, false},  // begins where the text begins
          {10, 15, false},  // equals it
          {11, 13, false},  // is inside
          {14, 20, false},  // begins within
          {15, 20, false},  // begins where the text ends
          {16, 20, true},
          {0, 10, true},
          {0, 20, false},
          {19, 20, true},
      },
      20, {markerAt(10, 5)});
}

TEST(PositionCheck, EveryMarkerOfTheLineCounts) {
  const std::vector<MarkerInfo> markers{markerAt(4, 3), markerAt(10, 5), markerAt(15, 2)};
  expectEach(
      {
          {0, 4, true},
          {0, 5, false},
          {0, 20, false},
          {8, 10, true},
          {7, 10, false},  // begins where the first one ends
          {8, 11, false},
          {15, 16, false},  // begins where one ends and the next begins
          {17, 20, false},
          {18, 20, true},
          {18, 30, true},
          {5, 30, false},
      },
      30, markers);
}

TEST(PositionCheck, AgreesWithTheRuleMarkerByMarker) {
  constexpr std::uint64_t kLength = 24;
  const std::vector<std::vector<MarkerInfo>> lines{
      {markerAt(0, 4)},
      {markerAt(20, 4)},
      {markerAt(0, 4), markerAt(4, 4), markerAt(20, 4)},
      {markerAt(2, 5), markerAt(9, 1), markerAt(12, 6)},
  };
  for (const std::vector<MarkerInfo>& markers : lines) {
    for (std::uint64_t begin = 0; begin <= kLength + 1; ++begin) {
      for (std::uint64_t end = 0; end <= kLength + 1; ++end) {
        bool usable = begin < end && end <= kLength;
        for (const MarkerInfo& marker : markers) {
          const std::uint64_t o = marker.position;
          const std::uint64_t e = o + marker.length;
          if ((o <= begin && begin <= e) || (o < end && end <= e) || (begin < o && end > e)) {
            usable = false;
          }
        }
        ASSERT_EQ(isUsableRange(begin, end, kLength, markers), usable) << begin << ", " << end;
      }
    }
  }
}

class PositionFailure : public testing::Test {
 protected:
  static MarkerInfo marker(std::uint64_t begin, std::uint64_t end) {
    return {Marker(u"%<@text:anchor#intro>"), 10, 5, std::pair(begin, end)};
  }
  const failures::kdzero::ParserFailure& only() const {
    EXPECT_EQ(node->getParserFailures().size(), 1u);
    return node->getParserFailures()[0];
  }

  LineNode node = LineNode::Builder(kd::zero::Model::create()).createLineNode(boost::uuids::uuid{});
};

TEST_F(PositionFailure, NamesTheRuleAndTheMarker) {
  addPositionFailure(node, marker(7, 3));
  EXPECT_EQ(only().getFailureId(), u"invalid_position_data");
  EXPECT_EQ(only().getMarkerInfo().getFeatureId(), u"text");
  EXPECT_EQ(only().getMarkerInfo().getSubFeatureId(), u"anchor");
  EXPECT_EQ(only().getMarkerInfo().getMarkerId(), u"intro");
}

TEST_F(PositionFailure, ContainsTheRangeAsTwoDoubles) {
  addPositionFailure(node, marker(7, 3));
  ASSERT_EQ(only().getFailureData().size(), 1u);
  EXPECT_EQ(only().getFailureData().at("position"),
            Value(std::vector<Value>{Value(7.0), Value(3.0)}));
}

TEST_F(PositionFailure, ContainsTheLargestNumbersAsTheNearestDoubles) {
  addPositionFailure(node, marker(kLargest, 9007199254740993));
  EXPECT_EQ(only().getFailureData().at("position"),
            Value(std::vector<Value>{Value(18446744073709551616.0), Value(9007199254740992.0)}));
}

TEST_F(PositionFailure, IsRecordedOncePerDifferentMarker) {
  addPositionFailure(node, marker(7, 3));
  addPositionFailure(node, marker(7, 3));
  EXPECT_EQ(node->getParserFailures().size(), 1u);
  addPositionFailure(node, marker(8, 3));
  EXPECT_EQ(node->getParserFailures().size(), 2u);
}

TEST_F(PositionFailure, IsLogged) {
  const quenlith::test::LogRecords records;
  addPositionFailure(node, marker(7, 3));
  EXPECT_EQ(records.get(), std::vector<std::string>{"Building a bad position parser failure"});
}

}  // namespace
