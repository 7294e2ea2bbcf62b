#include "tessera/check/scan/StringLexer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::check::scan::StringLexer;
using tessera::check::scan::StringSyntax;
using tessera::check::scan::stringSyntaxOf;

/// Marks what is inside a string: each of its units becomes "s", any other one ".".
std::string stringsOf(const char* path, const std::u16string& text) {
  const StringSyntax* const syntax = stringSyntaxOf(path);
  if (syntax == nullptr) return "unknown";
  StringLexer lexer(text, *syntax);
  std::string marked;
  for (std::size_t i = 0; i < text.size(); ++i) marked += lexer.stringAt(i) ? 's' : '.';
  return marked;
}

/// Expects that exactly the units of `text` above which `strings` has an "s" are inside strings;
/// the closing quote of a string counts as one of them.
void expectStrings(const char* path, const std::u16string& text, const std::string& strings) {
  EXPECT_EQ(stringsOf(path, text), strings);
}

TEST(StringLexer, OnlyLanguagesThatAreCertainAreKnown) {
  for (const char* path : {"a.py", "x/a.pyi", "a.c",   "a.h",    "a.cpp",   "a.hxx",   "A.java",
                           "a.go", "a.cs",    "a.rs",  "a.kt",   "a.scala", "a.swift", "a.dart",
                           "a.hs", "a.lua",   "a.php", "a.toml", "a.css",   "a.json"}) {
    EXPECT_NE(stringSyntaxOf(path), nullptr) << path;
  }
  for (const char* path : {"a.js", "a.ts", "a.rb", "a.pl", "a.sql", "a.sh", "a.yaml", "a.py.txt",
                           "py", "a.d/py", "a.", "", "a.PY"}) {
    EXPECT_EQ(stringSyntaxOf(path), nullptr) << path;
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

TEST(StringLexer, APrefixMakesAStringRaw) {
  expectStrings("a.rs", uR"(r"\" x)",  //
                "..ss..");
  expectStrings("a.rs", uR"x(br##"a"#b"## x)x",  //
                ".....sssssss..");
  expectStrings("a.rs", uR"(for"\" x")",  //
                "....sssss");
  expectStrings("a.dart", uR"(r'\' '\' ')",  //
                "..ss..ssss");
  expectStrings("a.dart", uR"(for'\'x' y)",  //
                "....ssss..");
  expectStrings("a.cs", uR"(@"\" "a")",  //
                "..ss..ss");
  expectStrings("a.cs", uR"(@"a""b"c)",  //
                "..sssss.");
  expectStrings("a.cs", uR"(@"""a""" b)",  //
                "..ssssss..");
  expectStrings("a.swift", uR"x(#""a"\"# b)x",  //
                "..ssssss..");
  expectStrings("a.swift", u"##\"\"\"\n\"\"\"#\n\"\"\"## b",  //
                ".....sssssssssss..");
}

TEST(StringLexer, ADelimiterInCppHasAtMost16Units) {
  expectStrings("a.cpp", uR"x(R"0123456789abcdef(")0123456789abcdef" x)x",  //
                "...................sssssssssssssssssss..");
  expectStrings("a.cpp", uR"x(R"0123456789abcdefg(")0123456789abcdefg x)x",  //
                "..sssssssssssssssssss....................");
}

TEST(StringLexer, TheOpenerDecidesWhatClosesAString) {
  expectStrings("a.cs", uR"("" + "a")",  //
                ".s....ss");
  expectStrings("a.cs", uR"(""""a"""b"""" c)",  //
                "....sssssssss..");
  expectStrings("a.lua", u"[[a\n\"]] b",  //
                "..sssss..");
  expectStrings("a.lua", u"[=[a]]b]=] c",  //
                "...sssssss..");
  expectStrings("a.lua", u"a[b[1]] 'c'",  //
                ".........ss");
  expectStrings("a.kt", uR"("""\"""" a)",  //
                "...sssss..");
  expectStrings("a.toml", uR"('''\''' '\' "\"")",  //
                "...ssss..ss..sss");
}

TEST(StringLexer, CodeInStringsMayHaveStrings) {
  expectStrings("a.kt", uR"x("${f("}")}" a)x",  //
                ".ssssssssss..");
  expectStrings("a.kt", uR"("\${" a)",  //
                ".ssss..");
  expectStrings("a.swift", uR"x("\(f(")"))" a)x",  //
                ".ssssssssss..");
  expectStrings("a.cs", uR"($"{{" + $"{a["}"]}" b)",  //
                "..sss.....sssssssss..");
  expectStrings("a.scala", uR"(s"${"}"}" "${" a)",  //
                "..sssssss..sss..");
  expectStrings("a.php", uR"(<?php "{$a["}"]}" b)",  //
                ".......ssssssssss..");
  expectStrings("a.kt", uR"("${'"'}" a)",  //
                ".sssssss..");
  expectStrings("a.kt", u"\"${a\n}\" \"b",  //
                ".......ss.");
  // Nine levels of strings in code in strings are certain, ten are not.
  const auto nested = [](int levels) {
    std::u16string text;
    for (int i = 0; i < levels; ++i) text += u"\"${";
    for (int i = 0; i < levels; ++i) text += u"}\"";
    return text;
  };
  EXPECT_NE(stringsOf("a.kt", nested(9)).find('s'), std::string::npos);
  EXPECT_EQ(stringsOf("a.kt", nested(10)).find('s'), std::string::npos);
}

TEST(StringLexer, ASingleQuoteMayBeginACharacterOrNothing) {
  expectStrings("a.rs", uR"(&'a '"' '\'' '\\' "b")",  //
                "...................ss");
  expectStrings("a.rs", u"<'a,'b>(\"c\", '\U0001F3C6', \"d\")",  //
                ".........ss.........ss.");
  expectStrings("a.rs", u"['\U0001F3C6','\"', \"a\"]",  //
                "............ss.");
  expectStrings("a.hs", uR"(f' '"' g'' '\'' "a")",  //
                ".................ss");
  expectStrings("a.cs", u"#region don't\n\"a\" '\"' \"b\"",  //
                "...............ss......ss");
  expectStrings("a.cs", u"#region x'\n'\"' \"b\"",  //
                "................ss");
}

TEST(StringLexer, BlockCommentsNestWhereTheLanguageSaysSo) {
  for (const char* path : {"a.rs", "a.kt", "a.scala", "a.swift", "a.dart"}) {
    expectStrings(path, uR"(/* /* */ " */ "a")",  //
                  "...............ss");
  }
  for (const char* path : {"a.c", "a.java", "a.go", "a.cs", "a.css"}) {
    expectStrings(path, uR"(/* /* */ "a")",  //
                  "..........ss");
  }
  expectStrings("a.hs", uR"({- {- -} " -} "a")",  //
                "...............ss");
  expectStrings("a.lua", u"--[[ \" ]] \"a\"\n-- \"\n'b'",  //
                "...........ss.......ss");
  expectStrings("a.lua", uR"(--[=[ ]] " ]=] 'a')",  //
                "................ss");
}

TEST(StringLexer, DashesBesideASymbolAreAnOperatorInHaskell) {
  expectStrings("a.hs", uR"(a --> "b")",  //
                ".......ss");
  expectStrings("a.hs", uR"(a |-- "b")",  //
                ".......ss");
  expectStrings("a.hs", uR"(a --- "b")",  //
                ".........");
}

TEST(StringLexer, AGapInAStringOfHaskellIsSkipped) {
  expectStrings("a.hs", u"\"a\\\n  \\\" b",  //
                ".sssssss..");
}

TEST(StringLexer, APatternMakesTheRestOfTheLineUncertain) {
  expectStrings("a.swift", u"a / \"b\" /\"/\n\"c\"",  //
                ".............ss");
  expectStrings("a.swift", u"a / b // \"\n\"c\"",  //
                "............ss");
  expectStrings("a.swift", u"a / \"\"\"\n\"c\"",  //
                "...........");
}

TEST(StringLexer, AFileThatMixesLanguagesIsUncertain) {
  expectStrings("a.php", u"<?php 'a\nb' # 'c",  //
                ".......ssss.....");
  expectStrings("a.php", u"don't <?php 'a'",  //
                "...............");
  expectStrings("a.php", u"<?php 'a' ?> don't",  //
                "..................");
  expectStrings("a.php", u"<?php <<<X 'a'",  //
                "..............");
}

TEST(StringLexer, NothingIsCertainAfterAStringOfSeveralLinesWithoutItsEnd) {
  expectStrings("a.py", u"\"\"\"a\n'b'",  //
                "........");
  expectStrings("a.rs", u"\"a\n'b'",  //
                "......");
  expectStrings("a.lua", u"[[a\n'b'",  //
                ".......");
}

TEST(StringLexer, StringsOfDataLanguages) {
  expectStrings("a.json", uR"({"a\"": 1, 'b'})",  //
                "..ssss.........");
  expectStrings("a.css", u"url(a//b) \"c\\\nd\" e",  //
                "...........sssss..");
}

/// Returns which of the units "x" of `text` are in strings that may be the text between strings:
/// "r" for such a string, "s" for another one, "." for no string.
std::string reversedOf(const char* path, const std::u16string& text) {
  StringLexer lexer(text, *stringSyntaxOf(path));
  std::string marked;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'x') continue;
    const auto found = lexer.stringAt(i);
    marked += !found ? '.' : found->mayBeReversed ? 'r' : 's';
  }
  return marked;
}

TEST(StringLexer, StringsMayBeReversedFromTheFirstOneOfSeveralLines) {
  EXPECT_EQ(reversedOf("a.rs", u"\"x\" x \"\nx\" x \"x\""), "s.r.r");
  EXPECT_EQ(reversedOf("a.php", u"<?php \"x\" '\n' 'x'"), "sr");
  EXPECT_EQ(reversedOf("a.go", u"`\n` \"x\" `x`"), "sr");
  // No quote that is missing or too much makes strings of other text here.
  EXPECT_EQ(reversedOf("a.py", u"\"\"\"\nx\"\"\" \"x\""), "ss");
  EXPECT_EQ(reversedOf("a.rs", u"r#\"\nx\"# \"x\""), "ss");
  EXPECT_EQ(reversedOf("a.c", u"\"\\\nx\" \"x\""), "ss");
}

}  // namespace
