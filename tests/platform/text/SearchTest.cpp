#include "fl/i18n/search.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/GuardedMemory.hpp"

namespace fl::i18n {
namespace {

using quenlith::test::GuardedMemory;

// Longer than two iterations of the widest loop, with every remainder.
constexpr std::size_t kMostUnits = 70;

bool isWanted(char16_t unit) {
  return unit <= 0x1F || unit == u'"' || (unit >= 0x7F && unit <= 0x9F) || unit == 0xFFFF;
}

std::size_t find(std::u16string_view text, std::size_t from = 0) {
  return findAny<UnitRange(0, 0x1F), u'"', UnitRange(0x7F, 0x9F), u'\xFFFF'>(text, from);
}

TEST(UnitRange, ContainsBothEndsAndWhatIsBetween) {
  struct Case {
    char16_t first;
    char16_t last;
    std::u16string inside;
    std::u16string outside;
  };
  const std::vector<Case> cases{
      {u'a', u'd', u"abcd", u"`e\uFFFF"},
      {u'\0', u'\x1F', std::u16string{u'\0', u'\x0F', u'\x1F'}, u" \uFFFF"},
      {u'\x7FFF', u'\xFFFF', u"\x7FFF\x8000\xFFFF", std::u16string{u'\0', u'\x7FFE'}},
      {u'b', u'b', u"b", u"ac"},
      // Contains nothing.
      {u'c', u'a', u"", u"abc"},
  };
  for (const auto& [first, last, inside, outside] : cases) {
    const UnitRange range(first, last);
    for (const char16_t unit : inside) EXPECT_TRUE(range.contains(unit)) << +first << " " << +unit;
    for (const char16_t unit : outside)
      EXPECT_FALSE(range.contains(unit)) << +first << " " << +unit;
  }
}

TEST(UnitRange, OfASingleUnitContainsThatOnly) {
  for (const char16_t unit : {u'\0', u'"', u'\x8000', u'\xFFFF'}) {
    const UnitRange range = unit;
    EXPECT_TRUE(range.contains(unit)) << +unit;
    EXPECT_FALSE(range.contains(static_cast<char16_t>(unit + 1))) << +unit;
    EXPECT_FALSE(range.contains(static_cast<char16_t>(unit - 1))) << +unit;
  }
}

TEST(FindAny, MatchesExactlyTheWantedUnits) {
  for (const std::size_t size : {1U, 8U, 15U, 16U, 40U}) {
    std::u16string text(size, u'x');
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
      text.back() = static_cast<char16_t>(code);
      ASSERT_EQ(find(text), isWanted(text.back()) ? size - 1 : size) << code;
    }
  }
}

TEST(FindAny, SearchesFromTheBeginningUnlessToldOtherwise) {
  for (const std::u16string_view text : {u"\"x\"", u"\"xxxxxxx\"", u"\"xxxxxxxxxxxxxxxxxxxx\""}) {
    EXPECT_EQ(findAny<u'"'>(text), 0U);
    EXPECT_EQ((findPair<u'"', u'x'>(text)), 0U);
  }
}

TEST(FindAny, FindsTheFirstMatchAtEveryPositionFromEveryStart) {
  for (std::size_t size = 0; size < kMostUnits; ++size) {
    const std::u16string plain(size, u'x');
    ASSERT_EQ(find(plain), size);
    for (std::size_t at = 0; at < size; ++at) {
      std::u16string text = plain;
      text[at] = u'"';
      text.back() = u'"';
      for (std::size_t from = 0; from <= size; ++from) {
        ASSERT_EQ(find(text, from), from <= at    ? at
                                    : from < size ? size - 1
                                                  : size)
            << size << " " << at << " " << from;
      }
    }
  }
}

TEST(FindPair, FindsThePairAtEveryPosition) {
  for (const std::u16string filler : {u"x", u"<", u"@", u"@<"}) {
    for (std::size_t size = 0; size < kMostUnits; ++size) {
      std::u16string text;
      while (text.size() < size) text += filler;
      text.resize(size);
      ASSERT_EQ((findPair<u'<', u'@'>(text)), std::min(text.find(u"<@"), size));
      for (std::size_t at = 0; at + 1 < size; ++at) {
        std::u16string marked = text;
        marked.replace(at, 2, u"<@");
        ASSERT_EQ((findPair<u'<', u'@'>(marked)), marked.find(u"<@")) << size << " " << at;
      }
    }
  }
}

TEST(FindPair, AgreesWithTheStandardLibraryOnRandomTexts) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  constexpr std::u16string_view kUnits = u"<@<@xxxxxx\u3C40\u403C\uFF3C";
  for (int round = 0; round < 20'000; ++round) {
    std::u16string text;
    for (std::size_t left = random() % 150; left > 0; --left) {
      text += random() % 8 == 0 ? kUnits[random() % kUnits.size()] : u'x';
    }
    const std::size_t from = random() % (text.size() + 1);
    ASSERT_EQ((findPair<u'<', u'@'>(text, from)), std::min(text.find(u"<@", from), text.size()));
  }
}

TEST(FindOccurrence, TellsForBothUnitsAtEveryPosition) {
  for (std::size_t size = 0; size < kMostUnits; ++size) {
    const std::u16string plain(size, u'x');
    const auto [firstInPlain, secondInPlain] = findOccurrence<u'@', u'\\'>(plain);
    ASSERT_FALSE(firstInPlain || secondInPlain) << size;
    for (std::size_t at = 0; at < size; ++at) {
      std::u16string text = plain;
      text[at] = u'@';
      const Occurrence one = findOccurrence<u'@', u'\\'>(text);
      ASSERT_TRUE(one.first && !one.second) << size << " " << at;
      const Occurrence other = findOccurrence<u'\\', u'@'>(text);
      ASSERT_TRUE(!other.first && other.second) << size << " " << at;
      text[(at + size / 2) % size] = u'\\';
      const Occurrence both = findOccurrence<u'@', u'\\'>(text);
      ASSERT_TRUE(both.second && both.first == (text[at] == u'@')) << size << " " << at;
    }
  }
}

void searchAll(std::u16string_view text) {
  for (std::size_t from = 0; from <= text.size(); ++from) {
    ASSERT_EQ(find(text, from), text.size());
    ASSERT_EQ((findPair<u'<', u'@'>(text, from)), text.size());
  }
  const auto [hasBackslash, hasNull] = findOccurrence<u'\\', u'\0'>(text);
  ASSERT_FALSE(hasBackslash || hasNull);
}

TEST(Search, StaysWithinTheBounds) {
  const GuardedMemory memory(kMostUnits * sizeof(char16_t));
  for (std::size_t size = 0; size < kMostUnits; ++size) {
    // Each position is a candidate for the pair, so its neighbour is read too.
    for (const char16_t filler : {u'x', u'@', u'<'}) {
      const std::u16string text(size, filler);
      searchAll(memory.copyToEnd<char16_t>(text));
      searchAll(memory.copyToBegin<char16_t>(text));
    }
  }
}

}  // namespace
}  // namespace fl::i18n
