#include <gtest/gtest.h>

#include <boost/uuid/uuid.hpp>
#include <limits>
#include <string>

#include "apps/tessera/support/ParsedDocument.hpp"
#include "apps/tessera/support/WordNode.hpp"
#include "apps/tessera/support/nodes.hpp"
#include "platform/model/NoteNode.hpp"
#include "tessera/formats/DocumentJson.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace {

using document::kdzero::Node;
using foundation::json::Form;
using foundation::json::Value;
using tessera::formats::DocumentJson;
using tessera::formats::Records;
using tessera::pieces::ControlNode;
using tessera::pieces::OutputNode;

class DocumentWriters : public testing::Test, protected ParsedDocument {
 protected:
  std::string json(Form form = Form::kCompact, Records records = Records::kHidden) {
    DocumentJson(output, {form}, records).write(result());
    return std::exchange(output.text(), {});
  }

  WrittenText output;
};

TEST_F(DocumentWriters, AnEmptyDocumentHasEmptyLists) {
  EXPECT_EQ(json(), "{\"schemaVersion\":1,\"file\":\"a.py\",\"nodes\":[],\"lines\":[]}\n");
  EXPECT_EQ(
      json(Form::kIndented),
      "{\n  \"schemaVersion\": 1,\n  \"file\": \"a.py\",\n  \"nodes\": [],\n  \"lines\": []\n}\n");
}

TEST_F(DocumentWriters, FilesFollowOneAnother) {
  const std::string one = json(Form::kIndented);
  DocumentJson writer(output, {Form::kIndented}, Records::kHidden);
  writer.write(result());
  writer.write(result());
  EXPECT_EQ(output.text(), one + one);
}

TEST_F(DocumentWriters, EveryKeyOfEveryNodeIsWrittenInOrder) {
  auto line = nodes::makeLine(model());
  line->setAnchorId(u"anchor");
  line->getChildrenMutable().add(nodes::makeText(model(), u"x"));
  addLine(line);
  auto header = nodes::makeTaskLine(model());
  auto task = nodes::makeTask(model());
  task->setId(u"i");
  tessera::contentmodel::kdzero::LiveTaskData data;
  task->setLiveTaskData(data.setTaskId(u"1")
                            .setText(u"2")
                            .setAppIdentifier(u"3")
                            .setAppState(u"4")
                            .setAppVariables(u"5")
                            .setAppVariablesUserMap(u"6")
                            .setView(u"7")
                            .setExecutionModel(u"8")
                            .setAutoRun(u"9")
                            .setCollapsed(u"10")
                            .setNumCodeLines(65535));
  header->getChildrenMutable().add(task);
  addLine(header);
  const std::string rest = "\"contributorData\":[],\"parserFailures\":[]}";
  const std::string line1 =
      "{\"line\":1,\"parser\":\"P\",\"type\":{\"group\":0,\"kind\":0},\"flag\":false,"
      "\"markerTypes\":[],\"nodes\":[0]}";
  const std::string line2 =
      "{\"line\":2,\"parser\":\"P\",\"type\":{\"group\":0,\"kind\":0},\"flag\":false,"
      "\"markerTypes\":[],\"nodes\":[1]}";
  EXPECT_EQ(
      json(),
      "{\"schemaVersion\":1,\"file\":\"a.py\",\"nodes\":["
      "{\"kind\":\"LineNode\",\"anchorId\":\"anchor\",\"children\":["
      "{\"kind\":\"PlainTextNode\",\"text\":\"x\",\"anchorId\":\"\",\"children\":[]," +
          rest + "]," + rest +
          ",{\"kind\":\"LiveAppLineNode\",\"anchorId\":\"\",\"children\":["
          "{\"kind\":\"LiveAppIntegratedInlineNode\",\"id\":\"i\",\"liveTaskData\":{\"taskId\":"
          "\"1\","
          "\"text\":\"2\",\"appIdentifier\":\"3\",\"appState\":\"4\",\"appVariables\":\"5\","
          "\"appVariablesUserMap\":\"6\",\"view\":\"7\",\"executionModel\":\"8\",\"autoRun\":\"9\","
          "\"collapsed\":\"10\",\"numCodeLines\":65535},\"anchorId\":\"\",\"children\":[]," +
          rest + "]," + rest + "],\"lines\":[" + line1 + "," + line2 + "]}\n");
}

TEST_F(DocumentWriters, FailuresAndContributorDataAreWrittenWithAllTheirParts) {
  auto line = nodes::makeLine(model());
  failures::kdzero::MarkerInfo info;
  info.setMarkerId(u"m").setFeatureId(u"f").setSubFeatureId(u"s");
  failures::kdzero::ParserFailure failure;
  failure.setFailureId(u"rule").setMarkerInfo(info).setFailureData(
      {{"position", foundation::json::Array{Value(0.0), Value(18446744073709551615.0)}}});
  line->getParserFailuresMutable().add(failure);
  using namespace contributors::kdzero;
  auto contribution = NodeContributorData::Builder(model()).createNodeContributorData({});
  contribution->setContributingFeature(u"feature");
  auto lineData = LineData::Builder(model()).createLineData({});
  lineData->setData({{"b", Value()}, {"a", Value(std::numeric_limits<double>::infinity())}});
  contribution->getLineDataListMutable().add(lineData);
  line->getContributorDataMutable().add(contribution);
  addLine(line);
  const std::string text = json();
  EXPECT_NE(
      text.find(
          "\"contributorData\":[{\"contributingFeature\":\"feature\",\"lineData\":[{\"a\":null,"
          "\"b\":null}]}],\"parserFailures\":[{\"failureId\":\"rule\",\"markerInfo\":{"
          "\"markerId\":\"m\",\"featureId\":\"f\",\"subFeatureId\":\"s\"},\"failureData\":{"
          "\"position\":[0,18446744073709552000]}}]"),
      text.npos)
      << text;
}

TEST_F(DocumentWriters, APieceIsWrittenWithThePartsOfItsMarker) {
  auto line = nodes::makeLine(model());
  auto output = OutputNode::Builder(model()).createOutputNode({});
  output->setText(u"x");
  output->setAnchorId(u"a");
  line->getChildrenMutable().add(output);
  auto control = ControlNode::Builder(model()).createControlNode({});
  control->setText(u"1");
  control->setMarker(quenlith::syntax::Marker(
      u"# <@control:slider#\"c\\u001b\" {\"min\":0.5,\"max\":18446744073709551615}>"));
  control->setRange({4, 18446744073709551615U});
  line->getChildrenMutable().add(control);
  addLine(line);
  const std::string rest = "\"children\":[],\"contributorData\":[],\"parserFailures\":[]}";
  const std::string text = json();
  EXPECT_NE(
      text.find("\"children\":[{\"kind\":\"OutputNode\",\"text\":\"x\",\"id\":\"\",\"type\":\"\","
                "\"range\":[0,0],\"data\":{},\"anchorId\":\"a\"," +
                rest +
                ",{\"kind\":\"ControlNode\",\"text\":\"1\",\"id\":\"c\\u001b\",\"type\":\"slider\","
                "\"range\":[4,18446744073709551615],\"data\":{\"max\":18446744073709551615,"
                "\"min\":0.5},\"anchorId\":\"\"," +
                rest + "]"),
      text.npos)
      << text;
}

TEST_F(DocumentWriters, ANodeOfAnotherBundleHasTheNameOfItsClassAndItsText) {
  const Node note = example::NoteNode::Builder(model()).createNoteNode({});
  note->setAnchorId(u"a");
  const WordNode word = WordNode::Builder(model()).createWordNode({});
  word->setText(u"w");
  word->extra = std::u16string(100, u'x');
  note->getChildrenMutable().add(word);
  addLine(note);
  const std::string rest = "\"contributorData\":[],\"parserFailures\":[]}";
  const std::string text = json();
  EXPECT_NE(text.find("[{\"kind\":\"NoteNode\",\"anchorId\":\"a\",\"children\":["
                      "{\"kind\":\"WordNode\",\"text\":\"w\",\"anchorId\":\"\",\"children\":[]," +
                      rest + "]," + rest + "]"),
            text.npos)
      << text;
}

TEST_F(DocumentWriters, TextIsEscapedAsDocumented) {
  auto line = nodes::makeLine(model());
  std::u16string text = u"\"\\/\b\f\n\r\t\u0001\u001F\u007F\u0080\u009F\u00A0 ä你🏆\u2028<&>";
  text += char16_t{0xD800};
  line->getChildrenMutable().add(nodes::makeText(model(), text));
  addLine(line);
  file = "a\xFF\n.py";
  const std::string written = json();
  EXPECT_NE(
      written.find(
          "\"text\":\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\\u007f\\u0080\\u009f\xC2\xA0 ä你🏆"
          "\xE2\x80\xA8<&>\xEF\xBF\xBD\""),
      written.npos)
      << written;
  EXPECT_NE(written.find("\"file\":\"a\xEF\xBF\xBD\\n.py\""), written.npos) << written;
}

TEST_F(DocumentWriters, ALineShowsItsResultAndTheRecordsOnlyWhenAsked) {
  tessera::session::LineOutcome outcome;
  outcome.parser = 1;
  outcome.result.type = {2, 3};
  outcome.result.flag = true;
  outcome.result.markerTypes = {u"%<@task>", u"%<@output>"};
  outcome.log = {"one", "\x1B"};
  addLine(nodes::makeLine(model()), outcome);
  const std::string line =
      "{\"line\":1,\"parser\":\"\",\"type\":{\"group\":2,\"kind\":3},\"flag\":true,"
      "\"markerTypes\":[\"%<@output>\",\"%<@task>\"],\"nodes\":[0]";
  EXPECT_NE(json().find(line + "}]}"), std::string::npos);
  EXPECT_NE(json(Form::kCompact, Records::kShown).find(line + ",\"log\":[\"one\",\"\\u001b\"]}]}"),
            std::string::npos);
}

TEST_F(DocumentWriters, PlainLinesAreWrittenLikeAnyOther) {
  std::string nodes = "\"nodes\":[";
  for (int number = 1; number <= 1111; ++number) {
    auto line = nodes::makeLine(model());
    const std::string text = std::to_string(number);
    line->getChildrenMutable().add(
        nodes::makeText(model(), std::u16string(text.begin(), text.end())));
    // Not plain, in between.
    if (number % 100 == 0) line->setAnchorId(u"here");
    addLine(line);
    nodes += std::string(number == 1 ? "" : ",") + "{\"kind\":\"LineNode\",\"anchorId\":\"" +
             (number % 100 == 0 ? "here" : "") +
             "\",\"children\":[{\"kind\":\"PlainTextNode\",\"text\":\"" + text +
             "\",\"anchorId\":\"\",\"children\":[],\"contributorData\":[],"
             "\"parserFailures\":[]}],\"contributorData\":[],\"parserFailures\":[]}";
  }
  const std::string end = json();
  const std::string written = output.all() + end;
  EXPECT_EQ(written.substr(written.find("\"nodes\""), nodes.size() + 1), nodes + "]");
}

TEST_F(DocumentWriters, SimilarLinesHaveConsecutiveNumbers) {
  parsers[0].name = "nodes 7";
  tessera::session::LineOutcome outcome;
  outcome.log = {"nodes", "\"nodes\":[8]"};
  std::string lines = "\"lines\":[";
  int nodeCount = 0;
  for (int number = 1; number <= 1111; ++number) {
    // Two lines in between differ; after one of them the number gains a digit.
    outcome.parser = number == 500 || number == 999 ? 1 : 0;
    const bool hasNode = number < 600 || number > 602;
    if (hasNode) {
      addLine(nodes::makeLine(model()), outcome);
    } else {
      parsed.lines.add(tessera::session::LineOutcome(outcome));
    }
    lines += std::string(number == 1 ? "" : ",") + "{\"line\":" + std::to_string(number) +
             ",\"parser\":\"" + parsers[outcome.parser].name +
             "\",\"type\":{\"group\":0,\"kind\":0},\"flag\":false,\"markerTypes\":[],\"nodes\":[" +
             (hasNode ? std::to_string(nodeCount++) : "") +
             "],\"log\":[\"nodes\",\"\\\"nodes\\\":[8]\"]}";
  }
  const std::string end = json(Form::kCompact, Records::kShown);
  const std::string written = output.all() + end;
  EXPECT_EQ(written.substr(written.find("\"lines\"")), lines + "]}\n");
}

TEST_F(DocumentWriters, SimilarLinesThatAddTwoNodesHaveTheirOwnIndices) {
  std::string lines = "\"lines\":[";
  for (int number = 1; number <= 12; ++number) {
    tessera::session::LineOutcome outcome;
    outcome.firstNode = parsed.document->getNumberOfChildren();
    outcome.nodeCount = 2;
    lines += std::string(number == 1 ? "" : ",") + "{\"line\":" + std::to_string(number) +
             ",\"parser\":\"P\",\"type\":{\"group\":0,\"kind\":0},\"flag\":false,"
             "\"markerTypes\":[],\"nodes\":[" +
             std::to_string(outcome.firstNode) + "," + std::to_string(outcome.firstNode + 1) + "]}";
    parsed.document->addChild(nodes::makeLine(model()));
    parsed.document->addChild(nodes::makeLine(model()));
    parsed.lines.add(std::move(outcome));
  }
  const std::string written = json();
  EXPECT_EQ(written.substr(written.find("\"lines\"")), lines + "]}\n");
}

TEST_F(DocumentWriters, IndentedSimilarLinesAreWrittenLikeAnyOther) {
  std::string lines = "  \"lines\": [\n";
  for (int number = 1; number <= 101; ++number) {
    addLine(nodes::makeLine(model()));
    lines += std::string(number == 1 ? "" : ",\n") +
             "    {\n      \"line\": " + std::to_string(number) +
             ",\n      \"parser\": \"P\",\n      \"type\": {\n        \"group\": 0,\n        "
             "\"kind\": 0\n      },\n      \"flag\": false,\n      \"markerTypes\": [],\n      "
             "\"nodes\": [\n        " +
             std::to_string(number - 1) + "\n      ]\n    }";
  }
  const std::string written = json(Form::kIndented);
  EXPECT_EQ(written.substr(written.find("  \"lines\"")), lines + "\n  ]\n}\n");
}

TEST_F(DocumentWriters, ALineMayAddNoNodeOrSeveral) {
  tessera::session::LineOutcome none;
  parsed.lines.add(std::move(none));
  tessera::session::LineOutcome two;
  two.nodeCount = 2;
  parsed.document->addChild(nodes::makeLine(model()));
  parsed.document->addChild(nodes::makeText(model(), u"top"));
  parsed.lines.add(std::move(two));
  const std::string written = json();
  EXPECT_NE(written.find("\"line\":1,"), written.npos);
  EXPECT_NE(written.find("\"nodes\":[]}"), written.npos);
  EXPECT_NE(written.find("\"nodes\":[0,1]}"), written.npos);
}

TEST_F(DocumentWriters, NodesMayNestVeryDeep) {
  constexpr int kDepth = 100000;
  auto top = nodes::makeLine(model());
  Node innermost = top;
  for (int i = 0; i < kDepth; ++i) {
    const Node child = nodes::makeLine(model());
    innermost->getChildrenMutable().add(child);
    innermost = child;
  }
  addLine(top);
  std::size_t count = 0;
  // Most of the text is flushed to the file while it is written.
  const std::string end = json();
  const std::string written = output.all() + end;
  for (auto at = written.find("LineNode"); at != written.npos;
       at = written.find("LineNode", at + 1)) {
    ++count;
  }
  EXPECT_EQ(count, kDepth + 1u);
}

}  // namespace
