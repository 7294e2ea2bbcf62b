#include "tessera/check/findWarnings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/tessera/support/nodes.hpp"

namespace {

using failures::kdzero::ParserFailure;
using tessera::check::findWarnings;
using tessera::session::ParsedFile;
using testing::ElementsAre;

ParserFailure makeFailure(std::u16string id, std::u16string feature, std::u16string marker) {
  failures::kdzero::MarkerInfo info;
  info.setFeatureId(std::move(feature)).setMarkerId(std::move(marker));
  ParserFailure failure;
  failure.setFailureId(std::move(id)).setMarkerInfo(info);
  return failure;
}

/// A parsed file whose lines have failures.
class FindWarnings : public testing::Test {
 protected:
  FindWarnings() {
    file.snippet.document = std::make_shared<document::kdzero::TesseraDocument>();
    file.snippet.code.any = true;
  }

  void addLine(std::u16string_view text, const std::vector<ParserFailure>& failures) {
    auto& document = *file.snippet.document;
    tessera::session::LineOutcome outcome;
    outcome.firstNode = document.getNumberOfChildren();
    outcome.nodeCount = 1;
    auto line = nodes::makeLine(document.getModel());
    for (const ParserFailure& failure : failures) line->getParserFailuresMutable().add(failure);
    document.addChild(line);
    file.snippet.lines.add(std::move(outcome));
    if (document.getNumberOfChildren() > 1) file.snippet.code.text += u'\n';
    file.snippet.code.text += text;
  }

  std::vector<std::string> describe() const {
    std::vector<std::string> texts;
    for (const auto& warning : findWarnings(file)) {
      texts.push_back(std::to_string(warning.place.line) + ":" +
                      std::to_string(warning.place.column) + " " + warning.text);
    }
    return texts;
  }

  ParsedFile file;
};

TEST_F(FindWarnings, AFailureIsReportedAtTheStartOfItsMarker) {
  addLine(u"", {});
  addLine(u"ä🏆 # <@task#a>", {makeFailure(u"overlapping_task_marker", u"task", u"a")});
  addLine(u"# <@task#b> # <@output#b>", {makeFailure(u"invalid_position_data", u"output", u"b"),
                                         makeFailure(u"missing_task_marker_pair", u"task", u"b")});
  EXPECT_THAT(
      describe(),
      ElementsAre(
          "2:4 the task marker \"a\" stands inside another task",
          "3:1 the task marker \"b\" has no partner: its id must stand in exactly two task markers",
          "3:13 the range of the output marker \"b\" is empty, beyond the line, or touches a "
          "marker"));
}

TEST_F(FindWarnings, TheNthFailureRefersToTheNthMarkerWithItsId) {
  ParserFailure second = makeFailure(u"invalid_position_data", u"output", u"a");
  second.setFailureData({{"position", foundation::json::Value(2.0)}});
  ParserFailure third = second;
  third.setFailureData({{"position", foundation::json::Value(3.0)}});
  addLine(u"# <@output#a> # <@output#a>",
          {makeFailure(u"invalid_position_data", u"output", u"a"), second, third});
  const auto warnings = findWarnings(file);
  ASSERT_EQ(warnings.size(), 3u);
  EXPECT_EQ(warnings[0].place.column, 1u);
  EXPECT_EQ(warnings[1].place.column, 15u);
  EXPECT_EQ(warnings[2].place.column, 15u);
}

TEST_F(FindWarnings, AFailureOfAnotherBundleIsReportedAtTheStartOfItsLine) {
  addLine(u"  x", {makeFailure(u"other\n", u"thing", u"")});
  EXPECT_THAT(describe(), ElementsAre("1:1 the thing marker: other\\n"));
}

TEST_F(FindWarnings, FailuresOfNestedNodesAreReported) {
  addLine(u"x", {});
  auto text = nodes::makeText(file.snippet.document->getModel(), u"x");
  text->getParserFailuresMutable().add(makeFailure(u"deep", u"f", u"m"));
  file.snippet.document->getChildAt(0)->getChildrenMutable().add(text);
  EXPECT_THAT(describe(), ElementsAre("1:1 the f marker \"m\": deep"));
}

TEST_F(FindWarnings, AppendixWarningsAreSortedAmongTheOthers) {
  addLine(u"# <@task#a>", {makeFailure(u"missing_task_marker_pair", u"task", u"a")});
  file.appendix.warnings = {{{4, 1}, "damaged"}};
  file.appendix.entries = {{quenlith::syntax::Marker(u"# <@task#z>"), {3, 1}},
                           {quenlith::syntax::Marker(u"# <@task#a>"), {5, 1}}};
  EXPECT_THAT(
      describe(),
      ElementsAre(
          "1:1 the task marker \"a\" has no partner: its id must stand in exactly two task markers",
          "3:1 no marker of the code has this entry: task with id \"z\"", "4:1 damaged"));
}

}  // namespace
