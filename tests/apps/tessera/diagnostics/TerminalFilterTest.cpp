#include "tessera/diagnostics/TerminalFilter.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using tessera::diagnostics::TerminalFilter;

/// Passes `text` in pieces of `size` bytes.
std::string passInPieces(std::string_view text, std::size_t size) {
  TerminalFilter filter;
  std::string passed;
  for (; !text.empty(); text.remove_prefix(std::min(size, text.size()))) {
    passed += filter.pass(text.substr(0, size));
  }
  return passed;
}

TEST(TerminalFilter, WhatIsInvisibleIsEscapedHoweverTheTextIsCut) {
  const std::string_view text = "{\"a\":\"\u202E\u200B é 中 👩\u200D💻 \U000E0041\u009B\"}\n";
  const std::string_view shown = "{\"a\":\"\\u202e\\u200b é 中 👩\u200D💻 \\udb40\\udc41\\u009b\"}\n";
  for (std::size_t size = 1; size <= text.size(); ++size) {
    EXPECT_EQ(passInPieces(text, size), shown) << size;
  }
}

TEST(TerminalFilter, AsciiPassesWithItsControls) {
  EXPECT_EQ(passInPieces("\x1b[1mbold\x1b[0m\ttext\n", 100), "\x1b[1mbold\x1b[0m\ttext\n");
}

TEST(TerminalFilter, JoinersAndSelectorsPassAfterWhatTheyJoin) {
  for (const std::string_view text : {"⚠\uFE0F", "👁\uFE0F\u200D🗨", "क\u200Dष"}) {
    EXPECT_EQ(passInPieces(text, 1), text);
  }
  EXPECT_EQ(passInPieces("a\u200Db", 1), "a\\u200db");
  EXPECT_EQ(passInPieces("⚠\uFE0F\uFE0F\uFE0F", 1), "⚠\uFE0F\\ufe0f\\ufe0f");
  EXPECT_EQ(passInPieces("é\u200B\u200D", 100), "é\\u200b\\u200d");
}

TEST(TerminalFilter, BytesThatAreNotUtf8BecomeAReplacementCharacter) {
  EXPECT_EQ(passInPieces("a\x9B"
                         "31mb\xC2",
                         100),
            "a\uFFFD"
            "31mb");
  EXPECT_EQ(passInPieces("\xE2\x80 \xF0\x9F\x92"
                         "a",
                         1),
            "\uFFFD \uFFFD"
            "a");
}

}  // namespace
