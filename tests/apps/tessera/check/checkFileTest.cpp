#include "tessera/check/checkFile.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/tessera/support/nodes.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"

namespace {

using failures::kdzero::ParserFailure;
using tessera::check::checkFile;
using tessera::check::catalogue::CheckedFile;
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
class CheckFile : public testing::Test {
 protected:
  CheckFile() {
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

  /// Checks the file, which is empty afterwards.
  std::vector<std::string> describe() {
    const CheckedFile checked = checkFile("f", std::move(file), rejectAll);
    std::vector<std::string> texts;
    for (const auto& diagnostic : checked.diagnostics) {
      const auto& span = diagnostic.span;
      texts.push_back(std::to_string(span.begin.line) + ":" + std::to_string(span.begin.unit) +
                      "-" + std::to_string(span.end.unit) + " " +
                      std::string(tessera::check::catalogue::entryOf(diagnostic.kind).id));
    }
    return texts;
  }

  static bool rejectAll(const quenlith::syntax::Marker& marker) {
    static_cast<void>(marker);
    return false;
  }

  ParsedFile file;
};

TEST_F(CheckFile, AFailureIsReportedAtItsMarkerOrRange) {
  addLine(u"", {});
  addLine(u"\u00E4\U0001F3C6 # <@task#a>",
          {makeFailure(u"missing_task_marker_pair", u"task", u"a")});
  addLine(u"# <@output#b [9,9]> # <@task#b>",
          {makeFailure(u"invalid_position_data", u"output", u"b"),
           makeFailure(u"missing_task_marker_pair", u"task", u"b")});
  EXPECT_THAT(describe(),
              ElementsAre("2:4-15 missing_task_marker_pair", "3:13-18 invalid_position_data",
                          "3:20-31 missing_task_marker_pair"));
}

TEST_F(CheckFile, TheNthFailureRefersToTheNthUnusableRangeOfItsId) {
  const ParserFailure failure = makeFailure(u"invalid_position_data", u"output", u"a");
  ParserFailure second = failure;
  second.setFailureData({{"position", foundation::json::Value(2.0)}});
  addLine(u"# <@output#a [9,9]> # <@output#a> # <@output#a [3,2]>", {failure, second});
  EXPECT_THAT(describe(),
              ElementsAre("1:13-18 invalid_position_data", "1:47-52 invalid_position_data"));
}

// Another bundle may record failures with the ids of the program's own.
TEST_F(CheckFile, AFailureWithoutItsMarkerIsReportedForItsLine) {
  addLine(u"  x", {makeFailure(u"invalid_position_data", u"output", u"a"),
                   makeFailure(u"missing_task_marker_pair", u"task", u"b")});
  addLine(u"y", {makeFailure(u"overlapping_task_marker", u"task", u"c")});
  EXPECT_THAT(describe(),
              ElementsAre("1:0-3 missing_task_marker_pair", "1:0-3 invalid_position_data",
                          "2:0-1 overlapping_task_marker"));
}

TEST_F(CheckFile, AFailureOfAnotherBundleIsReportedForItsLine) {
  addLine(u"  x", {makeFailure(u"other\n", u"thing", u"")});
  const CheckedFile checked = checkFile("f", std::move(file), rejectAll);
  ASSERT_EQ(checked.diagnostics.size(), 1u);
  EXPECT_EQ(checked.diagnostics[0].message,
            "a parser reports \"other\\n\" for the thing marker without an id");
  EXPECT_EQ(checked.diagnostics[0].span, tessera::check::catalogue::spanOf(1, 0, 3));
}

TEST_F(CheckFile, FailuresOfNestedNodesAreReported) {
  addLine(u"x", {});
  auto text = nodes::makeText(file.snippet.document->getModel(), u"x");
  text->getParserFailuresMutable().add(makeFailure(u"deep", u"f", u"m"));
  file.snippet.document->getChildAt(0)->getChildrenMutable().add(text);
  EXPECT_THAT(describe(), ElementsAre("1:0-1 parser_failure"));
}

TEST_F(CheckFile, DiagnosticsAreInOrderOfTheirPlaces) {
  addLine(u"# <@task#a>", {makeFailure(u"missing_task_marker_pair", u"task", u"a")});
  file.source.appendixLine = 2;
  file.source.appendixLineText = u"# <@appendix>";
  file.source.appendix = {u"?\n# <@task#z>\n# <@task#a>", true};
  const CheckedFile checked = checkFile("f", std::move(file), rejectAll);
  std::vector<std::uint64_t> lines;
  for (const auto& diagnostic : checked.diagnostics) lines.push_back(diagnostic.span.begin.line);
  EXPECT_THAT(lines, ElementsAre(1, 3, 4));
  EXPECT_EQ(checked.lines.line(2), u"# <@appendix>");
  EXPECT_EQ(checked.lines.line(4), u"# <@task#z>");
}

}  // namespace
