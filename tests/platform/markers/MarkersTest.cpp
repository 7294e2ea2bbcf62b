#include "quenlith/syntax/markers.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "ScanCases.hpp"
#include "quenlith/syntax/KnownElement.hpp"

namespace quenlith::syntax {
namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using test::expectScans;
using test::scan;
using test::scanAny;

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

TEST(Scan, ElementsAreExactAndCaseSensitive) {
  expectScans({
      {u"# <@control> # <@output> # <@task> # <@text>",
       "0+12 %<@control> | 13+11 %<@output> | 25+9 %<@task> | 35+9 %<@text>"},
      {u"# <@Task>", ""},
      {u"# <@tasks>", ""},
      {u"# <@task.>", ""},
      {u"# <@tas>", ""},
      {u"# <@>", ""},
      {u"# <@ task>", ""},
      {u"# < @task>", ""},
      {u"# <@@task>", ""},
      {u"# <@#x>", ""},
      {u"# <@:anchor>", ""},
      {u"# <@appendix>", ""},
      {u"# <-@task>", ""},
  });
}

TEST(Scan, NamesFollowTheirSignsAtOnce) {
  expectScans({
      {u"# <@text:anchor>", "0+16 %<@text:anchor>"},
      {u"# <@text:A-z_0.9\u0080\uFFFF>", "0+19 %<@text:A-z_0.9\xC2\x80\xEF\xBF\xBF>"},
      {u"# <@text:>", ""},
      {u"# <@text :a>", ""},
      {u"# <@text: a>", ""},
      {u"# <@text:a:b>", ""},
      {u"# <@text:\"a\">", ""},
      {u"# <@text:a+b>", ""},
      {u"# <@task#>", ""},
      {u"# <@task #a>", ""},
      {u"# <@task# a>", ""},
      {u"# <@task#a#b>", ""},
      {u"# <@task#a:b>", ""},
      {u"# <@task#a@b>", ""},
      {u"# <@task#a/b>", ""},
      {u"# <@task#a\u007F>", ""},
      {u"# <@task#a[>", ""},
      {u"# <@task#a`>", ""},
      {u"# <@task#a{>", ""},
      {u"# <@task#09az_-.AZ>", "0+19 %<@task#09az_-.AZ>"},
  });
}

TEST(Scan, AQuotedIdIsAJsonString) {
  expectScans({
      {u"# <@task#\"my task\">", "0+19 %<@task#\"my task\">"},
      {u"# <@task#\"\">", "0+12 %<@task>"},
      {u"# <@task#\"a\\\"b>\">", "0+17 %<@task#\"a\\\"b>\">"},
      {u"# <@task#\"\\u0041\\n\">", "0+20 %<@task#\"A\\n\">"},
      {u"# <@task#\"a\nb\">", ""},
      {u"# <@task#\"a\tb\">", ""},
      {u"# <@task#\"a\\x\">", ""},
      {u"# <@task#\"a>", ""},
      {u"# <@task#\"a\"b>", ""},
      {u"# <@task#a\"b\">", ""},
  });
}

TEST(Scan, ARangeIsTwoPlainNumbers) {
  expectScans({
      {u"# <@output [0,16]>", "0+18 %<@output> [0,16)"},
      {u"# <@output\t \t[ \t0 \t,\t 16\t ]\t >", "0+30 %<@output> [0,16)"},
      {u"# <@output [007,3]>", "0+19 %<@output> [7,3)"},
      {u"# <@output#o [5,5]>", "0+19 %<@output#o> [5,5)"},
      {u"# <@output[0,1]>", ""},
      {u"# <@output#o[0,1]>", ""},
      {u"# <@output [+0,1]>", ""},
      {u"# <@output [0,-1]>", ""},
      {u"# <@output [0,1.0]>", ""},
      {u"# <@output [0,1e0]>", ""},
      {u"# <@output [0]>", ""},
      {u"# <@output [0,]>", ""},
      {u"# <@output [,1]>", ""},
      {u"# <@output [0,1,2]>", ""},
      {u"# <@output [0 1]>", ""},
      {u"# <@output [0,1>", ""},
      {u"# <@output [0,1)>", ""},
      {u"# <@output [0,1] [0,1]>", ""},
      {u"# <@output [\u0661,2]>", ""},
      {u"# <@output [0,\n1]>", ""},
  });
}

TEST(Scan, ARangeNumberSaturates) {
  const auto range = [](const ustring& text) {
    return get_markers_from_snippet(text, false).at(0).range;
  };
  EXPECT_EQ(range(u"# <@output [18446744073709551614,18446744073709551615]>"),
            std::pair(kMost - 1, kMost));
  EXPECT_EQ(range(u"# <@output [18446744073709551616,99999999999999999999999]>"),
            std::pair(kMost, kMost));
  EXPECT_EQ(range(u"# <@output [28446744073709551616,0]>"), std::pair(kMost, std::uint64_t{0}));
  EXPECT_EQ(range(u"# <@output [184467440737095516150,0]>"), std::pair(kMost, std::uint64_t{0}));
  // Digits after the one that no longer fits.
  EXPECT_EQ(range(u"# <@output [184467440737095516160,1844674407370955161601]>"),
            std::pair(kMost, kMost));
}

TEST(Scan, DataIsOneJsonObject) {
  expectScans({
      {u"# <@task {}>", "0+12 %<@task>"},
      {u"# <@task#t {\"a\":[1,{\"b\":\"}>\"}]}>", "0+32 %<@task#t {\"a\":[1,{\"b\":\"}>\"}]}>"},
      {u"# <@task\t{\t\"a\" : 1 }\t>", "0+22 %<@task {\"a\":1}>"},
      {u"# <@task [1,2]\t{\"a\":1}>", "0+23 %<@task {\"a\":1}> [1,2)"},
      {u"# <@task{\"a\":1}>", ""},
      {u"# <@task [1,2]{\"a\":1}>", ""},
      {u"# <@task {\"a\":1} [1,2]>", ""},
      {u"# <@task {\"a\":1} {\"a\":1}>", ""},
      {u"# <@task [{\"a\":1}]>", ""},
      {u"# <@task \"a\">", ""},
      {u"# <@task {a:1}>", ""},
      {u"# <@task {\"a\":1,}>", ""},
      {u"# <@task {\"a\":01}>", ""},
      {u"# <@task {\"a\":'x'}>", ""},
      {u"# <@task {\"a\":NaN}>", ""},
      {u"# <@task {\"a\":1e309}>", ""},
      {u"# <@task {\"a\":1>", ""},
      {u"# <@task {\"a\":\"b\nc\"}>", ""},
      {u"# <@task {\"a\":\n1}>", ""},
      {u"# <@task {\"a\":1\r}>", ""},
      {u"# <@task {\"a\":\u00A01}>", ""},
  });
}

TEST(Scan, DataNestsSixtyFourLevelsDeep) {
  const auto nested = [](std::size_t depth) {
    return u"# <@task {\"a\":" + ustring(depth - 1, u'[') + ustring(depth - 1, u']') + u"}>";
  };
  EXPECT_EQ(get_markers_from_snippet(nested(64), false).size(), 1U);
  EXPECT_EQ(get_markers_from_snippet(nested(65), false).size(), 0U);
}

TEST(Scan, AMarkerDoesNotSpanLines) {
  expectScans({
      {u"# <@task\n>", ""},
      {u"# <@task\r>", ""},
      {u"# \n<@task>", ""},
      {u"# <@task\v>", ""},
      {u"x\n# <@task>\ny", "2+9 %<@task>"},
  });
}

TEST(Scan, ALineMayContainSeveralMarkers) {
  expectScans({
      {u"#<@task>#<@task>;;<@text>//<@output>!",
       "0+8 %<@task> | 8+8 %<@task> | 16+9 %<@text> | 25+11 %<@output>"},
      {u"# <@task> <@task> x # <@text>", "0+9 %<@task> | 20+9 %<@text>"},
  });
}

TEST(Scan, OfOverlappingMarkersTheFirstOneCounts) {
  expectScans({
      {u"# <@task {\"a\":\"# <@text>\"}>", "0+27 %<@task {\"a\":\"# <@text>\"}>"},
      {u"# <@task#\"# <@text>\">", "0+21 %<@task#\"# <@text>\">"},
  });
}

TEST(Scan, AFailedMarkerIsRescannedAfterItsOpening) {
  expectScans({
      {u"# <@task {\"a\":\"# <@text>\"", "15+9 %<@text>"},
      {u"# <@task# <@text>", "8+9 %<@text>"},
      {u"# <@<@task>", ""},
      {u"# <@#<@task>", "4+8 %<@task>"},
      {u"# <@task {\"a\":\"#<@task {\"a\":\"#<@task>", "29+8 %<@task>"},
      {u"# <@widget {\"a\":\"# <@text>\"}>", "17+9 %<@text>"},
  });
}

TEST(Scan, StringLiteralsOfALanguageAreNotLexed) {
  expectScans({{u"print(\"# <@task>\")", "7+9 %<@task>"}});
}

TEST(Scan, ATruncatedMarkerIsNotFound) {
  const ustring whole = u"## <@task:type#\"i\\u0041\" [1,2] {\"a\":[1.5e3,true]}>";
  EXPECT_EQ(get_markers_from_snippet(whole, false).size(), 1U);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(scan(whole.substr(0, length)), "") << length;
  }
}

TEST(Scan, UnpairedSurrogatesAreAllowed) {
  const ustring lone{0xD800};
  EXPECT_EQ(scan(lone + u"# <@task#" + lone + u">" + lone), "1+11 %<@task#\xEF\xBF\xBD>");
  EXPECT_EQ(scan(lone + u"<@" + lone), "");
}

TEST(ScanOfAnyElement, ReportsUnknownElementsToo) {
  EXPECT_EQ(scanAny(u"# <@widget:w#1 [1,2] {\"a\":1}> # <@task> # <@Task>"),
            "0+29 %<@widget:w#1 {\"a\":1}> [1,2) | 30+9 %<@task> | 40+9 %<@Task>");
  EXPECT_EQ(scan(u"# <@widget:w#1> # <@task> # <@Task>"), "16+9 %<@task>");
}

TEST(ScanOfAnyElement, TheAppendixLineIsNotAMarker) {
  EXPECT_EQ(scanAny(u"# <@appendix>"), "");
  EXPECT_EQ(scanAny(u"# <@appendix#a>"), "");
  EXPECT_EQ(scanAny(u"# <@appendixes>"), "0+15 %<@appendixes>");
}

TEST(ScanOfAnyElement, TheFirstOneCountsAmongAll) {
  EXPECT_EQ(scanAny(u"# <@widget {\"a\":\"# <@text>\"}>"), "0+29 %<@widget {\"a\":\"# <@text>\"}>");
}

TEST(MarkerInfo, IsOfTheEmptyMarkerAtTheStartUntilItIsSet) {
  const quenlith::build::markup::core::MarkerInfo info;
  EXPECT_EQ(info.marker, Marker());
  EXPECT_EQ(info.position, 0U);
  EXPECT_EQ(info.length, 0U);
  EXPECT_FALSE(info.range);
}

TEST(Scan, ASnippetWithoutAnyMarkerGivesAnEmptyList) {
  for (const ustring text : {u"", u"x = 1", u"a <@ b", u"a < @task>"}) {
    const auto markers = get_markers_from_snippet(text, false);
    EXPECT_TRUE(markers.empty());
    for (const ustring element : {u"control", u"output", u"task", u"text", u""}) {
      EXPECT_FALSE(has_feature(text, element));
      EXPECT_FALSE(has_feature(markers, element));
      EXPECT_FALSE(get_marker(markers, element, u"").has_value());
    }
  }
}

TEST(Scan, OfSeveralLinesTakesEachLineAlone) {
  const ustring text =
      u"/* <@task#a> */\n/*\n<@task#b> */\n<!-- <@task#c>\n-->\nREM\n<@task#d>\n"
      u"{- <@text#e> -}\nREM <@output#f>\n#\n<@task#g>";
  EXPECT_EQ(scan(text), "0+15 %<@task#a> | 65+15 %<@text#e> | 81+15 %<@output#f>");
  EXPECT_TRUE(has_feature(text, u"output"));
  EXPECT_FALSE(has_feature(text, u"control"));
}

TEST(GetMarker, PicksTheFirstWithTheElementAndType) {
  const auto markers = get_markers_from_snippet(
      u"# <@task#a> # <@text#b> # <@text:anchor#c> # <@text:anchor#d> # <@task#e>", false);
  EXPECT_EQ(get_marker(markers, u"task", u"")->marker.getId(), u"a");
  EXPECT_EQ(get_marker(markers, u"text", u"")->marker.getId(), u"b");
  EXPECT_EQ(get_marker(markers, u"text", u"anchor")->marker.getId(), u"c");
  EXPECT_EQ(get_marker(markers, u"text", u"anchor")->position, 24U);
  EXPECT_FALSE(get_marker(markers, u"text", u"Anchor").has_value());
  EXPECT_FALSE(get_marker(markers, u"task", u"anchor").has_value());
  EXPECT_FALSE(get_marker(markers, u"Task", u"").has_value());
  EXPECT_FALSE(get_marker(markers, u"output", u"").has_value());
}

TEST(GetMarker, AnEmptyTypeSetsNoCondition) {
  const auto markers = get_markers_from_snippet(u"# <@text:anchor#a> # <@text#b>", false);
  EXPECT_EQ(get_marker(markers, u"text", u"")->marker.getId(), u"a");
}

TEST(HasFeature, DependsOnTheElementOnly) {
  const ustring text = u"# <@text#a> # <@output {\"a\":\"# <@control>\"}> # <@widget> # <@task";
  const auto markers = get_markers_from_snippet(text, false);
  for (const ustring element : {u"text", u"output"}) {
    EXPECT_TRUE(has_feature(markers, element));
    EXPECT_TRUE(has_feature(text, element));
  }
  for (const ustring element : {u"control", u"task", u"widget", u"tex", u"Text", u""}) {
    EXPECT_FALSE(has_feature(markers, element)) << ustring_to_utf8(element);
    EXPECT_FALSE(has_feature(text, element)) << ustring_to_utf8(element);
  }
}

TEST(KnownElement, IsFoundByItsWholeName) {
  EXPECT_EQ(findKnownElement(u"control"), KnownElement::kControl);
  EXPECT_EQ(findKnownElement(u"output"), KnownElement::kOutput);
  EXPECT_EQ(findKnownElement(u"task"), KnownElement::kTask);
  EXPECT_EQ(findKnownElement(u"text"), KnownElement::kText);
  for (const ustring other :
       {u"", u"t", u"Task", u"tasK", u"taskk", u"tas", u"texT", u"outpuT", u"Output", u"outputs",
        u"controls", u"Control", u"contro", u"appendix"}) {
    EXPECT_EQ(findKnownElement(other), KnownElement::kOther) << ustring_to_utf8(other);
  }
}

}  // namespace
}  // namespace quenlith::syntax
