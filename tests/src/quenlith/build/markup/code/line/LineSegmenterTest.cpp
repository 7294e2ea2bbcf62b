#include "quenlith/build/markup/code/line/LineSegmenter.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using quenlith::build::markup::code::line::LineSegment;
using quenlith::build::markup::core::MarkerInfo;
using Segmenter = quenlith::build::markup::code::line::LineSegmenter;

MarkerInfo markerAt(std::uint64_t position, std::uint64_t length) {
  MarkerInfo marker;
  marker.position = position;
  marker.length = length;
  return marker;
}

/// Tests with two equal owners whose own text is at [2, 4) and [6, 8).
class LineSegmenter : public testing::Test {
 protected:
  /// The segments as text, with the owner's name before each: "-", "A" or "B".
  std::vector<std::u16string> segments(std::u16string_view line = u"0123456789") {
    std::vector<std::u16string> found;
    for (const LineSegment& segment : segmenter.split(line)) {
      const char16_t* owner = segment.owner == nullptr ? u"-" : segment.owner == &a ? u"A" : u"B";
      found.push_back(std::u16string(owner).append(segment.text));
    }
    return found;
  }
  using Segments = std::vector<std::u16string>;

  MarkerInfo a = markerAt(2, 2);
  MarkerInfo b = markerAt(6, 2);
  Segmenter segmenter;
};

TEST_F(LineSegmenter, WithoutOwnersGivesTheLine) {
  EXPECT_EQ(segments(), Segments{u"-0123456789"});
  EXPECT_EQ(segments(u""), Segments{});
}

TEST_F(LineSegmenter, GivesASpanToItsOwner) {
  segmenter.assign(2, 5, a);
  EXPECT_EQ(segments(), (Segments{u"-01", u"A234", u"-56789"}));
}

TEST_F(LineSegmenter, GivesTheWholeLineToItsOwner) {
  segmenter.assign(0, 10, a);
  EXPECT_EQ(segments(), Segments{u"A0123456789"});
}

TEST_F(LineSegmenter, ExcludesMarkerText) {
  segmenter.exclude(a);
  EXPECT_EQ(segments(), Segments{u"-01456789"});
}

TEST_F(LineSegmenter, WithNothingButMarkerTextGivesNoSegments) {
  segmenter.exclude(a);
  const MarkerInfo before = markerAt(0, 2);
  segmenter.exclude(before);
  EXPECT_EQ(segments(u"0123"), Segments{});
}

TEST_F(LineSegmenter, JoinsTheTextOfOneOwnerAroundExcludedText) {
  segmenter.exclude(b);
  segmenter.assign(5, 9, a);
  segmenter.exclude(b);
  EXPECT_EQ(segments(), (Segments{u"-01234", u"A58", u"-9"}));
}

TEST_F(LineSegmenter, DoesNotJoinPlainTextAroundAnOwner) {
  segmenter.assign(4, 5, a);
  EXPECT_EQ(segments(), (Segments{u"-0123", u"A4", u"-56789"}));
}

TEST_F(LineSegmenter, GivesTheOverlapOfTwoSpansToTheLaterOne) {
  segmenter.assign(2, 6, a);
  segmenter.assign(4, 8, b);
  EXPECT_EQ(segments(), (Segments{u"-01", u"A23", u"B4567", u"-89"}));
}

TEST_F(LineSegmenter, ALaterSpanThatBeginsBeforeWinsToo) {
  segmenter.assign(4, 8, a);
  segmenter.assign(2, 6, b);
  EXPECT_EQ(segments(), (Segments{u"-01", u"B2345", u"A67", u"-89"}));
}

TEST_F(LineSegmenter, ALaterSpanInsideAnEarlierOneGivesThreeSegments) {
  segmenter.assign(1, 9, a);
  segmenter.assign(4, 6, b);
  EXPECT_EQ(segments(), (Segments{u"-0", u"A123", u"B45", u"A678", u"-9"}));
}

TEST_F(LineSegmenter, ALaterSpanAroundAnEarlierOneReplacesIt) {
  segmenter.assign(4, 6, a);
  segmenter.assign(1, 9, b);
  EXPECT_EQ(segments(), (Segments{u"-0", u"B12345678", u"-9"}));
}

TEST_F(LineSegmenter, KeepsAdjacentSpansOfEqualMarkersSeparate) {
  segmenter.assign(0, 5, a);
  segmenter.assign(5, 10, b);
  EXPECT_EQ(segments(), (Segments{u"A01234", u"B56789"}));
}

TEST_F(LineSegmenter, JoinsTwoSpansOfOneOwner) {
  segmenter.assign(0, 5, a);
  segmenter.assign(5, 10, a);
  EXPECT_EQ(segments(), Segments{u"A0123456789"});
}

TEST_F(LineSegmenter, StartsAndEndsOfManySpansMayMeet) {
  segmenter.assign(2, 4, a);
  segmenter.assign(2, 6, b);
  segmenter.assign(2, 4, a);
  segmenter.assign(4, 6, a);
  EXPECT_EQ(segments(), (Segments{u"-01", u"A2345", u"-6789"}));
}

TEST_F(LineSegmenter, KeepsHalvesOfCharacters) {
  segmenter.assign(1, 2, a);
  EXPECT_EQ(segments(u"\xD83D\xDE00"), (Segments{u"-\xD83D", u"A\xDE00"}));
}

/// A literal version of `split`: each code unit of the line belongs to its last owner.
std::vector<std::u16string> slowSegments(std::u16string_view line, const std::vector<int>& owners) {
  std::vector<std::u16string> found;
  int last = -2;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (owners[i] != last) found.emplace_back(1, static_cast<char16_t>(u'B' + owners[i]));
    last = owners[i];
    found.back() += line[i];
  }
  return found;
}

TEST(LineCutOfManySpans, AgreesWithTheOwnerOfEachUnit) {
  constexpr std::size_t kLength = 60;
  const std::u16string line(kLength, u'x');
  const std::vector<MarkerInfo> owners(20);
  std::uint32_t random = 12345;
  const auto next = [&random](std::uint32_t below) {
    random = random * 1664525 + 1013904223;
    return (random >> 16) % below;
  };
  for (int round = 0; round < 5000; ++round) {
    Segmenter segmenter;
    std::vector<int> slots(kLength, -1);
    for (std::size_t i = 0; i < owners.size(); ++i) {
      const std::size_t begin = next(kLength);
      const std::size_t end = begin + 1 + next(static_cast<std::uint32_t>(kLength - begin));
      segmenter.assign(begin, end, owners[i]);
      for (std::size_t at = begin; at < end; ++at) slots[at] = static_cast<int>(i);
    }
    std::vector<std::u16string> found;
    for (const LineSegment& segment : segmenter.split(line)) {
      const auto owner = segment.owner == nullptr ? -1 : segment.owner - owners.data();
      found.push_back(std::u16string(1, static_cast<char16_t>(u'B' + owner)).append(segment.text));
    }
    ASSERT_EQ(found, slowSegments(line, slots)) << "round " << round;
  }
}

}  // namespace
