#include "quenlith/build/markup/code/line/MarkerKind.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using quenlith::build::markup::code::line::isControl;
using quenlith::build::markup::code::line::isOutput;
using quenlith::build::markup::code::line::isTask;
using quenlith::build::markup::code::line::isTextAnchor;
using quenlith::build::markup::code::line::recordMarkerKind;
using namespace quenlith::build::markup::code;
using quenlith::build::markup::ParseResult;
using quenlith::syntax::Marker;

struct Case {
  const char16_t* text;
  bool control;
  bool output;
  bool task;
  bool anchor;
  /// The element whose bare marker is recorded, "" for none.
  const char16_t* recorded;
};

TEST(MarkerKind, IsToldByTheExactElementAndType) {
  const std::vector<Case> cases{
      {u"control", true, false, false, false, u"control"},
      {u"%<@control:slider#c {\"min\":1}>", true, false, false, false, u"control"},
      {u"output", false, true, false, false, u"output"},
      {u"%<@output:anchor#o>", false, true, false, false, u"output"},
      {u"task", false, false, true, false, u"task"},
      {u"%<@task#t1>", false, false, true, false, u"task"},
      {u"%<@text:anchor>", false, false, false, true, u"text"},
      {u"%<@text:anchor#a>", false, false, false, true, u"text"},
      {u"text", false, false, false, false, u""},
      {u"%<@text:Anchor#a>", false, false, false, false, u""},
      {u"%<@text:anchors>", false, false, false, false, u""},
      {u"%<@Task#t1>", false, false, false, false, u""},
      {u"%<@tasks#t1>", false, false, false, false, u""},
      {u"%<@anchor>", false, false, false, false, u""},
      {u"no marker", false, false, false, false, u""},
  };
  for (const Case& each : cases) {
    const Marker marker{std::u16string(each.text)};
    SCOPED_TRACE(fl::i18n::ustring_to_utf8(each.text));
    EXPECT_EQ(isControl(marker), each.control);
    EXPECT_EQ(isOutput(marker), each.output);
    EXPECT_EQ(isTask(marker), each.task);
    EXPECT_EQ(isTextAnchor(marker), each.anchor);

    ParseResult result;
    recordMarkerKind(marker, result);
    std::set<std::u16string> expected;
    if (*each.recorded != u'\0') {
      expected.insert(Marker(std::u16string(each.recorded)).toString());
    }
    EXPECT_EQ(result.markerTypes, expected);
  }
}

TEST(MarkerKind, IsRecordedOnceBesideWhatIsThere) {
  ParseResult result;
  result.markerTypes.insert(u"already there");
  result.flag = true;
  result.type = {1, 2};
  recordMarkerKind(Marker(u"%<@task#t1>"), result);
  recordMarkerKind(Marker(u"%<@task#t2>"), result);
  EXPECT_EQ(result.markerTypes,
            (std::set<std::u16string>{u"already there", Marker(u"task").toString()}));
  EXPECT_TRUE(result.flag);
  EXPECT_EQ(result.type.kind, 2);
}

}  // namespace
