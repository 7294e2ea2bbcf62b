#include "tessera/check/catalogue/describeEntry.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace tessera::check::catalogue;

std::vector<std::string> rowsOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> rows;
  for (std::string row; std::getline(stream, row);) rows.push_back(row);
  return rows;
}

constexpr CatalogueEntry kEntry{.kind = DiagnosticKind::kParserFailure,
                                .id = "an_id",
                                .severity = Severity::kWarning,
                                .title = "what is wrong",
                                .messages = {},
                                .explanation = "First words.\nSecond words.",
                                .before = "a\n\n  b\n",
                                .after = "c\n",
                                .fix = "Replaces a."};

TEST(DescribeEntry, TextHasTheExplanationAndTheExamplesIndented) {
  EXPECT_EQ(describeAsText(kEntry),
            "an_id (warning)\nwhat is wrong\n\nFirst words. Second words.\n\nBefore:\n\n"
            "    a\n\n      b\n\nAfter:\n\n    c\n\ntessera check --fix: Replaces a.\n");
}

TEST(DescribeEntry, MarkdownHasTheExamplesInFences) {
  EXPECT_EQ(describeAsMarkdown(kEntry),
            "First words. Second words.\n\nBefore:\n\n```text\na\n\n  b\n```\n\nAfter:\n\n"
            "```text\nc\n```\n\n`tessera check --fix`: Replaces a.\n");
}

TEST(DescribeEntry, WithoutAFixNothingFollowsTheExample) {
  CatalogueEntry entry = kEntry;
  entry.fix = "";
  EXPECT_TRUE(describeAsText(entry).ends_with("After:\n\n    c\n"));
  EXPECT_TRUE(describeAsMarkdown(entry).ends_with("After:\n\n```text\nc\n```\n"));
}

TEST(DescribeEntry, TheOptionsOfTheExampleAreInItsHeading) {
  CatalogueEntry entry = kEntry;
  entry.exampleOptions = "--bare";
  EXPECT_NE(describeAsText(entry).find("\n\nBefore (with --bare):\n\n    a\n"), std::string::npos);
  EXPECT_NE(describeAsMarkdown(entry).find("\n\nBefore (with --bare):\n\n```text\na\n"),
            std::string::npos);
}

TEST(DescribeEntry, ParagraphsStayApart) {
  CatalogueEntry entry = kEntry;
  entry.explanation = "First\nwords.\n\nMore words.";
  EXPECT_TRUE(describeAsText(entry).starts_with(
      "an_id (warning)\nwhat is wrong\n\nFirst words.\n\nMore words.\n\nBefore:\n"));
  EXPECT_TRUE(describeAsMarkdown(entry).starts_with("First words.\n\nMore words.\n\nBefore:\n"));
}

TEST(DescribeEntry, LongRowsAreBrokenBetweenWords) {
  CatalogueEntry entry = kEntry;
  std::string words;
  for (int i = 0; i < 40; ++i) words += "word" + std::to_string(i) + " ";
  const std::string longWord(100, 'x');
  words += longWord + " end";
  entry.explanation = words;
  auto rows = rowsOf(describeAsText(entry));
  rows.erase(std::ranges::find(rows, "Before:") - 1, rows.end());
  EXPECT_EQ(std::ranges::count(rows, longWord), 1);
  std::string joined;
  for (std::size_t i = 3; i < rows.size(); ++i) {
    EXPECT_TRUE(rows[i].size() <= 80 || rows[i] == longWord) << rows[i];
    joined += (i == 3 ? "" : " ") + rows[i];
  }
  EXPECT_EQ(joined, words);
  // No row could take the first word of the next one.
  EXPECT_GT(rows[3].size(), 80 - std::string(" word99").size());
}

TEST(DescribeEntry, ARowOfEightyColumnsFits) {
  CatalogueEntry entry = kEntry;
  const std::string row = std::string(40, 'a') + " " + std::string(39, 'b');
  const std::string words = row + " " + row + "c end";
  entry.explanation = words;
  const auto rows = rowsOf(describeAsText(entry));
  EXPECT_EQ(rows[3], row);
  EXPECT_EQ(rows[4], std::string(40, 'a'));
  EXPECT_EQ(rows[5], std::string(39, 'b') + "c end");
}

TEST(DescribeEntry, EveryEntryCanBeShown) {
  for (const CatalogueEntry& entry : catalogue()) {
    SCOPED_TRACE(entry.id);
    EXPECT_TRUE(entry.before.ends_with('\n'));
    EXPECT_TRUE(entry.after.ends_with('\n'));
    // A fence in an example would end the example; a bar would end a cell of the table.
    for (const std::string_view example : {entry.before, entry.after}) {
      EXPECT_EQ(example.find("```"), example.npos);
    }
    EXPECT_EQ(entry.title.find('|'), entry.title.npos);
    // Code-scanning services accept this much.
    EXPECT_LE(entry.title.size(), 1024U);
    EXPECT_LE(entry.explanation.size(), 1024U);
  }
}

TEST(DescribeEntry, TheCatalogueHasARowAndASectionForEachEntry) {
  const auto rows = rowsOf(describeCatalogue());
  for (const CatalogueEntry& entry : catalogue()) {
    const std::string id(entry.id);
    EXPECT_EQ(std::ranges::count(rows, "### `" + id + "`"), 1);
    EXPECT_EQ(
        std::ranges::count_if(
            rows, [&](const std::string& row) { return row.starts_with("| [`" + id + "`](#"); }),
        1);
  }
}

}  // namespace
