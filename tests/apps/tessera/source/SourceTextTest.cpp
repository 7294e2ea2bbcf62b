#include "tessera/source/SourceText.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/tessera/support/TemporaryFolder.hpp"

namespace {

using tessera::diagnostics::ProblemError;
using tessera::source::LineCursor;
using tessera::source::SourceText;
using tessera::source::splitSource;

std::vector<std::u16string> linesOf(const tessera::source::JoinedLines& lines) {
  std::vector<std::u16string> result;
  LineCursor cursor(lines.text, lines.any);
  while (const auto line = cursor.next()) result.emplace_back(*line);
  return result;
}

using Lines = std::vector<std::u16string>;

SourceText readSource(const std::string& name) {
  tessera::files::FileReader file(name);
  return tessera::source::readSource(file);
}

TEST(SourceText, LinesEndInLfOrCrlf) {
  const TemporaryFolder folder;
  struct Case {
    std::string bytes;
    Lines lines;
  };
  const Case cases[] = {
      // An empty file has no lines; a line ending at the end of the file begins no further line.
      {"", {}},
      {"\n", {u""}},
      {"a", {u"a"}},
      {"a\n", {u"a"}},
      {"a\n\n", {u"a", u""}},
      {"\n\n", {u"", u""}},
      {"a\nb", {u"a", u"b"}},
      // CRLF, alone and mixed.
      {"a\r\nb\r\n", {u"a", u"b"}},
      {"a\r\nb\nc", {u"a", u"b", u"c"}},
      {"\r\n", {u""}},
      // A CR without an LF after it is text; of two CRs before an LF only the last is dropped.
      {"a\rb\r", {u"a\rb\r"}},
      {"a\r\r\nb", {u"a\r", u"b"}},
      {"\r\r\n\n", {u"\r", u""}},
      // A byte order mark is dropped at the start only.
      {"\xEF\xBB\xBF", {}},
      {"\xEF\xBB\xBF"
       "a\n\xEF\xBB\xBF"
       "b",
       {u"a", u"\uFEFFb"}},
      {"\xEF\xBB\xBF\xEF\xBB\xBF", {u"\uFEFF"}},
      // Other characters that some programs treat as line endings, and NUL, are text.
      {std::string("a\v\f\0b\xC2\x85\xE2\x80\xA8", 10),
       {std::u16string(u"a\v\f\0b\u0085\u2028", 7)}},
      {"\xF0\x9F\x8F\x86", {u"🏆"}},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(linesOf(readSource(folder.write("f", test.bytes)).code), test.lines)
        << testing::PrintToString(test.bytes);
  }
}

TEST(SourceText, CharactersAcrossChunkBoundariesStayWhole) {
  const TemporaryFolder folder;
  // Each shift moves characters of every length, and a CRLF, across the end of a chunk.
  for (std::size_t shift = 0; shift < 12; ++shift) {
    std::string bytes(65536 - 6 + shift - 6, 'x');
    std::u16string text(bytes.begin(), bytes.end());
    bytes += "\xC3\xA4\xE4\xBD\xA0\xF0\x9F\x8F\x86\r\nz";
    text += u"ä你🏆";
    EXPECT_EQ(linesOf(readSource(folder.write("f", bytes)).code), (Lines{text, u"z"})) << shift;
  }
}

TEST(SourceText, ABadByteIsAnErrorWithItsPlace) {
  const TemporaryFolder folder;
  struct Case {
    std::string bytes;
    std::string place;
    std::string byte;
  };
  const Case cases[] = {
      {"\xFF", "1:1", "0xFF"},
      {"ab\ncd\xC3(", "2:3", "0xC3"},
      // Columns count characters, not bytes and not 16-bit units.
      {"\xC3\xA4\xF0\x9F\x8F\x86\x80", "1:3", "0x80"},
      // A character cut off by the end of the file, and one cut off by a line ending.
      {"a\xE4\xBD", "1:2", "0xE4"},
      {"\xE4\xBD\nb", "1:1", "0xE4"},
      // Encoded surrogates, overlong forms, and code points above U+10FFFF.
      {"\r\n\r\n\xED\xA0\x80", "3:1", "0xED"},
      {"\xC0\x80", "1:1", "0xC0"},
      {"\xF4\x90\x80\x80", "1:1", "0xF4"},
      {"\xEF\xBB\xBFx\xFE", "1:2", "0xFE"},
      {std::string(200000, 'x') + "\n\n" + std::string(70000, 'y') + "\xFF", "3:70001", "0xFF"},
  };
  for (const Case& test : cases) {
    const std::string name = folder.write("f", test.bytes);
    try {
      readSource(name);
      ADD_FAILURE() << test.place;
    } catch (const ProblemError& error) {
      EXPECT_EQ(error.what(), name + ":" + test.place + ": error: byte " + test.byte +
                                  " is not valid UTF-8; convert the file to UTF-8");
    }
  }
}

TEST(SourceText, AFileThatCannotBeReadIsAnError) {
  const TemporaryFolder folder;
  struct Case {
    std::string name;
    std::string message;
  };
  const Case cases[] = {
      {folder.path("none"), "cannot be opened: No such file or directory; check the name"},
      {folder.path(""), "cannot be read: Is a directory; name the files in it"},
      {folder.write("f", "") + "/g", "cannot be opened: Not a directory; check the name"},
      {folder.path(std::string(300, 'n')),
       "cannot be opened: File name too long; name a file that can be read"},
  };
  for (const Case& test : cases) {
    try {
      readSource(test.name);
      ADD_FAILURE() << test.name;
    } catch (const ProblemError& error) {
      EXPECT_EQ(error.what(), test.name + ": error: " + test.message);
    }
  }
}

TEST(SourceText, TheAppendixBeginsAtItsLine) {
  const SourceText source = splitSource(u"a\n# b\n# <@appendix>\n# <@task#t>\n\nx\n");
  EXPECT_EQ(source.code.text, u"a\n# b");
  EXPECT_EQ(source.appendixLine, 3u);
  EXPECT_EQ(linesOf(source.appendix), (Lines{u"# <@task#t>", u"", u"x"}));
}

TEST(SourceText, TheFirstAppendixLineCounts) {
  const SourceText source = splitSource(u"%% <@appendix> \n% <@appendix>");
  EXPECT_TRUE(linesOf(source.code).empty());
  EXPECT_EQ(source.appendixLine, 1u);
  EXPECT_EQ(linesOf(source.appendix), Lines{u"% <@appendix>"});
}

TEST(SourceText, AnAppendixMayBeEmpty) {
  for (const auto* text : {u"a\n#<@appendix>", u"a\n#<@appendix>\n"}) {
    const SourceText source = splitSource(text);
    EXPECT_EQ(linesOf(source.code), Lines{u"a"});
    EXPECT_EQ(source.appendixLine, 2u);
    EXPECT_FALSE(source.appendix.any);
  }
}

TEST(SourceText, AnAppendixStartsInAnyCommentWithBlanksAround) {
  for (const auto* text :
       {u"a\n # <@appendix>\n# b", u"a\n\t/* <@appendix> */ \n# b", u"a\n<!--<@appendix>-->\n# b",
        u"a\nREM <@appendix>\n# b", u"a\n; <@appendix>\n# b", u"a\n(*<@appendix>*)\n# b",
        u"a\n{- <@appendix> -}\n# b"}) {
    const SourceText source = splitSource(text);
    EXPECT_EQ(source.code.text, u"a");
    EXPECT_EQ(source.appendixLine, 2u);
    EXPECT_EQ(source.appendix.text, u"# b");
  }
}

TEST(SourceText, OtherLinesStartNoAppendix) {
  for (const auto* text : {u"a # <@appendix>", u"# <@appendix> b", u"<@appendix>", u"/ <@appendix>",
                           u"/* <@appendix>", u"# <@appendix#i>", u"# <@appendix> <@appendix>"}) {
    const SourceText source = splitSource(text);
    EXPECT_EQ(source.code.text, text);
    EXPECT_EQ(source.appendixLine, 0u);
    EXPECT_FALSE(source.appendix.any);
  }
}

}  // namespace
