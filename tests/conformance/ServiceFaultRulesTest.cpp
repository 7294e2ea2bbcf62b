#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "conformance/ParserHost.hpp"
#include "conformance/TaskHost.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "support/FailingAllocations.hpp"

// What is left when a service or a receiver of the records throws, at every call that a parser
// makes.

namespace quenlith::conformance {
namespace {

using build::markup::code::CodeSnippetParserImpl;
using oracle::DocumentRecord;
using oracle::kThrowing;
using test::liveAllocations;

/// Returns which of `kThrowing` the call throws; nothing if it returns.
std::optional<std::size_t> thrownBy(const std::function<void()>& call) {
  try {
    call();
    return std::nullopt;
  } catch (const oracle::ServiceFailure&) {
    return 0;
  } catch (int) {
    return 1;
  } catch (const std::bad_alloc&) {
    return 2;
  }
}

/// An exception of `kThrowing`, and the number of the call of a service that throws it.
struct Fault {
  std::size_t kind;
  std::size_t call;
};

void plan(oracle::World& world, const Fault& fault) {
  world.planFault(fault.call, kThrowing[fault.kind]);
}

/// Calls `scenario` for each kind of exception in each of its calls of services, until it returns
/// false: there is no such call. Expects that it leaves no memory allocated.
void forEachFault(const std::function<bool(const Fault&)>& scenario) {
  // What the libraries keep after the first use, also after the first exception.
  for (std::size_t kind = 0; kind < kThrowing.size(); ++kind) scenario({kind, 0});
  for (std::size_t kind = 0; kind < kThrowing.size(); ++kind) {
    std::size_t call = 0;
    for (bool hasCall = true; hasCall; ++call) {
      SCOPED_TRACE("exception " + std::to_string(kind) + " in call " + std::to_string(call));
      const std::ptrdiff_t before = liveAllocations();
      hasCall = scenario({kind, call});
      EXPECT_EQ(liveAllocations(), before);
      if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(call, 1U);
  }
}

WorldPlan planOfAllServices() {
  WorldPlan plan;
  plan.codeElementParsers = {takes(u"control"), takes(u"output")};
  plan.contributorParsers = {takes(u"output"), takes(u"text"), takes(u"output")};
  return plan;
}

// Lines.

const std::vector<ustring> kLines = {
    u"",
    u"a line of plain code",
    u"nothing but a marker that is not handled # <@text:note#n>",
    u"# <@output#only-a-marker>",
    // In parentheses: one line.
    (u"%%\\ 0123456789 # <@output#o [1,9]> # <@output#inner [3,5]> # <@output#wrong [9,2]> "
     u"# <@control:slider#c> # <@text:anchor#a> end"),
};

enum class Parser { kLineService, kDefaultParser };

ParseResult parseWith(Parser parser, ParserHost& host, const ustring& text) {
  if (parser == Parser::kLineService) return host.parseLine(text);
  return CodeSnippetParserImpl(host.provider).parse(host.document, snippetOf(text));
}

/// Lets a call of a service throw while `text` is parsed. Returns false if there is no such call.
bool parseWithFault(Parser parser, const ustring& text, const Fault& fault) {
  ParserHost host(planOfAllServices());
  const auto types = parseWith(parser, host, text).markerTypes;
  const DocumentRecord before = host.nodes();

  plan(host.world, fault);
  const auto thrown = thrownBy([&] { parseWith(parser, host, text); });
  if (!thrown) return false;
  EXPECT_EQ(*thrown, fault.kind);
  EXPECT_EQ(host.nodes(), before);
  EXPECT_TRUE(host.document->getModel().verify());
  EXPECT_EQ(host.document.use_count(), 1);
  EXPECT_EQ(host.provider.use_count(), 1);
  EXPECT_TRUE(host.provider->isSoleOwner());

  EXPECT_EQ(parseWith(parser, host, text).markerTypes, types);
  const DocumentRecord after = host.nodes();
  EXPECT_EQ(after.size(), 2U);
  EXPECT_EQ(after.back().failures, before.back().failures);
  EXPECT_EQ(childTexts(after.back()).size(), childTexts(before.back()).size());
  return true;
}

TEST(ServiceFaultRules, ALineIsParsedCompletelyOrNotAtAll) {
  for (const Parser parser : {Parser::kLineService, Parser::kDefaultParser}) {
    for (const ustring& line : kLines) {
      forEachFault([&](const Fault& fault) { return parseWithFault(parser, line, fault); });
    }
  }
}

TEST(ServiceFaultRules, AQuestionMayBeRepeated) {
  forEachFault([](const Fault& fault) {
    TaskHost host;
    CodeSnippetParserImpl defaultParser(host.provider);
    const Snippet snippet = snippetOf(u"# <@task#t>");
    plan(host.world, fault);
    const bool hasCall = thrownBy([&] {
                           (void)(defaultParser.canParse(snippet) && host.parser.canParse(snippet));
                         }).has_value();
    if (!hasCall) return false;
    EXPECT_TRUE(defaultParser.canParse(snippet));
    EXPECT_TRUE(host.parser.canParse(snippet));
    return true;
  });
}

// Tasks.

using Nodes = std::vector<std::string>;

/// A call of a service, and the nodes of the document when it throws.
struct CallRow {
  const char* call;
  Nodes nodes;
};

/// A line for a task parser, after others.
struct TaskLine {
  const char* name;
  std::vector<ustring> linesBefore;
  ustring text;
  /// Every call, in order.
  std::vector<CallRow> calls;
  Nodes nodes;
  /// How many of the calls leave the parser as it was before the line, so that the host may give it
  /// the line again. After the others it must reset the parser and discard the document.
  std::size_t repeatableCalls;
};

const ustring kOpening = u"x # <@task#t> # <@text:anchor#a>";
const ustring kClosing = u"# <@task#t>";
const Nodes kHeader = {"header t 0"};
const Nodes kAnchored = {"header t 0 @a"};
const Nodes kOpen = {"header t 0 @a", "line"};
const Nodes kClosed = {"header t 2 @a", "line"};

const std::vector<TaskLine> kTaskLines = {
    {"opening",
     {},
     kOpening,
     {{"log Parsing using the task parser", {}},
      {"log Task marker found for first time", {}},
      {"log Adding task marker to the list of seen markers", {}},
      {"log Parsing live task appendix data", {}},
      {"log finding Appendix Entry", {}},
      {"findEntry", {}},
      {"log Adding Header node to tessera doc", {}},
      {"log T", {}},
      {"log Found an anchor marker for the task", kHeader},
      {"log Adding text marker to the list of seen markers", kAnchored},
      {"log In LineNodeParserService", kAnchored},
      {"getLineContributorDataParsers", kAnchored},
      {"getCodeElementParsers", kAnchored},
      {"canParse", kAnchored},
      {"isApplicable", kAnchored},
      {"canParse", kAnchored},
      {"isApplicable", kAnchored},
      {"log Found an applicable line contributor data parser", kAnchored},
      {"contribute", kAnchored},
      {"parse", kAnchored}},
     kOpen,
     8},
    {"inside",
     {kOpening},
     u"y",
     {{"log Parsing using the task parser", kOpen},
      {"log In LineNodeParserService", kOpen},
      {"getLineContributorDataParsers", kOpen},
      {"getCodeElementParsers", kOpen},
      {"parse", kOpen}},
     {"header t 0 @a", "line", "line"},
     1},
    {"closing",
     {kOpening},
     kClosing,
     {{"log Parsing using the task parser", kOpen},
      {"log End of task found, cleaning up 2", kOpen},
      {"log T", kOpen},
      {"log In LineNodeParserService", kClosed},
      {"getLineContributorDataParsers", kClosed},
      {"getCodeElementParsers", kClosed},
      {"canParse", kClosed},
      {"isApplicable", kClosed},
      {"parse", kClosed}},
     {"header t 2 @a", "line", "line"},
     1},
    {"overlapping",
     {kOpening},
     u"# <@task#o>",
     {{"log Parsing using the task parser", kOpen},
      {"log In LineNodeParserService", kOpen},
      {"getLineContributorDataParsers", kOpen},
      {"getCodeElementParsers", kOpen},
      {"canParse", kOpen},
      {"isApplicable", kOpen},
      {"parse", kOpen},
      {"log Building an overlapping task marker failure", {"header t 0 @a", "line", "line"}},
      {"log finding Appendix Entry", {"header t 0 @a", "line", "line"}},
      {"findEntry", {"header t 0 @a", "line", "line"}}},
     {"header t 0 @a", "line", "line overlapping_task_marker"},
     1},
    {"unpaired",
     {},
     u"# <@task#u>",
     {{"log Parsing using the task parser", {}},
      {"log No matching task marker was found for %<@task#u>", {}},
      {"log In LineNodeParserService", {}},
      {"getLineContributorDataParsers", {}},
      {"getCodeElementParsers", {}},
      {"canParse", {}},
      {"isApplicable", {}},
      {"parse", {}},
      {"log Building a missing task marker failure", {"line"}},
      {"log finding Appendix Entry", {"line"}},
      {"findEntry", {"line"}}},
     {"line missing_task_marker_pair"},
     8},
    {"opening and closing after text",
     {},
     u"x # <@task#t> # <@task#t>",
     {{"log Parsing using the task parser", {}},
      {"log Task marker found for first time", {}},
      {"log Adding task marker to the list of seen markers", {}},
      {"log Parsing live task appendix data", {}},
      {"log finding Appendix Entry", {}},
      {"findEntry", {}},
      {"log Adding Header node to tessera doc", {}},
      {"log T", {}},
      {"log Closing task found on same line, closing it now", kHeader},
      {"log End of task found, cleaning up 1", kHeader},
      {"log T", kHeader},
      {"log In LineNodeParserService", {"header t 1"}},
      {"getLineContributorDataParsers", {"header t 1"}},
      {"getCodeElementParsers", {"header t 1"}},
      {"canParse", {"header t 1"}},
      {"isApplicable", {"header t 1"}},
      {"canParse", {"header t 1"}},
      {"isApplicable", {"header t 1"}},
      {"parse", {"header t 1"}}},
     {"header t 1", "line"},
     8},
};

/// The services and the lines of one task parser.
class FaultyTask {
 public:
  explicit FaultyTask(const TaskLine& line) : line(line), host(makePlan()) {
    host.world.setAppendix({u"%<@task#t {\"uniqueId\":\"T\"}>"});
  }

  /// Parses the lines before, in a new document.
  void begin() {
    host.parser.reset();
    host.document = std::make_shared<document::kdzero::TesseraDocument>();
    kind = 0;
    for (const ustring& text : line.linesBefore) parse(text);
    host.takeTrace();
  }
  void parseLine() { parse(line.text); }

  static WorldPlan makePlan() {
    WorldPlan plan;
    plan.codeElementParsers = {takes(u"output")};
    plan.contributorParsers = {takes(u"text")};
    return plan;
  }

  const TaskLine& line;
  TaskHost host;

 private:
  void parse(const ustring& text) {
    const bool isOfPair = line.text == kOpening || !line.linesBefore.empty();
    kind = host.parse(text, kind, isOfPair ? kOpening + kClosing : line.text).type.kind;
  }

  std::uint8_t kind = 0;
};

/// Lets a call of a service throw. Returns false if there is no such call.
bool parseWithFault(const TaskLine& line, const Fault& fault) {
  FaultyTask task(line);
  task.begin();
  plan(task.host.world, fault);
  const auto thrown = thrownBy([&] { task.parseLine(); });
  if (!thrown) {
    EXPECT_EQ(fault.call, line.calls.size());
    EXPECT_EQ(task.host.summary(), line.nodes);
    return false;
  }
  EXPECT_EQ(*thrown, fault.kind);
  EXPECT_LT(fault.call, line.calls.size());
  if (fault.call >= line.calls.size()) return false;
  const CallRow& row = line.calls[fault.call];
  EXPECT_EQ(task.host.takeTrace().back().substr(0, std::string(row.call).size()), row.call);
  EXPECT_EQ(task.host.summary(), row.nodes);
  EXPECT_TRUE(task.host.document->getModel().verify());
  EXPECT_EQ(task.host.document.use_count(), 1);
  EXPECT_EQ(task.host.provider.use_count(), 2) << "the host's reference and the parser's";

  if (fault.call >= line.repeatableCalls) task.begin();
  task.parseLine();
  EXPECT_EQ(task.host.summary(), line.nodes);
  return true;
}

TEST(ServiceFaultRules, ATaskLineIsParsedUpToTheCallThatThrows) {
  for (const TaskLine& line : kTaskLines) {
    SCOPED_TRACE(line.name);
    forEachFault([&](const Fault& fault) { return parseWithFault(line, fault); });
  }
}

}  // namespace
}  // namespace quenlith::conformance
