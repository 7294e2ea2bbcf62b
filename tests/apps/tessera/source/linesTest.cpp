#include "tessera/source/lines.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::source::countCharacters;
using tessera::source::endOf;
using tessera::source::findUnit;

TEST(Lines, AUnitIsFoundAtEveryPlaceOfATextOfEveryLength) {
  for (const char16_t unit : {u'\n', u'\0', u'\uFFFF', u'\u8000'}) {
    for (std::size_t length = 0; length < 40; ++length) {
      std::u16string text(length, u'\u0A0A');
      EXPECT_EQ(findUnit(text, unit), length);
      for (std::size_t at = length; at > 0; --at) {
        text[at - 1] = unit;
        EXPECT_EQ(findUnit(text, unit), at - 1) << length;
      }
    }
  }
}

TEST(Lines, TheFirstOfSeveralUnitsIsFound) {
  for (std::size_t first = 0; first < 20; ++first) {
    for (std::size_t second = first; second < 20; ++second) {
      std::u16string text(20, u'\u0A00');
      text[first] = text[second] = u'\n';
      EXPECT_EQ(findUnit(text, u'\n'), first) << second;
    }
  }
}

TEST(Lines, ASurrogatePairIsOneCharacter) {
  EXPECT_EQ(countCharacters(u"a🏆b"), 3u);
  EXPECT_EQ(countCharacters(std::u16string(1, 0xD83C)), 1u);
  EXPECT_EQ(countCharacters(std::u16string{0xD83C, u'x'}), 2u);
  EXPECT_EQ(countCharacters(std::u16string{0xDFC6, 0xD83C}), 2u);
}

TEST(Lines, PlacesAreOneBased) {
  EXPECT_EQ(endOf(u"").line, 1u);
  EXPECT_EQ(endOf(u"").column, 1u);
  EXPECT_EQ(endOf(u"a\nbc").line, 2u);
  EXPECT_EQ(endOf(u"a\nbc").column, 3u);
  EXPECT_EQ(endOf(u"a\n\n").line, 3u);
  EXPECT_EQ(endOf(u"a\n\n").column, 1u);
}

}  // namespace
