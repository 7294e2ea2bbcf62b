#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"
#include "support/CountedWork.hpp"

namespace quenlith::syntax {
namespace {

using fl::i18n::ustring;

constexpr std::size_t kMebi = std::size_t{1} << 20U;

ustring repeated(const ustring& part, std::size_t size) {
  ustring text;
  while (text.size() < size) {
    text += part;
  }
  return text;
}

struct Hostile {
  std::string name;
  std::function<ustring(std::size_t)> make;
};

Hostile repeating(const std::string& name, const ustring& part) {
  return {name, [part](std::size_t size) { return repeated(part, size); }};
}

// `head` once, then `part` repeatedly.
Hostile headed(const std::string& name, const ustring& head, const ustring& part) {
  return {name, [head, part](std::size_t size) { return head + repeated(part, size); }};
}

const std::vector<Hostile> kHostile{
    repeating("plain", u"x = 1\n"),
    repeating("half openings", u"<"),
    repeating("other halves", u"@"),
    repeating("openings", u"<@"),
    repeating("openings with a leader", u"#<@"),
    repeating("leaders", u"#"),
    repeating("blanks", u" "),
    repeating("leader, then many blanks", u"#                                <@"),
    headed("a long leader, many openings", ustring(1000, u'#'), u"<@task "),
    {"one long leader", [](std::size_t size) { return ustring(size, u'#') + u"<@task>"; }},
    {"leader and blanks", [](std::size_t size) { return u"#" + ustring(size, u' ') + u"<@task"; }},
    {"one long name", [](std::size_t size) { return u"#<@task:" + ustring(size, u'a'); }},
    {"one long id", [](std::size_t size) { return u"#<@task#" + ustring(size, u'a'); }},
    {"one long quoted id", [](std::size_t size) { return u"#<@task#\"" + ustring(size, u'a'); }},
    {"digits of a range", [](std::size_t size) { return u"#<@task [" + ustring(size, u'9'); }},
    {"digits of a number",
     [](std::size_t size) { return u"#<@task {\"a\":0." + ustring(size, u'9') + u"}>"; }},
    {"zeros of a number",
     [](std::size_t size) { return u"#<@task {\"a\":0." + ustring(size, u'0') + u"1}>"; }},
    {"deep arrays", [](std::size_t size) { return u"#<@task {\"a\":" + ustring(size, u'['); }},
    repeating("unclosed markers", u"#<@task {"),
    repeating("unclosed strings", u"#<@task {\"a\":\"#<@task {\"a\":\""),
    repeating("unclosed ids", u"#<@task#\""),
    repeating("unclosed ids and data", u"#<@task#\" {\"a\":\""),
    repeating("escaped quotes", u"#<@task {\"a\":\"\\\""),
    repeating("openings in lists", u"#<@task {\",\":[\","),
    headed("one string over many openings", u"#<@task {\"a\":\"", u"#<@task {"),
    headed("one string over many ranges", u"#<@task#\"", u"#<@task [1,2"),
    headed("a list of commas after an opening in a string", u"#<@task {\"a\":[\"#<@task {\",\":[\"",
           u",\""),
    headed("many keys that fail at the end", u"#<@task {\"a\":0", u",\"a\":0"),
    repeating("markers", u"#<@task>"),
    repeating("markers with data", u"x # <@task#\"i\" [1,2] {\"a\":[1,2.5,\"b\"]}>\n"),
    repeating("leaders and openers of all kinds", u"%#;!/-*(<!{REM rem "),
    repeating("slashes", u"/"),
    repeating("dashes", u"-"),
    repeating("stars", u"*"),
    repeating("parentheses", u"("),
    repeating("half comments", u"<!"),
    repeating("remarks", u"REM "),
    repeating("remarks before openings", u"REM <@"),
    repeating("openers", u"/*(*<!--{-"),
    repeating("closers", u"*/*)-->-}"),
    repeating("openers before openings", u"/*<@(*<@<!--<@{-<@"),
    repeating("openers without closers", u"/*<@task>(*<@task>"),
    repeating("dashed openers without closers", u"<!--<@task>{-<@task>"),
    repeating("half closers", u"/*<@task>*<!--<@task>--"),
    repeating("long runs before openings", ustring(1000, u'*') + u"<@"),
    repeating("long dashes before openings", u"<!" + ustring(1000, u'-') + u"<@task>"),
    repeating("long half closers", u"/*<@task>" + ustring(1000, u'*')),
    repeating("long blanks before half closers", u"/*<@task>" + ustring(1000, u' ') + u"*"),
    repeating("block comments", u"/*<@task>*/<!--<@text>-->(*<@output>*){-<@task>-}"),
    repeating("block comments without closers in strings", u"/*<@task {\"a\":\"/*<@task#\"b\">"),
    repeating("closers in strings", u"/*<@task#\">*/\">"),
    headed("one marker, many leaders", u"#<@task>", u"<@ "),
    {"one long run of stars",
     [](std::size_t size) { return u"/" + ustring(size, u'*') + u"<@task>"; }},
    {"one long run of stars after",
     [](std::size_t size) { return u"/*<@task>" + ustring(size, u'*'); }},
    {"one long run of dashes",
     [](std::size_t size) { return u"<!" + ustring(size, u'-') + u"<@task>"; }},
    {"one long run of dashes after",
     [](std::size_t size) { return u"<!--<@task>" + ustring(size, u'-'); }},
    {"a marker, blanks, then openings",
     [](std::size_t size) {
       return u"#<@task>" + ustring(size / 2, u' ') + repeated(u"<@", size / 2);
     }},
    {"an appendix line, blanks, then openings",
     [](std::size_t size) {
       return ustring(size / 2, u' ') + repeated(u"#<@appendix> ", size / 2);
     }},
    repeating("percent signs", u"\"%%%%\" %%\\%%<@"),
    repeating("unknown elements", u"#<@widget {\"a\":\"#<@widget\"}>"),
    repeating("long numbers", u"#<@task {\"a\":1e309, \"b\":2"),
};

using Operation = std::function<void(const ustring&)>;

std::uint64_t workOf(const Operation& operation, const ustring& text) {
  const std::uint64_t before = test::countedWork();
  operation(text);
  return test::countedWork() - before;
}

// Twice the text may take at most 2.1 times the work (plus a constant), and a code unit at most 60
// basic blocks.
void expectLinear(const Operation& operation) {
  for (const auto& [name, make] : kHostile) {
    const ustring text = make(kMebi);
    const std::uint64_t half = workOf(operation, make(kMebi / 2));
    const std::uint64_t whole = workOf(operation, text);
    EXPECT_GT(whole, 0U) << name;
    EXPECT_LT(whole, half * 21 / 10 + 1000) << name;
    EXPECT_LT(whole, text.size() * 60) << name;
  }
}

TEST(ScannerWork, IsLinear) {
  expectLinear([](const ustring& text) { get_markers_from_snippet(text, false); });
}

TEST(ScannerWork, OfAnyElementIsLinear) {
  expectLinear([](const ustring& text) { get_markers_from_snippet(text, true); });
}

TEST(ScannerWork, OfDamagedMarkersIsLinear) {
  expectLinear([](const ustring& text) { findDamagedMarkers(text); });
}

TEST(ScannerWork, OfCandidatesIsLinear) {
  expectLinear([](const ustring& text) { findMarkerCandidates(text); });
}

TEST(ScannerWork, OfAnAppendixLineIsLinear) {
  expectLinear([](const ustring& text) { isAppendixLine(text); });
}

TEST(ScannerWork, HasFeatureStopsAtTheFirstMatch) {
  const ustring text = u"# <@task>" + repeated(u"# <@text>", kMebi);
  EXPECT_LT(workOf([](const ustring& held) { EXPECT_TRUE(has_feature(held, u"task")); }, text),
            1000U);
}

TEST(ScannerWork, OfAMarkerFromTextIsLinear) {
  expectLinear([](const ustring& text) { Marker marker(text); });
}

}  // namespace
}  // namespace quenlith::syntax
