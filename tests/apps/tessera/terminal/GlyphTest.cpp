#include "tessera/terminal/Glyph.hpp"

#include <gtest/gtest.h>

#include <numeric>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"

namespace {

using tessera::terminal::Glyph;
using tessera::terminal::layOut;

/// What is shown of a text: each glyph in brackets, with its columns unless it takes one.
std::string shown(std::u16string_view text) {
  std::string result;
  for (const Glyph& glyph : layOut(text)) {
    result += '[' + glyph.text + ']';
    if (glyph.columns != 1) result += std::to_string(glyph.columns);
  }
  return result;
}

struct Case {
  std::string name;
  std::u16string text;
  std::string expected;
};

std::ostream& operator<<(std::ostream& stream, const Case& shownCase) {
  return stream << shownCase.name;
}

std::string nameOfCase(const testing::TestParamInfo<Case>& param) {
  return param.param.name;
}

class GlyphCases : public testing::TestWithParam<Case> {};

TEST_P(GlyphCases, AreShownInTheirColumns) {
  EXPECT_EQ(shown(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Width, GlyphCases,
    testing::Values(Case{"ascii", u"a~ ", "[a][~][ ]"}, Case{"latin", u"é", "[é]"},
                    Case{"combining", u"e\u0301x", "[e\u0301][x]"},
                    Case{"severalCombining", u"e\u0301\u0323\u0308x", "[e\u0301\u0323\u0308][x]"},
                    Case{"combiningWithoutABase", u"\u0301x", "[\u0301][x]"},
                    Case{"wide", u"中Ａ", "[中]2[Ａ]2"},
                    Case{"ideographicSpace", u"\u3000", "[\u3000]2"},
                    Case{"syllable", u"\uAC00", "[\uAC00]2"},
                    Case{"syllableOfLetters", u"\u1112\u1161\u11AB", "[\u1112\u1161\u11AB]2"},
                    Case{"vowelSign", u"\u0915\u093E", "[\u0915\u093E]"},
                    Case{"emoji", u"😀", "[😀]2"}, Case{"textSymbol", u"⚠", "[⚠]"},
                    Case{"emojiSelector", u"⚠\uFE0Fx", "[⚠\uFE0F]2[x]"},
                    Case{"textSelector", u"⌚\uFE0Ex", "[⌚\uFE0E]2[x]"},
                    Case{"keycap", u"1\uFE0F\u20E3x", "[1\uFE0F\u20E3]2[x]"},
                    Case{"skinTone", u"👍🏽x", "[👍🏽]2[x]"},
                    Case{"joinedEmoji", u"👩\u200D💻x", "[👩\u200D💻]2[x]"},
                    Case{"family", u"👨\u200D👩\u200D👧x", "[👨\u200D👩\u200D👧]2[x]"},
                    Case{"flag", u"🇫🇷🇩🇪x", "[🇫🇷]2[🇩🇪]2[x]"}),
    nameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Tabs, GlyphCases,
    testing::Values(Case{"first", u"\tx", "[        ]8[x]"},
                    Case{"afterText", u"abc\tx", "[a][b][c][     ]5[x]"},
                    Case{"atAStop", u"abcdefgh\tx", "[a][b][c][d][e][f][g][h][        ]8[x]"},
                    Case{"afterWideText", u"中\tx", "[中]2[      ]6[x]"},
                    Case{"afterCombining", u"e\u0301\tx", "[e\u0301][       ]7[x]"},
                    Case{"afterAnEmojiSelector", u"⚠\uFE0F\tx", "[⚠\uFE0F]2[      ]6[x]"},
                    Case{"beforeCombining", u"\t\u0301", "[        ]8[\u0301]"}),
    nameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Hidden, GlyphCases,
    testing::Values(
        Case{"escape", u"\u001B[1m", "[<U+001B>]8[[][1][m]"},
        Case{"deleteCharacter", u"\u007F", "[<U+007F>]8"},
        Case{"c1Control", u"\u009B", "[<U+009B>]8"}, Case{"carriageReturn", u"\r", "[<U+000D>]8"},
        Case{"zeroWidthSpace", u"a\u200Bb", "[a][<U+200B>]8[b]"},
        Case{"rightToLeftOverride", u"a\u202Eb", "[a][<U+202E>]8[b]"},
        Case{"isolate", u"\u2066", "[<U+2066>]8"},
        Case{"arabicLetterMark", u"\u061C", "[<U+061C>]8"},
        Case{"softHyphen", u"a\u00ADb", "[a][<U+00AD>]8[b]"},
        Case{"byteOrderMark", u"\uFEFF", "[<U+FEFF>]8"},
        Case{"noBreakSpace", u"\u00A0", "[<U+00A0>]8"}, Case{"emSpace", u"\u2003", "[<U+2003>]8"},
        Case{"hangulFiller", u"\u3164", "[<U+3164>]8"},
        Case{"blankBraille", u"\u2800", "[<U+2800>]8"},
        Case{"lineSeparator", u"\u2028", "[<U+2028>]8"},
        Case{"privateUse", u"\uE000", "[<U+E000>]8"},
        Case{"tagAlone", u"\U000E0061", "[<U+E0061>]9"},
        Case{"tagsOfAFlag", u"🏴\U000E0061\U000E007Fx", "[🏴]2[<U+E0061>]9[<U+E007F>]9[x]"},
        Case{"secondJoiner", u"👩\u200D\u200D💻", "[👩\u200D]2[<U+200D>]8[💻]2"},
        Case{"joinerBetweenLetters", u"a\u200Db", "[a][<U+200D>]8[b]"},
        Case{"joinerAlone", u"\u200D", "[<U+200D>]8"},
        Case{"secondSelector", u"⚠\uFE0F\uFE0F", "[⚠\uFE0F]2[<U+FE0F>]8"},
        Case{"selectorAfterALetter", u"a\uFE0Fb", "[a][<U+FE0F>]8[b]"},
        Case{"graphemeJoiner", u"a\u034Fb", "[a][<U+034F>]8[b]"},
        Case{"combiningAfterHidden", u"\u200B\u0301", "[<U+200B>]8[\u0301]"},
        Case{"firstHalf", std::u16string(u"a") + char16_t{0xD800} + u"b", "[a][<U+D800>]8[b]"},
        Case{"secondHalf", std::u16string(1, char16_t{0xDC00}) + u"b", "[<U+DC00>]8[b]"}),
    nameOfCase);

TEST(Glyph, TellsHiddenCharactersFromTextThatLooksLikeThem) {
  const auto hidden = layOut(u"\u200B");
  const auto text = layOut(u"<U+200B>");
  EXPECT_EQ(hidden.front().text, "<U+200B>");
  EXPECT_EQ(text.front().text, "<U+003C>");
  EXPECT_EQ(text.front().end, 1U);
  EXPECT_TRUE(text.front().isNumber);
  // Not a number: a digit, the end or the beginning is missing, or the digits are lower-case.
  for (const auto* other : {u"<U+>", u"<U+200B", u"<U 200B>", u"<U+200b>", u"<", u"U+200B>"}) {
    EXPECT_FALSE(layOut(other).front().isNumber);
  }
}

TEST(Glyph, TextThatIsShownAsItIsIsTheTextOfItsGlyphs) {
  using tessera::terminal::isShownAsItIs;
  for (const auto* text : {u"", u"a <b> ~", u"é中😀e\u0301", u"<U+>", u"\u3000", u"🇫🇷"}) {
    EXPECT_TRUE(isShownAsItIs(text));
  }
  for (const auto* text : {u"\t", u"a\u001B", u"\u200B", u"<U+200B>", u"\u00A0", u"a\u202E"}) {
    EXPECT_FALSE(isShownAsItIs(text));
  }
  EXPECT_FALSE(isShownAsItIs(std::u16string(1, char16_t{0xD800})));
  constexpr char16_t kUnits[] = {u'a',   u'<',   u'U',   u'+',   u'0',   u'>',  0x301,  0x200D,
                                 0xFE0F, 0xD83D, 0xDE00, 0x4E2D, 0x1161, 0x93E, 0xD83C, 0xDDEB};
  std::mt19937 random(2);
  int count = 0;
  for (int run = 0; run < 5000; ++run) {
    std::u16string text;
    for (std::size_t i = random() % 8; i > 0; --i) text += kUnits[random() % std::size(kUnits)];
    if (!isShownAsItIs(text)) continue;
    ++count;
    std::string joined;
    for (const Glyph& glyph : layOut(text)) joined += glyph.text;
    ASSERT_EQ(joined, fl::i18n::ustring_to_utf8(text));
  }
  EXPECT_GT(count, 500);
}

TEST(Glyph, GlyphsCoverTheTextInOrder) {
  constexpr char16_t kUnits[] = {u'a',   u'\t',  0x301,  0x200D, 0xFE0F, 0xD83D, 0xDE00,
                                 0xD83C, 0xDDEB, 0x4E2D, 0x1112, 0x1161, 0x7,    0x93E};
  std::mt19937 random(1);
  for (int run = 0; run < 2000; ++run) {
    std::u16string text;
    for (std::size_t i = random() % 12; i > 0; --i) text += kUnits[random() % std::size(kUnits)];
    std::size_t at = 0;
    for (const Glyph& glyph : layOut(text)) {
      ASSERT_EQ(glyph.begin, at);
      ASSERT_GT(glyph.end, glyph.begin);
      ASSERT_GE(glyph.columns, 1U);
      ASSERT_EQ(glyph.text.find_first_of("\a\t"), std::string::npos);
      at = glyph.end;
    }
    ASSERT_EQ(at, text.size());
  }
}

}  // namespace
