#include "tessera/reports/TextReport.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "apps/tessera/support/WrittenText.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"

namespace {

using namespace tessera::check::catalogue;
using tessera::reports::TextReport;
using tessera::source::JoinedLines;
using tessera::source::SourceLines;

class TextReportTest : public testing::Test {
 protected:
  TextReportTest() {
    file.path = "a\x1b.py";
    file.lines = SourceLines(JoinedLines{u"x = 1\n\t中 = 2", true}, {}, {});
  }

  std::string write(bool color = false) {
    TextReport(output, {.color = color, .columns = 100}).write(file);
    return output.all();
  }

  WrittenText output;
  CheckedFile file;
};

TEST_F(TextReportTest, AFileWithoutDiagnosticsHasNoText) {
  EXPECT_EQ(write(), "");
}

TEST_F(TextReportTest, EachPlaceHasAHeadingAndItsLine) {
  Diagnostic diagnostic{.kind = DiagnosticKind::kOverlappingTaskMarker,
                        .message = "what is wrong",
                        .span = spanOf(2, 1, 2),
                        .notes = {},
                        .fix = {}};
  diagnostic.notes.push_back({spanOf(1, 4, 5), "the other place"});
  diagnostic.fix = Fix{"Remove it", {{spanOf(2, 3, 4), ""}, {spanOf(2, 5, 6), ""}}};
  file.diagnostics.push_back(diagnostic);
  EXPECT_EQ(write(),
            "a\\u001b.py:2:2: failure: what is wrong [overlapping_task_marker]\n"
            "     2 |         中 = 2\n"
            "       |         ^~\n"
            "a\\u001b.py:1:5: note: the other place\n"
            "     1 | x = 1\n"
            "       |     ^\n"
            "a\\u001b.py:2:4: fix: Remove it\n");
}

TEST_F(TextReportTest, ARangeOfSeveralLinesIsMarkedToTheEndOfItsFirstLine) {
  file.diagnostics.push_back({.kind = DiagnosticKind::kUnusedEntry,
                              .message = "m",
                              .span = {{1, 2}, {2, 1}},
                              .notes = {},
                              .fix = {}});
  EXPECT_EQ(write(),
            "a\\u001b.py:1:3: warning: m [unused_entry]\n"
            "     1 | x = 1\n"
            "       |   ^~~\n");
}

TEST_F(TextReportTest, TheLineIsNotRepeatedForANoteAtTheSamePlace) {
  file.path = "a";
  file.diagnostics.push_back({.kind = DiagnosticKind::kUnusedEntry,
                              .message = "m",
                              .span = spanOf(1, 0, 1),
                              .notes = {{spanOf(1, 0, 1), "the other one is b:1:1"}},
                              .fix = {}});
  EXPECT_EQ(write(),
            "a:1:1: warning: m [unused_entry]\n"
            "     1 | x = 1\n"
            "       | ^\n"
            "a:1:1: note: the other one is b:1:1\n");
}

TEST_F(TextReportTest, AfterFiveNotesTheOthersAreCounted) {
  file.path = "a";
  Diagnostic diagnostic{.kind = DiagnosticKind::kUnusedEntry,
                        .message = "m",
                        .span = spanOf(1, 0, 1),
                        .notes = {},
                        .fix = {}};
  diagnostic.notes.assign(5, {spanOf(1, 4, 5), "n"});
  const std::string caret = "     1 | x = 1\n       |     ^\n";
  std::string expected = "a:1:1: warning: m [unused_entry]\n     1 | x = 1\n       | ^\n";
  for (int i = 0; i < 5; ++i) expected += "a:1:5: note: n\n" + caret;
  file.diagnostics = {diagnostic};
  EXPECT_EQ(write(), expected);
  diagnostic.notes.push_back({spanOf(2, 1, 2), "n"});
  file.diagnostics = {diagnostic};
  EXPECT_EQ(write(), expected + expected + "a:2:2: note: and 1 more place\n");
  diagnostic.notes.resize(12, {spanOf(1, 4, 5), "n"});
  file.diagnostics = {diagnostic};
  EXPECT_EQ(write(), expected + expected + "a:2:2: note: and 1 more place\n" + expected +
                         "a:2:2: note: and 7 more places; --format json lists all\n");
}

TEST_F(TextReportTest, OnATerminalMessagesAreWrappedAndCounted) {
  file.path = "a";
  Diagnostic diagnostic{.kind = DiagnosticKind::kUnusedEntry,
                        .message = "one two three four five six seven",
                        .span = spanOf(1, 0, 1),
                        .notes = {{spanOf(1, 4, 5), "one two three four five six seven"}},
                        .fix = Fix{"remove one two three four five six", {{spanOf(1, 0, 1), ""}}}};
  file.diagnostics = {diagnostic};
  TextReport report(output, {.color = false, .columns = 40, .isTerminal = true});
  const std::string caret = "     1 | x = 1\n       | ^\n";
  const std::string expected =
      "a:1:1: warning: one two three four five\n    six seven [unused_entry]\n" + caret +
      "a:1:5: note: one two three four five six\n    seven\n     1 | x = 1\n       |     ^\n" +
      "a:1:1: fix: remove one two three four\n    five six\n";
  report.write(file);
  EXPECT_EQ(output.all(), expected);
  report.finish();
  EXPECT_EQ(output.all(), expected +
                              "\n1 warning; --fix corrects 1; \"tessera\n"
                              "    explain ID\" says more\n");
}

TEST_F(TextReportTest, FailuresAndWarningsAreCountedApart) {
  file.path = "a";
  const auto add = [this](DiagnosticKind kind) {
    file.diagnostics.push_back(
        {.kind = kind, .message = "m", .span = spanOf(1, 0, 1), .notes = {}, .fix = {}});
  };
  add(DiagnosticKind::kOverlappingTaskMarker);
  const auto summaryOf = [this] {
    TextReport report(output, {.color = false, .columns = 200, .isTerminal = true});
    report.write(file);
    report.finish();
    const std::string text = output.all();
    return text.substr(text.rfind("\n\n") + 2);
  };
  const std::string end = "; \"tessera explain ID\" says more\n";
  EXPECT_EQ(summaryOf(), "1 failure" + end);
  add(DiagnosticKind::kUnusedEntry);
  add(DiagnosticKind::kUnusedEntry);
  EXPECT_EQ(summaryOf(), "1 failure and 2 warnings" + end);
  add(DiagnosticKind::kOverlappingTaskMarker);
  EXPECT_EQ(summaryOf(), "2 failures and 2 warnings" + end);
}

TEST_F(TextReportTest, WithoutDiagnosticsThereIsNoSummary) {
  TextReport report(output, {.color = false, .columns = 40, .isTerminal = true});
  report.write(file);
  report.finish();
  EXPECT_EQ(output.all(), "");
}

TEST_F(TextReportTest, ColoursDistinguishTheKindsOfRow) {
  file.path = "a";
  file.diagnostics.push_back({.kind = DiagnosticKind::kUnusedEntry,
                              .message = "m",
                              .span = spanOf(1, 0, 1),
                              .notes = {{spanOf(1, 0, 1), "n"}},
                              .fix = {}});
  const std::string caret = "     1 | x = 1\n       | \x1b[1;32m^\x1b[0m\n";
  EXPECT_EQ(write(true), "\x1b[1ma:1:1: \x1b[0m\x1b[1;35mwarning\x1b[0m: m [unused_entry]\n" +
                             caret + "\x1b[1ma:1:1: \x1b[0m\x1b[1;36mnote\x1b[0m: n\n");
}

}  // namespace
