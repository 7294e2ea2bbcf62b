#include "quenlith/build/markup/code/LineCut.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using quenlith::build::markup::code::LinePiece;
using quenlith::build::markup::core::MarkerInfo;
using Cut = quenlith::build::markup::code::LineCut;

MarkerInfo markerAt(std::uint64_t position, std::uint64_t length) {
  MarkerInfo marker;
  marker.position = position;
  marker.length = length;
  return marker;
}

/// Tests with two owners that are equal, whose own text stands at [2, 4) and [6, 8).
class LineCut : public testing::Test {
 protected:
  /// The pieces as text, with the owner's name before each: "-", "A" or "B".
  std::vector<std::u16string> pieces(std::u16string_view line = u"0123456789") {
    std::vector<std::u16string> found;
    for (const LinePiece& piece : cut.cut(line)) {
      const char16_t* owner = piece.owner == nullptr ? u"-" : piece.owner == &a ? u"A" : u"B";
      found.push_back(std::u16string(owner).append(piece.text));
    }
    return found;
  }
  using Pieces = std::vector<std::u16string>;

  MarkerInfo a = markerAt(2, 2);
  MarkerInfo b = markerAt(6, 2);
  Cut cut;
};

TEST_F(LineCut, WithoutOwnersGivesTheLine) {
  EXPECT_EQ(pieces(), Pieces{u"-0123456789"});
  EXPECT_EQ(pieces(u""), Pieces{});
}

TEST_F(LineCut, GivesAStretchToItsOwner) {
  cut.own(2, 5, a);
  EXPECT_EQ(pieces(), (Pieces{u"-01", u"A234", u"-56789"}));
}

TEST_F(LineCut, GivesTheWholeLineToItsOwner) {
  cut.own(0, 10, a);
  EXPECT_EQ(pieces(), Pieces{u"A0123456789"});
}

TEST_F(LineCut, LeavesMarkerTextOut) {
  cut.leaveOut(a);
  EXPECT_EQ(pieces(), Pieces{u"-01456789"});
}

TEST_F(LineCut, OfNothingButMarkerTextHasNoPieces) {
  cut.leaveOut(a);
  const MarkerInfo before = markerAt(0, 2);
  cut.leaveOut(before);
  EXPECT_EQ(pieces(u"0123"), Pieces{});
}

TEST_F(LineCut, JoinsTheTextOfOneOwnerAroundWhatIsLeftOut) {
  cut.leaveOut(b);
  cut.own(5, 9, a);
  cut.leaveOut(b);
  EXPECT_EQ(pieces(), (Pieces{u"-01234", u"A58", u"-9"}));
}

TEST_F(LineCut, DoesNotJoinPlainTextAroundAnOwner) {
  cut.own(4, 5, a);
  EXPECT_EQ(pieces(), (Pieces{u"-0123", u"A4", u"-56789"}));
}

TEST_F(LineCut, GivesTheLaterOfTwoStretchesWhatBothClaim) {
  cut.own(2, 6, a);
  cut.own(4, 8, b);
  EXPECT_EQ(pieces(), (Pieces{u"-01", u"A23", u"B4567", u"-89"}));
}

TEST_F(LineCut, ALaterStretchThatBeginsBeforeWinsToo) {
  cut.own(4, 8, a);
  cut.own(2, 6, b);
  EXPECT_EQ(pieces(), (Pieces{u"-01", u"B2345", u"A67", u"-89"}));
}

TEST_F(LineCut, ALaterStretchInsideAnEarlierOneGivesThreePieces) {
  cut.own(1, 9, a);
  cut.own(4, 6, b);
  EXPECT_EQ(pieces(), (Pieces{u"-0", u"A123", u"B45", u"A678", u"-9"}));
}

TEST_F(LineCut, ALaterStretchAroundAnEarlierOneSwallowsIt) {
  cut.own(4, 6, a);
  cut.own(1, 9, b);
  EXPECT_EQ(pieces(), (Pieces{u"-0", u"B12345678", u"-9"}));
}

TEST_F(LineCut, TellsNeighboursOfEqualMarkersApart) {
  cut.own(0, 5, a);
  cut.own(5, 10, b);
  EXPECT_EQ(pieces(), (Pieces{u"A01234", u"B56789"}));
}

TEST_F(LineCut, JoinsTwoStretchesOfOneOwner) {
  cut.own(0, 5, a);
  cut.own(5, 10, a);
  EXPECT_EQ(pieces(), Pieces{u"A0123456789"});
}

TEST_F(LineCut, StartsAndEndsOfManyStretchesMayMeet) {
  cut.own(2, 4, a);
  cut.own(2, 6, b);
  cut.own(2, 4, a);
  cut.own(4, 6, a);
  EXPECT_EQ(pieces(), (Pieces{u"-01", u"A2345", u"-6789"}));
}

TEST_F(LineCut, KeepsHalvesOfCharacters) {
  cut.own(1, 2, a);
  EXPECT_EQ(pieces(u"\xD83D\xDE00"), (Pieces{u"-\xD83D", u"A\xDE00"}));
}

/// The same by the letter: every place of the line gets its last owner.
std::vector<std::u16string> slowPieces(std::u16string_view line, const std::vector<int>& owners) {
  std::vector<std::u16string> found;
  int last = -2;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (owners[i] != last) found.emplace_back(1, static_cast<char16_t>(u'B' + owners[i]));
    last = owners[i];
    found.back() += line[i];
  }
  return found;
}

TEST(LineCutOfManyStretches, AgreesWithTheOwnersPlaceByPlace) {
  constexpr std::size_t kLength = 60;
  const std::u16string line(kLength, u'x');
  const std::vector<MarkerInfo> owners(20);
  std::uint32_t random = 12345;
  const auto next = [&random](std::uint32_t below) {
    random = random * 1664525 + 1013904223;
    return (random >> 16) % below;
  };
  for (int round = 0; round < 5000; ++round) {
    Cut cut;
    std::vector<int> slots(kLength, -1);
    for (std::size_t i = 0; i < owners.size(); ++i) {
      const std::size_t begin = next(kLength);
      const std::size_t end = begin + 1 + next(static_cast<std::uint32_t>(kLength - begin));
      cut.own(begin, end, owners[i]);
      for (std::size_t at = begin; at < end; ++at) slots[at] = static_cast<int>(i);
    }
    std::vector<std::u16string> found;
    for (const LinePiece& piece : cut.cut(line)) {
      const auto owner = piece.owner == nullptr ? -1 : piece.owner - owners.data();
      found.push_back(std::u16string(1, static_cast<char16_t>(u'B' + owner)).append(piece.text));
    }
    ASSERT_EQ(found, slowPieces(line, slots)) << "round " << round;
  }
}

}  // namespace
