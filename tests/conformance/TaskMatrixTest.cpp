#include <gtest/gtest.h>

#include "conformance/TaskHost.hpp"

namespace quenlith::conformance {
namespace {

using Lines = std::vector<std::string>;

struct CallOfLine {
  ustring text;
  std::uint8_t kind;
};

/// One cell of the decision matrix: the calls that lead to the state, the call itself and its
/// results. Every block has pairs of "a" and "b"; "c" and the empty id have no partner.
struct MatrixCase {
  const char* name;
  std::vector<CallOfLine> before;
  CallOfLine call;
  Lines messages;
  int kind;
  /// The document after the call.
  Lines document;
  /// The count of the open task after one more plain line of kind 3.
  int countAfter;
};

const std::string kStart = "Parsing using the task parser";
const std::string kFirst = "Task marker found for first time";
const std::string kSeen = "Adding task marker to the list of seen markers";
const std::string kData = "Parsing live task appendix data";
const std::string kEntry = "finding Appendix Entry";
const std::string kHeader = "Adding Header node to tessera doc";
const std::string kSameLine = "Closing task found on same line, closing it now";
const std::string kLine = "In LineNodeParserService";
const std::string kMissing = "Building a missing task marker failure";
const std::string kOverlapping = "Building an overlapping task marker failure";
const std::string kEnd = "End of task found, cleaning up ";
const std::string kNoPair = "No matching task marker was found for ";

const ustring kA = u"x # <@task#a>";
const ustring kB = u"x # <@task#b>";
const ustring kC = u"x # <@task#c>";
const ustring kTwice = u"x # <@task#a> # <@task#a>";
const ustring kTwiceAtStart = u"# <@task#a> # <@task#a>";
const ustring kUnequal = u"x # <@task#a> # <@task#c>";

const std::vector<CallOfLine> kIdle = {};
const std::vector<CallOfLine> kOpen = {{kA, 0}};
// The index still refers to the header of an earlier task.
const std::vector<CallOfLine> kClosedBefore = {{kA, 0}, {kA, 3}};

const std::vector<MatrixCase> kCells = {
    // Idle.
    {"plain", kIdle, {u"x", 0}, {kStart, kFirst, kSeen, kLine}, 3, {"line"}, 2},
    {"unpaired",
     kIdle,
     {kC, 1},
     {kStart, kNoPair + "%<@task#c>", kLine, kMissing, kEntry},
     0,
     {"line missing_task_marker_pair"},
     1},
    {"paired, one",
     kIdle,
     {kA, 0},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kLine},
     3,
     {"header a 0", "line"},
     2},
    {"paired, unequal",
     kIdle,
     {kUnequal, 1},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kLine},
     3,
     {"header a 0", "line"},
     2},
    {"paired, equal behind text",
     kIdle,
     {kTwice, 0},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kSameLine, kEnd + "1", "", kLine},
     0,
     {"header a 1", "line"},
     1},
    {"paired, equal at the start",
     kIdle,
     {kTwiceAtStart, 0},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kSameLine, kEnd + "0", ""},
     0,
     {"header a 0"},
     1},
    {"kind > 1, id and T empty, one",
     kIdle,
     {u"x # <@task>", 2},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kLine},
     3,
     {"header  0", "line"},
     2},
    {"kind > 1, id and T empty, equal behind text",
     kIdle,
     {u"x # <@task> # <@task>", 255},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kSameLine, kEnd + "1", "", kLine},
     0,
     {"header  1", "line"},
     1},
    {"kind > 1, id and T empty, equal at the start",
     kIdle,
     {u"# <@task> # <@task>", 3},
     {kStart, kFirst, kSeen, kData, kEntry, kHeader, "", kSameLine, kEnd + "0", ""},
     0,
     {"header  0"},
     1},
    {"kind > 1, other id, one",
     kIdle,
     {kA, 3},
     {kStart, kFirst, kSeen, kLine, kOverlapping, kEntry},
     3,
     {"line overlapping_task_marker"},
     2},
    {"kind > 1, other id, unequal",
     kIdle,
     {kUnequal, 3},
     {kStart, kFirst, kSeen, kLine, kOverlapping, kEntry},
     3,
     {"line overlapping_task_marker"},
     2},
    {"kind > 1, other id, equal behind text, no header",
     kIdle,
     {kTwice, 3},
     {kStart, kFirst, kSeen, kSameLine, kEnd + "1", kLine, kOverlapping, kEntry},
     0,
     {"line overlapping_task_marker"},
     1},
    {"kind > 1, other id, equal at the start, no header",
     kIdle,
     {kTwiceAtStart, 3},
     {kStart, kFirst, kSeen, kSameLine, kEnd + "0"},
     0,
     {},
     1},
    {"kind > 1, other id, equal behind text, header left over",
     kClosedBefore,
     {kTwice, 3},
     {kStart, kFirst, kSeen, kSameLine, kEnd + "1", "", kLine, kOverlapping, kEntry},
     0,
     {"header a 1", "line", "line", "line overlapping_task_marker"},
     1},
    {"kind > 1, other id, equal at the start, header left over",
     kClosedBefore,
     {kTwiceAtStart, 3},
     {kStart, kFirst, kSeen, kSameLine, kEnd + "0", ""},
     0,
     {"header a 0", "line", "line"},
     1},
    // Open.
    {"open, plain", kOpen, {u"x", 0}, {kStart, kLine}, 3, {"header a 0", "line", "line"}, 3},
    {"open, unpaired",
     kOpen,
     {kC, 0},
     {kStart, kNoPair + "%<@task#c>", kLine, kMissing, kEntry},
     3,
     {"header a 0", "line", "line missing_task_marker_pair"},
     2},
    {"open, paired, same id",
     kOpen,
     {kA, 0},
     {kStart, kEnd + "2", "", kLine},
     0,
     {"header a 2", "line", "line"},
     1},
    {"open, paired, other id",
     kOpen,
     {kB, 1},
     {kStart, kEnd + "2", "", kLine},
     0,
     {"header a 2", "line", "line"},
     1},
    {"open, kind > 1, id equals T",
     kOpen,
     {kA, 2},
     {kStart, kEnd + "2", "", kLine},
     0,
     {"header a 2", "line", "line"},
     1},
    {"open, kind > 1, two equal ones of T at the start",
     kOpen,
     {kTwiceAtStart, 3},
     {kStart, kEnd + "2", "", kLine},
     0,
     {"header a 2", "line", "line"},
     1},
    {"open, kind > 1, other id",
     kOpen,
     {kB, 3},
     {kStart, kLine, kOverlapping, kEntry},
     3,
     {"header a 0", "line", "line overlapping_task_marker"},
     3},
    {"open, kind > 1, two equal ones of another id",
     kOpen,
     {u"# <@task#b> # <@task#b>", 3},
     {kStart, kLine, kOverlapping, kEntry},
     3,
     {"header a 0", "line", "line overlapping_task_marker"},
     3},
};

// An idle parser starts a new count at the next plain line; otherwise the closing message of the
// line after it shows the count that was reached.
int countAfterOneMoreLine(TaskHost& host) {
  host.takeMessages();
  host.parse(u"more", 3);
  const bool wasIdle = host.takeMessages().at(1) == kFirst;
  host.parser.canParse(snippetOf(u""));
  host.parse(u"y # <@task#d>", 0, blockOf({u"d"}));
  for (const std::string& message : host.takeMessages()) {
    if (message.rfind(kEnd, 0) != 0) continue;
    const int counted = std::stoi(message.substr(kEnd.size())) - 1;
    return wasIdle ? 1 : counted;
  }
  return -1;
}

TEST(TaskMatrix, EveryCellFollowsTheRules) {
  const ustring block = blockOf({u"a", u"b"});
  for (const MatrixCase& cell : kCells) {
    SCOPED_TRACE(cell.name);
    TaskHost host;
    for (const CallOfLine& call : cell.before) host.parse(call.text, call.kind, block);
    host.takeMessages();
    const ParseResult result = host.parse(cell.call.text, cell.call.kind, block);
    EXPECT_EQ(host.takeMessages(), cell.messages);
    EXPECT_EQ(result.type, (SnippetType{0, static_cast<std::uint8_t>(cell.kind)}));
    EXPECT_FALSE(result.flag);
    EXPECT_EQ(host.summary(), cell.document);
    EXPECT_EQ(countAfterOneMoreLine(host), cell.countAfter);
  }
}

TEST(TaskMatrix, AnOverlappingIdHasNoPartnerLater) {
  for (const ustring& line : {kA, kUnequal, kTwice, kTwiceAtStart}) {
    TaskHost host;
    host.parse(line, 3);
    EXPECT_EQ(host.parse(kA, 0, blockOf({u"a"})).type.kind == 3,
              line != kTwice && line != kTwiceAtStart);
    EXPECT_EQ(host.summary().back(), "line missing_task_marker_pair");
  }
}

}  // namespace
}  // namespace quenlith::conformance
