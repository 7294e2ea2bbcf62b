#include <gtest/gtest.h>

#include "tessera/characters/Character.hpp"
#include "tessera/characters/visibility.hpp"

namespace {

using namespace tessera::characters;

TEST(Visibility, CharactersWithoutAShapeAreInvisible) {
  const char32_t hidden[] = {
      0x0,     0x9,     0xA,     0x1B,    0x1F,    0x7F,    0x80,    0x9B,    0x9F,   0xAD,
      0x34F,   0x61C,   0x115F,  0x180E,  0x200B,  0x200C,  0x200D,  0x200E,  0x200F, 0x2028,
      0x2029,  0x202A,  0x202E,  0x2060,  0x2066,  0x2069,  0x206F,  0x2800,  0x3164, 0xE000,
      0xFDD0,  0xFE00,  0xFE0F,  0xFEFF,  0xFFA0,  0xFFF9,  0xFFFE,  0xD800,  0xDFFF, 0x1D173,
      0xE0001, 0xE0041, 0xE007F, 0xE0100, 0xE01EF, 0xF0000, 0x1FFFE, 0x10FFFF};
  for (const char32_t character : hidden) EXPECT_TRUE(isInvisible(character)) << nameOf(character);
}

TEST(Visibility, LettersSignsSpacesAndEmojiAreVisible) {
  for (const char32_t character :
       {0x20U, 0x21U, 0x7EU, 0xA0U, 0xE9U, 0x300U, 0x5D0U, 0x627U, 0x915U, 0x200AU, 0x2010U,
        0x202FU, 0x3000U, 0x4E2DU, 0xAC00U, 0xFFFDU, 0x1F600U}) {
    EXPECT_FALSE(isInvisible(character)) << nameOf(character);
  }
}

TEST(Visibility, OtherSpacesLookLikeABlank) {
  for (const char32_t character : {0xA0U, 0x1680U, 0x2000U, 0x2003U, 0x200AU, 0x202FU, 0x205FU}) {
    EXPECT_TRUE(looksLikeBlank(character)) << nameOf(character);
  }
  for (const char32_t character : {0x9U, 0x20U, 0x41U, 0x200BU, 0x2028U, 0x3000U}) {
    EXPECT_FALSE(looksLikeBlank(character)) << nameOf(character);
  }
}

TEST(Visibility, AJoinerOrSelectorIsPartOfALetterOrAnEmojiOnly) {
  for (const char32_t character : {0x200CU, 0x200DU, 0xFE0EU, 0xFE0FU}) {
    EXPECT_TRUE(isPartOfShape(character, 0x915));
    EXPECT_TRUE(isPartOfShape(character, 0x1F469));
    EXPECT_FALSE(isPartOfShape(character, U'a'));
    EXPECT_FALSE(isPartOfShape(character, 0));
    EXPECT_FALSE(isPartOfShape(character, 0x200D));
  }
  for (const char32_t base : {U'0', U'9', U'#', U'*'}) {
    EXPECT_TRUE(isPartOfShape(0xFE0F, base));
    EXPECT_FALSE(isPartOfShape(0xFE0E, base));
  }
  EXPECT_TRUE(isPartOfShape(0x200D, 0xFE0F));
  EXPECT_FALSE(isPartOfShape(0x200C, 0xFE0F));
  EXPECT_FALSE(isPartOfShape(0xFE0F, 0xFE0F));
  EXPECT_FALSE(isPartOfShape(0x200B, 0x915));
  EXPECT_FALSE(isPartOfShape(0xE0041, 0x1F3F4));
}

TEST(Visibility, ACharacterIsNamedByItsNumber) {
  EXPECT_EQ(nameOf(0), "U+0000");
  EXPECT_EQ(nameOf(0x200B), "U+200B");
  EXPECT_EQ(nameOf(0x10FFFF), "U+10FFFF");
}

TEST(Character, APairOfSurrogatesIsOneCharacter) {
  EXPECT_EQ(firstOf(u"ab").code, U'a');
  EXPECT_EQ(firstOf(u"ab").units, 1U);
  EXPECT_EQ(firstOf(u"\U0010FFFFb").code, 0x10FFFFU);
  EXPECT_EQ(firstOf(u"\U0010FFFFb").units, 2U);
  const char16_t halves[] = {0xDC00, 0xD800, 0xD800};
  for (std::size_t i = 0; i < std::size(halves); ++i) {
    const Character character = firstOf({halves + i, std::size(halves) - i});
    EXPECT_EQ(character.code, halves[i]);
    EXPECT_EQ(character.units, 1U);
    EXPECT_TRUE(isSurrogate(character.code));
  }
  EXPECT_FALSE(isSurrogate(0xD7FF));
  EXPECT_FALSE(isSurrogate(0xE000));
}

}  // namespace
