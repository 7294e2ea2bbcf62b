#include "tessera/diagnostics/terminalText.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::diagnostics::isShownAsItIs;
using tessera::diagnostics::quotedText;
using tessera::diagnostics::terminalText;

TEST(TerminalText, EveryControlCharacterIsEscaped) {
  EXPECT_EQ(terminalText(std::string("a\0b", 3)), "a\\u0000b");
  EXPECT_EQ(terminalText("\x1B[31mred\x07"), "\\u001b[31mred\\u0007");
  EXPECT_EQ(terminalText("\t\r\n\b\f\v"), "\\t\\r\\n\\b\\f\\u000b");
  EXPECT_EQ(terminalText("\x7F\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0"),
            "\\u007f\\u0080\\u009b\\u009f\xC2\xA0");
}

TEST(TerminalText, DirectionControlsAndLineSeparatorsAreEscaped) {
  EXPECT_EQ(terminalText("a\xE2\x80\xAE"
                         "b\xE2\x81\xA6"),
            "a\\u202eb\\u2066");
  EXPECT_EQ(terminalText("\xD8\x9C\xE2\x80\x8E\xE2\x80\xA8"), "\\u061c\\u200e\\u2028");
}

TEST(TerminalText, OtherTextIsUnchanged) {
  EXPECT_EQ(terminalText("x = \"ä\\\" 你 🏆"), "x = \"ä\\\" 你 🏆");
  EXPECT_EQ(terminalText("\u00A0\u2010\u202F"), "\u00A0\u2010\u202F");
}

TEST(TerminalText, OtherInvisibleCharactersAreEscaped) {
  EXPECT_EQ(terminalText("a\u00ADb\u200Bc\uFEFFd\uE000"), "a\\u00adb\\u200bc\\ufeffd\\ue000");
  // Beyond U+FFFF: the letter A as a tag, which terminals do not show.
  EXPECT_EQ(terminalText("a\U000E0041"), "a\\udb40\\udc41");
  EXPECT_EQ(quotedText(u"a\u200Db\U000E0041"), "\"a\\u200db\\udb40\\udc41\"");
}

TEST(TerminalText, WhatShapesACharacterStays) {
  for (const char* text : {"👨\u200D👩\u200D👧", "⚠\uFE0F", "क\u200Dष", "1\uFE0F\u20E3"}) {
    EXPECT_EQ(terminalText(text), text);
  }
  EXPECT_EQ(terminalText("👩\u200D\u200D💻⚠\uFE0F\uFE0F"), "👩\u200D\\u200d💻⚠\uFE0F\\ufe0f");
  EXPECT_EQ(quotedText(u"\\\u200D"), "\"\\\\\\u200d\"");
}

TEST(TerminalText, ItIsKnownWhatIsShownAsItIs) {
  for (const auto* text : {u"", u"a \" \\", u"é中😀", u"⚠\uFE0F"}) EXPECT_TRUE(isShownAsItIs(text));
  for (const auto* text : {u"\n", u"a\u200B", u"a\U000E0041"}) EXPECT_FALSE(isShownAsItIs(text));
}

// In quotes one character may be all that is quoted.
TEST(TerminalText, SpacesThatLookLikeABlankAreEscapedInQuotes) {
  EXPECT_EQ(quotedText(u"\u00A0a b\u2003\u3000"), "\"\\u00a0a b\\u2003\u3000\"");
  EXPECT_EQ(terminalText("\u00A0"), "\u00A0");
}

TEST(TerminalText, InvalidUtf8BecomesAReplacementCharacter) {
  EXPECT_EQ(terminalText("a\xFF"
                         "b"),
            "a\xEF\xBF\xBD"
            "b");
}

TEST(TerminalText, QuotedTextIsQuotedAndEscaped) {
  EXPECT_EQ(quotedText(u""), "\"\"");
  EXPECT_EQ(quotedText(u"a\"b\\c\n"), "\"a\\\"b\\\\c\\n\"");
  EXPECT_EQ(quotedText(std::u16string(1, 0xD800)), "\"\xEF\xBF\xBD\"");
}

}  // namespace
