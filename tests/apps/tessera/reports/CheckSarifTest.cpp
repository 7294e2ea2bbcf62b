#include "tessera/reports/CheckSarif.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "apps/tessera/support/WrittenText.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/parse.hpp"

namespace {

using namespace tessera::check::catalogue;
using foundation::json::Array;
using foundation::json::Object;
using foundation::json::Value;
using tessera::reports::CheckSarif;
using tessera::source::JoinedLines;
using tessera::source::SourceLines;

constexpr auto kFailure = DiagnosticKind::kOverlappingTaskMarker;
constexpr auto kWarning = DiagnosticKind::kUnusedEntry;

class CheckSarifTest : public testing::Test {
 protected:
  CheckSarifTest() {
    file.path = "a.py";
    file.lines = SourceLines(JoinedLines{u"x = 1\n😀 = 2\n", true}, {}, {});
  }

  void add(DiagnosticKind kind, const std::string& message = "m", Span span = spanOf(1, 0, 1)) {
    Diagnostic diagnostic;
    diagnostic.kind = kind;
    diagnostic.message = message;
    diagnostic.span = span;
    file.diagnostics.push_back(diagnostic);
  }

  /// Ends the log and returns its only run.
  Object run() {
    report.write(file);
    report.finish();
    const std::string text = output.all();
    const auto parsed = foundation::json::parse(fl::i18n::utf8_to_ustring(text));
    log = parsed.value.value().get<Object>();
    return log.at("runs").get<Array>().at(0).get<Object>();
  }

  static const Object& at(const Value& value, std::string_view key) {
    return value.get<Object>().at(std::string(key)).get<Object>();
  }
  static std::string messageOf(const Value& value) {
    return at(value, "message").at("text").get<std::string>();
  }

  WrittenText output;
  CheckSarif report{output};
  CheckedFile file;
  Object log;
};

TEST_F(CheckSarifTest, ALogWithoutDiagnosticsHasOneRunWithAllRules) {
  const Object only = run();
  EXPECT_EQ(log.at("version"), Value("2.1.0"));
  EXPECT_EQ(log.at("runs").get<Array>().size(), 1U);
  EXPECT_EQ(only.at("columnKind"), Value("utf16CodeUnits"));
  EXPECT_TRUE(only.at("results").get<Array>().empty());
  const Object& driver = at(only.at("tool"), "driver");
  EXPECT_EQ(driver.at("rules").get<Array>().size(), catalogue().size());
}

TEST_F(CheckSarifTest, AResultRefersToTheRuleOfItsDiagnostic) {
  add(kFailure);
  add(kWarning);
  const Object only = run();
  const Array rules = at(only.at("tool"), "driver").at("rules").get<Array>();
  const char* const levels[] = {"error", "warning"};
  for (std::size_t i = 0; i < 2; ++i) {
    const Object result = only.at("results").get<Array>().at(i).get<Object>();
    const auto& rule =
        rules.at(static_cast<std::size_t>(result.at("ruleIndex").get<std::int64_t>()))
            .get<Object>();
    EXPECT_EQ(result.at("ruleId"), rule.at("id"));
    EXPECT_EQ(result.at("level"), Value(levels[i]));
    EXPECT_EQ(rule.at("defaultConfiguration").get<Object>().at("level"), result.at("level"));
  }
}

TEST_F(CheckSarifTest, ColumnsCountCodeUnitsFromOne) {
  add(kFailure, "m", {{2, 3}, {2, 7}});
  const Value region =
      at(at(run().at("results").get<Array>()[0].get<Object>().at("locations").get<Array>()[0],
            "physicalLocation"),
         "region");
  EXPECT_EQ(region, Value(Object{{"startLine", Value(2)},
                                 {"startColumn", Value(4)},
                                 {"endLine", Value(2)},
                                 {"endColumn", Value(8)}}));
}

TEST_F(CheckSarifTest, NotesAreRelatedLocationsThatTheMessageLinksTo) {
  add(kFailure);
  file.diagnostics[0].notes.push_back({spanOf(2, 0, 2), "[0,2] is \\ here"});
  file.diagnostics[0].notes.push_back({spanOf(1, 4, 5), "and here"});
  const Value result = run().at("results").get<Array>()[0];
  EXPECT_EQ(messageOf(result), "m\n[\\[0,2\\] is \\\\ here](1)\n[and here](2)");
  const Array related = result.get<Object>().at("relatedLocations").get<Array>();
  ASSERT_EQ(related.size(), 2U);
  EXPECT_EQ(related[1].get<Object>().at("id"), Value(2));
  EXPECT_EQ(messageOf(related[0]), "[0,2] is \\ here");
}

TEST_F(CheckSarifTest, NoTextOfAFileIsALink) {
  const std::string quoted = "the id \"[open](https://example.org)\" [0](1) [a] (b)";
  const std::string shown = "the id \"[open\\](https://example.org)\" [0\\](1) [a] (b)";
  add(kFailure, quoted);
  file.diagnostics[0].notes.push_back({spanOf(2, 0, 2), quoted});
  file.diagnostics[0].fix = Fix{quoted, {{spanOf(1, 0, 1), "y"}}};
  report.addProblem({.file = "a.py", .place = {}, .what = quoted, .remedy = {}});
  const Object only = run();
  const Value result = only.at("results").get<Array>()[0];
  EXPECT_TRUE(messageOf(result).starts_with(shown + "\n[")) << messageOf(result);
  EXPECT_EQ(messageOf(result.get<Object>().at("relatedLocations").get<Array>()[0]), shown);
  const Value fix = result.get<Object>().at("fixes").get<Array>()[0];
  EXPECT_EQ(at(fix, "description").at("text"), Value(shown));
  const Object invocation = only.at("invocations").get<Array>()[0].get<Object>();
  EXPECT_EQ(messageOf(invocation.at("toolExecutionNotifications").get<Array>()[0]), shown);
}

TEST_F(CheckSarifTest, TheTextOfANotificationHasNoControlCharacters) {
  report.addProblem(
      {.file = "a.py", .place = {}, .what = "a \x1B[31m \u202E", .remedy = "remove the \n"});
  const Object invocation = run().at("invocations").get<Array>()[0].get<Object>();
  EXPECT_EQ(messageOf(invocation.at("toolExecutionNotifications").get<Array>()[0]),
            "a \\u001b[31m \\u202e; remove the \\n");
}

TEST_F(CheckSarifTest, AfterAThousandProblemsTheRestIsCounted) {
  for (int i = 0; i < 1003; ++i) {
    report.addProblem({.file = "a.py", .place = {}, .what = "bad", .remedy = {}});
  }
  const Object invocation = run().at("invocations").get<Array>()[0].get<Object>();
  EXPECT_EQ(invocation.at("executionSuccessful"), Value(false));
  const Array notifications = invocation.at("toolExecutionNotifications").get<Array>();
  ASSERT_EQ(notifications.size(), 1001U);
  EXPECT_EQ(messageOf(notifications[999]), "bad");
  EXPECT_EQ(messageOf(notifications[1000]),
            "3 more files could not be checked; they are on standard error");
}

TEST_F(CheckSarifTest, TheLogCanBePartOfAPage) {
  add(kFailure, "</script> \u202E");
  file.diagnostics[0].fix = Fix{"<!--", {{spanOf(1, 0, 1), "<b>\u2028"}}};
  run();
  const std::string text = output.all();
  for (const char* part : {"</", "<!", "<b", "\u202E", "\u2028"}) {
    EXPECT_EQ(text.find(part), text.npos) << part;
  }
}

TEST_F(CheckSarifTest, AFixReplacesItsRegions) {
  add(kFailure);
  file.diagnostics[0].fix = Fix{"Do it", {{spanOf(1, 0, 1), "y"}, {spanOf(1, 2, 3), ""}}};
  const Value fix = run().at("results").get<Array>()[0].get<Object>().at("fixes").get<Array>()[0];
  EXPECT_EQ(at(fix, "description").at("text"), Value("Do it"));
  const Object change = fix.get<Object>().at("artifactChanges").get<Array>()[0].get<Object>();
  EXPECT_EQ(at(change, "artifactLocation").at("uri"), Value("a.py"));
  const Array replacements = change.at("replacements").get<Array>();
  ASSERT_EQ(replacements.size(), 2U);
  EXPECT_EQ(at(replacements[0], "insertedContent").at("text"), Value("y"));
  EXPECT_EQ(replacements[1].get<Object>().count("insertedContent"), 0U);
  EXPECT_EQ(at(replacements[1], "deletedRegion").at("startColumn"), Value(3));
}

TEST_F(CheckSarifTest, OnlyAHundredRelatedLocationsAreWritten) {
  add(kFailure);
  for (int i = 0; i < 103; ++i) file.diagnostics[0].notes.push_back({spanOf(1, 0, 1), "n"});
  const Value result = run().at("results").get<Array>()[0];
  EXPECT_EQ(result.get<Object>().at("relatedLocations").get<Array>().size(), 100U);
  EXPECT_TRUE(messageOf(result).ends_with("[n](100)\n(and 3 more)")) << messageOf(result);
}

TEST_F(CheckSarifTest, BeyondTheLimitFailuresDisplaceWarnings) {
  constexpr std::size_t kLimit = 25000;
  for (int i = 0; i < 30; ++i) add(kWarning, "early " + std::to_string(i));
  for (std::size_t i = 0; i < kLimit - 20; ++i) add(kFailure, "failure " + std::to_string(i));
  add(kWarning, "late");
  const Object only = run();
  const Array results = only.at("results").get<Array>();
  ASSERT_EQ(results.size(), kLimit);
  EXPECT_EQ(messageOf(results[19]), "early 19");
  EXPECT_EQ(messageOf(results[20]), "failure 0");
  EXPECT_EQ(messageOf(results.back()), "failure 24979");
  const Object invocation = only.at("invocations").get<Array>()[0].get<Object>();
  const Array notifications = invocation.at("toolExecutionNotifications").get<Array>();
  ASSERT_EQ(notifications.size(), 1U);
  EXPECT_TRUE(messageOf(notifications[0]).starts_with("11 results are left out"))
      << messageOf(notifications[0]);
  EXPECT_EQ(invocation.at("executionSuccessful"), Value(true));
}

TEST_F(CheckSarifTest, TheFirstFailuresAreKeptIfThereAreTooMany) {
  for (int i = 0; i < 25002; ++i) add(kFailure, std::to_string(i));
  const Array results = run().at("results").get<Array>();
  ASSERT_EQ(results.size(), 25000U);
  EXPECT_EQ(messageOf(results.back()), "24999");
}

TEST_F(CheckSarifTest, AFileThatCannotBeCheckedIsANotification) {
  report.addProblem({.file = "b c.py",
                     .place = tessera::diagnostics::Place{3, 4},
                     .what = "byte 0xFF is not valid UTF-8",
                     .remedy = "convert it"});
  const Object invocation = run().at("invocations").get<Array>()[0].get<Object>();
  EXPECT_EQ(invocation.at("executionSuccessful"), Value(false));
  const Value notification = invocation.at("toolExecutionNotifications").get<Array>()[0];
  EXPECT_EQ(messageOf(notification), "byte 0xFF is not valid UTF-8; convert it");
  const Object place =
      at(notification.get<Object>().at("locations").get<Array>()[0], "physicalLocation");
  EXPECT_EQ(at(place, "artifactLocation").at("uri"), Value("b%20c.py"));
  EXPECT_EQ(place.at("region"), Value(Object{{"startLine", Value(3)}}));
}

}  // namespace
