#include "tessera/session/LineTable.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using tessera::session::LineOutcome;
using tessera::session::LineTable;

struct Seen {
  std::uint64_t number;
  std::uint64_t firstNode;
  std::size_t parser;
  std::uint64_t nodeCount;
  bool operator==(const Seen&) const = default;
};

std::vector<Seen> readBack(const LineTable& table) {
  std::vector<Seen> seen;
  LineTable::Cursor cursor(table);
  while (cursor.advance()) {
    const auto line = cursor.line();
    seen.push_back({line.number, line.firstNode, line.outcome.parser, line.outcome.nodeCount});
  }
  return seen;
}

LineOutcome outcome(std::size_t parser, std::uint64_t firstNode, std::uint64_t nodeCount) {
  LineOutcome made;
  made.parser = parser;
  made.firstNode = firstNode;
  made.nodeCount = nodeCount;
  return made;
}

TEST(LineTable, IsEmptyAtFirst) {
  EXPECT_TRUE(readBack(LineTable()).empty());
}

TEST(LineTable, ReturnsEveryLineWithItsNodes) {
  LineTable table;
  std::vector<Seen> expected;
  std::uint64_t nodes = 0;
  // Similar and different lines with zero, one and two nodes.
  const std::pair<std::size_t, std::uint64_t> lines[] = {{0, 1}, {0, 1}, {0, 1}, {1, 2}, {1, 2},
                                                         {0, 0}, {0, 0}, {0, 1}, {1, 1}, {0, 1}};
  for (const auto& [parser, count] : lines) {
    table.add(outcome(parser, nodes, count));
    expected.push_back({expected.size() + 1, nodes, parser, count});
    nodes += count;
  }
  EXPECT_EQ(readBack(table), expected);
}

TEST(LineTable, KeepsGapsBetweenTheNodesOfLines) {
  LineTable table;
  table.add(outcome(0, 0, 1));
  // Someone else added the node with the index 1.
  table.add(outcome(0, 2, 1));
  EXPECT_EQ(readBack(table), (std::vector<Seen>{{1, 0, 0, 1}, {2, 2, 0, 1}}));
}

TEST(LineTable, KeepsLinesThatDifferInOneFieldSeparate) {
  LineOutcome outcomes[6];
  outcomes[1].result.type.kind = 3;
  outcomes[2].result.type.group = 1;
  outcomes[3].result.flag = true;
  outcomes[4].result.markerTypes = {u"%<@task>"};
  outcomes[5].log = {"a record"};
  LineTable table;
  for (const LineOutcome& each : outcomes) table.add(LineOutcome(each));
  LineTable::Cursor cursor(table);
  for (const LineOutcome& each : outcomes) {
    ASSERT_TRUE(cursor.advance());
    const LineOutcome& back = cursor.line().outcome;
    EXPECT_EQ(back.result.type, each.result.type);
    EXPECT_EQ(back.result.flag, each.result.flag);
    EXPECT_EQ(back.result.markerTypes, each.result.markerTypes);
    EXPECT_EQ(back.log, each.log);
  }
  EXPECT_FALSE(cursor.advance());
}

}  // namespace
