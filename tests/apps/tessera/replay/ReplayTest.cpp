#include "tessera/replay/Replay.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "apps/tessera/support/FakeParser.hpp"
#include "apps/tessera/support/WrittenText.hpp"
#include "apps/tessera/support/nodes.hpp"
#include "quenlith/shared/logging/trace.hpp"
#include "tessera/replay/CommandReader.hpp"

namespace {

using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::shared::logging::trace;
using tessera::replay::CommandError;
using tessera::replay::CommandReader;

/// Executes commands with a fake parser named "P".
class Replay : public testing::Test {
 protected:
  /// Returns the answer to `command`, its line ending included.
  std::string run(std::u16string_view command) {
    replay.run(CommandReader(command).read());
    std::string answer = output.text();
    output.text().clear();
    return answer;
  }

  std::string errorOf(std::u16string_view command) {
    try {
      return run(command);
    } catch (const CommandError& error) {
      return std::to_string(error.column) + " " + error.what + "; " + error.remedy;
    }
  }

  std::shared_ptr<FakeParser> parser = std::make_shared<FakeParser>();
  quenlith::shared::appendix::MarkerAppendix appendix;
  WrittenText output;
  tessera::replay::Replay replay{{{"P", parser}}, appendix, output};
};

constexpr const char16_t* kCanParse =
    uR"({"op":"canParse","parser":"P","snippet":{"text":"t","type":{"group":1,"kind":3}}})";
constexpr const char16_t* kParse =
    uR"({"op":"parse","parser":"P","snippet":{"text":"t","type":{"group":0,"kind":0}}})";

TEST_F(Replay, AnswersCanParseWithTheRecordsOfTheCall) {
  parser->accepts = [](const Snippet& snippet) {
    trace("asked");
    return snippet.type.kind == 3;
  };
  EXPECT_EQ(run(kCanParse), "{\"canParse\":true,\"log\":[\"asked\"]}\n");
  parser->accepts = [](const Snippet&) { return false; };
  EXPECT_EQ(run(kCanParse), "{\"canParse\":false,\"log\":[]}\n");
}

TEST_F(Replay, AnswersParseWithTheResult) {
  parser->parses = [](auto&, const Snippet&) {
    trace("first");
    trace("\x1B");
    ParseResult result;
    result.type = {1, 3};
    result.flag = true;
    result.markerTypes = {u"%<@task>", u"%<@output>"};
    return result;
  };
  EXPECT_EQ(run(kParse),
            "{\"result\":{\"type\":{\"group\":1,\"kind\":3},\"flag\":true,"
            "\"markerTypes\":[\"%<@output>\",\"%<@task>\"]},\"log\":[\"first\",\"\\u001b\"]}\n");
}

TEST_F(Replay, AnswersResetWithTheRecords) {
  parser->onReset = [] { trace("gone"); };
  EXPECT_EQ(run(uR"({"op":"reset","parser":"P"})"), "{\"log\":[\"gone\"]}\n");
  EXPECT_EQ(parser->resets, 1);
}

TEST_F(Replay, AnswersACallThatThrowsWithItsMessageAndContinues) {
  parser->parses = [](auto&, const Snippet&) -> ParseResult {
    trace("before");
    throw std::runtime_error("broken \"here\"");
  };
  EXPECT_EQ(run(kParse), "{\"error\":\"broken \\\"here\\\"\",\"log\":[\"before\"]}\n");
  parser->accepts = [](const Snippet&) -> bool { throw 1; };
  EXPECT_EQ(run(kCanParse),
            "{\"error\":\"an exception of a kind that is not known\",\"log\":[]}\n");
  EXPECT_EQ(run(uR"({"op":"nodes"})"), "{\"nodes\":[]}\n");
}

TEST_F(Replay, KeepsTheAuxiliaryTextUntilAnotherIsGiven) {
  run(kCanParse);
  run(uR"({"op":"parse","parser":"P","snippet":{"text":"a","type":{"group":0,"kind":0},"auxiliaryText":"x"}})");
  run(uR"({"op":"document"})");
  run(kCanParse);
  run(uR"({"op":"canParse","parser":"P","snippet":{"text":"a","type":{"group":0,"kind":0},"auxiliaryText":""}})");
  ASSERT_EQ(parser->asked.size(), 3u);
  EXPECT_EQ(parser->asked[0].auxiliaryText, u"");
  EXPECT_EQ(parser->parsed[0].auxiliaryText, u"x");
  EXPECT_EQ(parser->asked[1].auxiliaryText, u"x");
  EXPECT_EQ(parser->asked[2].auxiliaryText, u"");
}

TEST_F(Replay, ShowsTheWholeDocumentAndTheLinesThatTheHostAdds) {
  EXPECT_EQ(run(uR"({"op":"addLine","text":"a\ud800"})"), "{}\n");
  const std::string line =
      "{\"kind\":\"LineNode\",\"anchorId\":\"\",\"children\":[{\"kind\":\"PlainTextNode\",\"text\":"
      "\"a"
      "\xEF\xBF\xBD\",\"anchorId\":\"\",\"children\":[],\"contributorData\":[],\"parserFailures\":["
      "]}],"
      "\"contributorData\":[],\"parserFailures\":[]}";
  EXPECT_EQ(run(uR"({"op":"nodes"})"), "{\"nodes\":[" + line + "]}\n");
  EXPECT_EQ(run(uR"({"op":"document"})"), "{}\n");
  EXPECT_EQ(run(uR"({"op":"nodes"})"), "{\"nodes\":[]}\n");
}

TEST_F(Replay, SetsTheViewOfATaskAndNothingElse) {
  parser->parses = [](auto& document, const Snippet&) {
    auto header = nodes::makeTaskLine(document.getModel());
    auto task = nodes::makeTask(document.getModel());
    tessera::contentmodel::kdzero::LiveTaskData data;
    task->setLiveTaskData(data.setText(u"kept").setView(u"old"));
    header->getChildrenMutable().add(task);
    document.addChild(header);
    return ParseResult();
  };
  run(kParse);
  EXPECT_EQ(run(uR"({"op":"setView","node":0,"view":"new"})"), "{}\n");
  const std::string document = run(uR"({"op":"nodes"})");
  EXPECT_NE(document.find("\"text\":\"kept\""), document.npos);
  EXPECT_NE(document.find("\"view\":\"new\""), document.npos);
}

TEST_F(Replay, ReplacesTheAppendix) {
  EXPECT_EQ(run(uR"({"op":"appendix","entries":["# <@task#a>"]})"), "{}\n");
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#a>\n");
  run(uR"({"op":"appendix","entries":[]})");
  EXPECT_EQ(appendix.build(), u"");
}

TEST_F(Replay, AParserOrNodeThatDoesNotExistEndsTheRun) {
  const std::string kCount = "count the top-level nodes from 0, as \"nodes\" shows them";
  EXPECT_EQ(
      errorOf(uR"({"op":"reset","parser":"Q"})"),
      "24 there is no parser \"Q\"; name \"P\", or start the bundle that has it with --bundle");
  EXPECT_EQ(errorOf(uR"({"op":"setView","node":0,"view":""})"),
            "24 the node 0 is not the header of a task; " + kCount);
  run(uR"({"op":"addLine","text":""})");
  EXPECT_EQ(errorOf(uR"({"op":"setView","node":0,"view":""})"),
            "24 the node 0 is not the header of a task; " + kCount);
  parser->parses = [](auto& document, const Snippet&) {
    document.addChild(nodes::makeTaskLine(document.getModel()));
    auto odd = nodes::makeTaskLine(document.getModel());
    odd->getChildrenMutable().add(nodes::makeText(document.getModel(), u"no task"));
    document.addChild(odd);
    return ParseResult();
  };
  run(kParse);
  EXPECT_EQ(errorOf(uR"({"op":"setView","node":1,"view":""})"),
            "24 the node 1 is not the header of a task; " + kCount);
  EXPECT_EQ(errorOf(uR"({"op":"setView","node":2,"view":""})"),
            "24 the node 2 is not the header of a task; " + kCount);
}

}  // namespace
