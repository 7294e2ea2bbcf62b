#include "tessera/source/lines.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::source::countCharacters;
using tessera::source::endOf;

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
