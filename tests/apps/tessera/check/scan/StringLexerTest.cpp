#include "tessera/check/scan/StringLexer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::check::scan::StringLexer;
using tessera::check::scan::stringSyntaxOf;

/// Marks what is inside a string: each of its units becomes "s", any other one ".".
std::string stringsOf(const char* path, const std::u16string& text) {
  StringLexer lexer(text, stringSyntaxOf(path).value());
  std::string marked;
  for (std::size_t i = 0; i < text.size(); ++i) marked += lexer.isInString(i) ? 's' : '.';
  return marked;
}

/// Expects that exactly the units of `text` above which `strings` has an "s" are inside strings;
/// the closing quote of a string counts as one of them.
void expectStrings(const char* path, const std::u16string& text, const std::string& strings) {
  EXPECT_EQ(stringsOf(path, text), strings);
}

TEST(StringLexer, OnlyLanguagesThatAreCertainAreKnown) {
  for (const char* path : {"a.py", "x/a.pyi", "a.c", "a.h", "a.cpp", "a.hxx", "A.java", "a.go"}) {
    EXPECT_TRUE(stringSyntaxOf(path)) << path;
  }
  for (const char* path : {"a.js", "a.py.txt", "py", "a.d/py", "a.", "", "a.rs", "a.PY"}) {
    EXPECT_FALSE(stringSyntaxOf(path)) << path;
  }
}

TEST(StringLexer, QuotesInCommentsBeginNoString) {
  expectStrings("a.py", u"'a' # 'b'\n'c'",  //
                ".ss........ss");
  expectStrings("a.c", u"'a' // 'b'\n\"c\"",  //
                ".ss.........ss");
  expectStrings("a.c", u"/* ' */'c'",  //
                "........ss");
}

TEST(StringLexer, AnEscapedQuoteEndsNoString) {
  expectStrings("a.c", u"\"\\\"\" x",  //
                ".sss..");
  expectStrings("a.c", u"\"\\\\\" x",  //
                ".sss..");
}

TEST(StringLexer, AnUnfinishedStringEndsWithItsLine) {
  expectStrings("a.c", u"don't\n'a'",  //
                ".......ss");
}

TEST(StringLexer, StringsOfSeveralLines) {
  expectStrings("a.py", u"\"\"\"a\n\"\"\"b",  //
                "...sssss.");
  expectStrings("a.go", u"`\\\n`b",  //
                ".sss.");
  expectStrings("a.cpp", u"R\"x(a)\" )x\"b",  //
                "....sssssss.");
  expectStrings("a.cpp", u"FOR\"a\"b",  //
                "....ss.");
}

TEST(StringLexer, AQuoteInANumberBeginsNoString) {
  expectStrings("a.cpp", u"1'000'a'",  //
                "........");
  expectStrings("a.cpp", u"u'a'",  //
                "..ss");
}

}  // namespace
