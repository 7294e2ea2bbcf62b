#include "quenlith/build/markup/code/line/MarkerKind.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using quenlith::build::markup::ParseResult;
using quenlith::build::markup::code::line::kindOf;
using quenlith::build::markup::code::line::MarkerKind;
using quenlith::build::markup::code::line::recordMarkerKind;
using quenlith::syntax::Marker;

struct Case {
  const char16_t* text;
  MarkerKind kind;
  /// The element whose bare marker is recorded, "" for none.
  const char16_t* recorded;
};

TEST(MarkerKind, DependsOnTheExactElementAndType) {
  const std::vector<Case> cases{
      {u"control", MarkerKind::kControl, u"control"},
      {u"%<@control:slider#c {\"min\":1}>", MarkerKind::kControl, u"control"},
      {u"output", MarkerKind::kOutput, u"output"},
      {u"%<@output:anchor#o>", MarkerKind::kOutput, u"output"},
      {u"task", MarkerKind::kTask, u"task"},
      {u"%<@task#t1>", MarkerKind::kTask, u"task"},
      {u"%<@text:anchor>", MarkerKind::kTextAnchor, u"text"},
      {u"%<@text:anchor#a>", MarkerKind::kTextAnchor, u"text"},
      {u"text", MarkerKind::kOther, u""},
      {u"%<@text:Anchor#a>", MarkerKind::kOther, u""},
      {u"%<@text:anchors>", MarkerKind::kOther, u""},
      {u"%<@Task#t1>", MarkerKind::kOther, u""},
      {u"%<@tasks#t1>", MarkerKind::kOther, u""},
      {u"%<@anchor>", MarkerKind::kOther, u""},
      {u"%<@widget:anchor#a>", MarkerKind::kOther, u""},
      {u"no marker", MarkerKind::kOther, u""},
  };
  for (const Case& each : cases) {
    const Marker marker{std::u16string(each.text)};
    SCOPED_TRACE(fl::i18n::ustring_to_utf8(each.text));
    EXPECT_EQ(kindOf(marker), each.kind);
    ParseResult result;
    recordMarkerKind(kindOf(marker), result);
    std::set<fl::i18n::ustring> expected;
    if (*each.recorded != u'\0') expected.insert(Marker(each.recorded).toString());
    EXPECT_EQ(result.markerTypes, expected);
  }
}

TEST(MarkerKind, IsRecordedOnce) {
  ParseResult result;
  recordMarkerKind(MarkerKind::kTask, result);
  recordMarkerKind(MarkerKind::kTask, result);
  EXPECT_EQ(result.markerTypes.size(), 1u);
}

}  // namespace
