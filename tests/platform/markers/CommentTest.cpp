// Markers in line comments and block comments.

#include <gtest/gtest.h>

#include "ScanCases.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::syntax {
namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using test::expectScans;

TEST(Comment, FindsTheMarkersOfEveryLanguage) {
  expectScans({
      {u"y = model.fit(x)            # <@output#o1 [0,16] {\"format\":\"short\"}>",
       "28+40 %<@output#o1 {\"format\":\"short\"}> [0,16)"},
      {u"// <@text:anchor#results>", "0+25 %<@text:anchor#results>"},
      {u"-- <@task#t1>", "0+13 %<@task#t1>"},
      {u"%<@control:slider#c2 [4,7] {\"min\":0,\"max\":10,\"step\":0.5}>",
       "0+57 %<@control:slider#c2 {\"max\":10,\"min\":0,\"step\":0.5}> [4,7)"},
      {u"; <@text>", "0+9 %<@text>"},
      {u"! <@text>", "0+9 %<@text>"},
      {u"REM <@text>", "0+11 %<@text>"},
      {u"rem <@text>", "0+11 %<@text>"},
      {u"/* <@text> */", "0+13 %<@text>"},
      {u"(* <@text> *)", "0+13 %<@text>"},
      {u"<!-- <@text:anchor#intro> -->", "0+29 %<@text:anchor#intro>"},
      {u"{- <@text> -}", "0+13 %<@text>"},
      {u"a { width: 12em; } /* <@control#width [11,15]> */", "19+30 %<@control#width> [11,15)"},
  });
}

TEST(Comment, ALeaderIsTheWholeRunOfItsCharacter) {
  expectScans({
      {u"%<@task>", "0+8 %<@task>"},
      {u"%%%<@task>", "0+10 %<@task>"},
      {u"#<@task>", "0+8 %<@task>"},
      {u"a ####<@task>", "2+11 %<@task>"},
      {u"//<@task>", "0+9 %<@task>"},
      {u"/////<@task>", "0+12 %<@task>"},
      {u"--<@task>", "0+9 %<@task>"},
      {u"---<@task>", "0+10 %<@task>"},
      {u";<@task>", "0+8 %<@task>"},
      {u";;<@task>", "0+9 %<@task>"},
      {u"!<@task>", "0+8 %<@task>"},
      {u"!!! <@task>", "0+11 %<@task>"},
      {u"x = 1;<@task>", "5+8 %<@task>"},
      {u";;;\t \t<@task>", "0+13 %<@task>"},
      // Of two kinds the nearest one is the leader.
      {u"##%%<@task>", "2+9 %<@task>"},
      {u"//#<@task>", "2+8 %<@task>"},
      {u"# %<@task>", "2+8 %<@task>"},
      {u"#/<@task>", ""},
      // Too few characters, another character, or none.
      {u"/<@task>", ""},
      {u"-<@task>", ""},
      {u"/ /<@task>", ""},
      {u"<@task>", ""},
      {u" <@task>", ""},
      {u"*<@task>", ""},
      {u"\"<@task>", ""},
      {u"# x<@task>", ""},
      {u"#\n<@task>", ""},
      {u"#\u00A0<@task>", ""},
  });
}

TEST(Comment, ARemarkIsAWholeWordAndABlank) {
  expectScans({
      {u"REM\t<@task>", "0+11 %<@task>"},
      {u"@REM  <@task>", "1+12 %<@task>"},
      {u"x & rem <@task>", "4+11 %<@task>"},
      {u"#REM <@task>", "1+11 %<@task>"},
      {u"# REM <@task>", "2+11 %<@task>"},
      {u"# <@text>REM <@task>", "0+9 %<@text> | 9+11 %<@task>"},
      {u"<@REM <@task>", "2+11 %<@task>"},
      {u"REM<@task>", ""},
      {u"REM\u00A0<@task>", ""},
      {u"Rem <@task>", ""},
      {u"rEM <@task>", ""},
      {u"REm <@task>", ""},
      {u"EM <@task>", ""},
      {u"M <@task>", ""},
      {u"xREM <@task>", ""},
      {u"_rem <@task>", ""},
      {u"-rem <@task>", ""},
      {u".rem <@task>", ""},
      {u"\u00E9rem <@task>", ""},
      {u"REMREM <@task>", ""},
      {u"REM \n<@task>", ""},
  });
}

TEST(Comment, ABlockCommentBelongsToItsMarkerWithItsWholeRuns) {
  expectScans({
      {u"/*<@task>*/", "0+11 %<@task>"},
      {u"/**<@task>***/", "0+14 %<@task>"},
      {u"/***** \t<@task>\t */", "0+19 %<@task>"},
      {u"(*<@task>*)", "0+11 %<@task>"},
      {u"(*** <@task> **)", "0+16 %<@task>"},
      {u"<!--<@task>-->", "0+14 %<@task>"},
      {u"<!---- <@task> --->", "0+19 %<@task>"},
      {u"{-<@task>-}", "0+11 %<@task>"},
      {u"x /* <@task> */ y", "2+13 %<@task>"},
      {u"//* <@task> */", "1+13 %<@task>"},
      {u"((* <@task> *))", "1+13 %<@task>"},
      {u"{{- <@task> -}}", "1+13 %<@task>"},
      {u"<<!-- <@task> -->>", "1+16 %<@task>"},
      {u"/* <@task> *//", "0+13 %<@task>"},
      {u"/* <@output#o [1,2] {\"a\":\"*/\"} > */", "0+35 %<@output#o {\"a\":\"*/\"}> [1,2)"},
  });
}

TEST(Comment, AnOpenerNeedsItsCloser) {
  expectScans({
      {u"/* <@task>", ""},         {u"/* <@task> *", ""},      {u"/* <@task> /", ""},
      {u"/* <@task> * /", ""},     {u"/* <@task> x */", ""},   {u"/* <@task>\n*/", ""},
      {u"/*\n<@task> */", ""},     {u"/* <@task> *)", ""},     {u"/* <@task> -->", ""},
      {u"(* <@task> */", ""},      {u"(*) <@task> *)", ""},    {u"<!-- <@task>", ""},
      {u"<!-- <@task> ->", ""},    {u"<!-- <@task> -- >", ""}, {u"<!-- <@task> --", ""},
      {u"<!-- <@task> --}", ""},   {u"{- <@task>", ""},        {u"{- <@task> }", ""},
      {u"{- <@task> --}", ""},     {u"{- <@task> ->", ""},     {u"* <@task> */", ""},
      {u"/*\u00A0<@task> */", ""},
  });
}

// What is not an opener may end with a leader.
TEST(Comment, ALeaderInsideABlockCommentIsALeader) {
  expectScans({
      {u"/*# <@task> */", "2+9 %<@task>"},
      {u"/*! <@task> */", "2+9 %<@task>"},
      {u"/* // <@task> */", "3+10 %<@task>"},
      {u"<!--# <@task> -->", "4+9 %<@task>"},
      {u"<! <@task>", "1+9 %<@task>"},
      {u"<!- <@task> ->", ""},
      {u"!-- <@task> -->", "1+10 %<@task>"},
      {u"<!!-- <@task> -->", "3+10 %<@task>"},
      {u"<! -- <@task> -->", "3+10 %<@task>"},
      {u"{-- <@task> --}", "1+10 %<@task>"},
      {u"{ - <@task> -}", ""},
      {u"*// <@task>", "1+10 %<@task>"},
      {u"/*/ <@task> */", ""},
  });
}

TEST(Comment, AnEarlierMarkerIsNotPartOfALeaderOrOpener) {
  expectScans({
      {u"/* <@task#a> *//* <@task#b> */", "0+15 %<@task#a> | 15+15 %<@task#b>"},
      {u"/* <@task> *///  <@text>", "0+13 %<@task> | 13+11 %<@text>"},
      {u"/* <@task> *//  <@text>", "0+13 %<@task>"},
      {u"/* <@task> */* <@text> */", "0+13 %<@task>"},
      {u"/* <@task> */ <@text>", "0+13 %<@task>"},
      {u"/* <@task> <@text> */", ""},
      {u"(* <@task> *)(* <@text> *)", "0+13 %<@task> | 13+13 %<@text>"},
      {u"<!-- <@task> --><!-- <@text> -->", "0+16 %<@task> | 16+16 %<@text>"},
      {u"{- <@task> -}{- <@text> -}", "0+13 %<@task> | 13+13 %<@text>"},
      {u"{- <@task> -}- <@text> -}", "0+13 %<@task>"},
      {u"# <@task>-- <@text> -->", "0+9 %<@task> | 9+10 %<@text>"},
  });
}

TEST(Comment, OfOverlappingCommentsTheFirstMarkerCounts) {
  expectScans({
      {u"/* <@task#\"/* <@text> */\"> */", "0+29 %<@task#\"/* <@text> */\">"},
      {u"# <@task#\"/* <@text> */\">", "0+25 %<@task#\"/* <@text> */\">"},
      // The outer one has no closer.
      {u"/* <@task#\"/* <@text> */\"> x */", "11+13 %<@text>"},
      {u"/* <@task#\"# <@text>\">", "11+9 %<@text>"},
      {u"/* <@task> # <@text> */", "11+9 %<@text>"},
      {u"<!-- <@task> /* <@text> */", "13+13 %<@text>"},
      {u"/* <@task> /* <@text> */", "11+13 %<@text>"},
      // The inner one has none.
      {u"# <@task#\"/* <@text>\"> */", "0+22 %<@task#\"/* <@text>\">"},
  });
}

TEST(AppendixLine, ContainsOnlyACommentAndItsMark) {
  for (const ustring line :
       {u"# <@appendix>", u"#<@appendix>", u"///\t <@appendix> \t", u"%%%<@appendix>",
        u"--<@appendix>", u"; <@appendix>", u"!<@appendix>", u"REM <@appendix>",
        u"rem\t<@appendix>", u" \t# <@appendix>", u"/* <@appendix> */", u"\t/**<@appendix>***/ ",
        u"(*<@appendix>*)", u"<!-- <@appendix> -->", u"{- <@appendix> -}"}) {
    EXPECT_TRUE(isAppendixLine(line)) << ustring_to_utf8(line);
  }
  for (const ustring line : {u"",
                             u"<@appendix>",
                             u"x # <@appendix>",
                             u"# <@appendix> x",
                             u"/ <@appendix>",
                             u"# <@appendix",
                             u"# <@appendix >",
                             u"# <@Appendix>",
                             u"## # <@appendix>",
                             u"# <@appendix#a>",
                             u"# <@appendix><@appendix>",
                             u"REM<@appendix>",
                             u"/* <@appendix>",
                             u"/* <@appendix> *",
                             u"/* <@appendix> */ x",
                             u"x /* <@appendix> */",
                             u"/* <@appendix> -->",
                             u"/* <@appendix> */ */",
                             u"<!-- <@appendix>",
                             u"<@appendix> -->",
                             u"# <@appendix> -->"}) {
    EXPECT_FALSE(isAppendixLine(line)) << ustring_to_utf8(line);
  }
}

}  // namespace
}  // namespace quenlith::syntax
