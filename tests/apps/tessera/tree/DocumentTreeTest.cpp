#include "tessera/tree/DocumentTree.hpp"

#include <gtest/gtest.h>

#include <boost/uuid/uuid.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/tessera/support/ParsedDocument.hpp"
#include "apps/tessera/support/WordNode.hpp"
#include "apps/tessera/support/nodes.hpp"
#include "platform/model/NoteNode.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::Node;
using foundation::json::Object;
using foundation::json::Value;
using quenlith::syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;
using tessera::formats::Records;
using tessera::pieces::ControlNode;
using tessera::pieces::OutputNode;
using tessera::session::LineOutcome;
using tessera::tree::DocumentTree;
using tessera::tree::Symbols;
using tessera::tree::TreeStyle;

LineOutcome outcomeOfKind(std::uint8_t kind) {
  LineOutcome outcome;
  outcome.result.type.kind = kind;
  return outcome;
}

class DocumentTrees : public testing::Test, protected ParsedDocument {
 protected:
  LineNode lineWith(const std::vector<Node>& children) const {
    auto line = nodes::makeLine(model());
    for (const Node& child : children) line->getChildrenMutable().add(child);
    return line;
  }

  LineNode lineOf(std::u16string_view text) const { return lineWith({textOf(text)}); }

  Node textOf(std::u16string_view text) const { return nodes::makeText(model(), text); }

  OutputNode outputOf(std::u16string_view text, std::u16string_view id,
                      std::pair<std::uint64_t, std::uint64_t> range = {}) const {
    OutputNode node = OutputNode::Builder(model()).createOutputNode({});
    node->setText(text);
    node->setMarker(Marker(u"# <@output#\"" + std::u16string(id) + u"\">"));
    node->setRange(range);
    return node;
  }

  Node headerOf(const std::u16string& id, const LiveTaskData& data) const {
    auto header = nodes::makeTaskLine(model());
    auto task = nodes::makeTask(model());
    task->setId(id);
    task->setLiveTaskData(data);
    header->getChildrenMutable().add(task);
    return header;
  }

  static void fail(const Node& node, std::u16string_view id, std::u16string_view feature,
                   const Object& data) {
    failures::kdzero::MarkerInfo info;
    info.setMarkerId(u"m").setFeatureId(std::u16string(feature));
    failures::kdzero::ParserFailure failure;
    failure.setFailureId(std::u16string(id)).setMarkerInfo(info).setFailureData(data);
    node->getParserFailuresMutable().add(failure);
  }

  void contribute(const Node& node, const Object& data) const {
    using namespace contributors::kdzero;
    auto contribution = NodeContributorData::Builder(model()).createNodeContributorData({});
    contribution->setContributingFeature(u"feature");
    auto lineData = LineData::Builder(model()).createLineData({});
    lineData->setData(data);
    contribution->getLineDataListMutable().add(lineData);
    node->getContributorDataMutable().add(contribution);
  }

  /// Returns the rows below the heading, each with a line feed.
  std::string tree(Records records = Records::kHidden) {
    DocumentTree(output, style, records).write(result());
    const std::string all = output.all() + std::exchange(output.text(), {});
    return all.substr(all.find('\n') + 1);
  }

  WrittenText output;
  TreeStyle style{.color = false, .symbols = Symbols::kUnicode};
};

TEST_F(DocumentTrees, AFileBeginsWithItsName) {
  file = "a\xFF\n.py";
  DocumentTree(output, style, Records::kHidden).write(result());
  EXPECT_EQ(output.text(), "a\xEF\xBF\xBD\\n.py\n");
}

TEST_F(DocumentTrees, EachLineHasItsNumberAndItsText) {
  addLine(lineOf(u"x = 1  "));
  addLine(lineOf(u""));
  addLine(lineOf(u"  \"y\" \\ é"));
  EXPECT_EQ(tree(), "   1   x = 1  \n   2\n   3     \"y\" \\ é\n");
}

TEST_F(DocumentTrees, NumbersAreAlignedToTheLargest) {
  for (int i = 0; i < 10000; ++i) addLine(lineOf(u"x"));
  const std::string rows = tree();
  EXPECT_EQ(rows.substr(0, 10), "    1   x\n");
  EXPECT_EQ(rows.substr(rows.size() - 10), "10000   x\n");
}

TEST_F(DocumentTrees, CharactersThatATerminalDoesNotShowAreNumbersAndTabsAreBlanks) {
  addLine(lineOf(u"\tif (a)\t\tb <U+20> <"));
  addLine(lineOf(u"\tif (a)\t\tb\t"));
  addLine(lineOf(u"a\tb\u001B[2J"));
  addLine(lineOf(u"\u202E\u200B <U+200B> <U+> <U"));
  addLine(lineOf(u"\u009B" + std::u16string(1, char16_t{0xD800})));
  EXPECT_EQ(tree(),
            "   1           if (a)          b <U+003C>U+20> <\n"
            "   2           if (a)          b       \n"
            "   3   a       b<U+001B>[2J\n"
            "   4   <U+202E><U+200B> <U+003C>U+200B> <U+> <U\n"
            "   5   <U+009B><U+D800>\n");
}

TEST_F(DocumentTrees, APieceIsMarkedBelowItsTextWithWhatItsMarkerSays) {
  const ControlNode control = ControlNode::Builder(model()).createControlNode({});
  control->setText(u"15");
  control->setMarker(Marker(u"# <@control:slider#\"c d\" {\"min\":0.5,\"max\":\"\\u001b\"}>"));
  control->setRange({4, 6});
  addLine(lineWith({textOf(u"x = "), control, textOf(u"; y")}));
  addLine(lineWith({outputOf(u"z", u"o")}));
  EXPECT_EQ(tree(),
            "   1   x = 15; y\n"
            "           ~~ control:slider #\"c d\" {\"max\":\"\\u001b\",\"min\":0.5}\n"
            "   2   z\n"
            "       ~ output #o\n");
  EXPECT_NE(tree(Records::kShown).find("control:slider #\"c d\" [4,6] {"), std::string::npos);
}

TEST_F(DocumentTrees, MarksAreBelowTheirTextAfterTabsAndWideCharacters) {
  addLine(lineWith({textOf(u"中\te\u0301"), outputOf(u"\u200Bx", u"o"), textOf(u"")}));
  EXPECT_EQ(tree(),
            "   1   中      e\u0301<U+200B>x\n"
            "                ~~~~~~~~~ output #o\n");
}

TEST_F(DocumentTrees, PiecesOfOneMarkerShareItsLabel) {
  addLine(lineWith({textOf(u"f("), outputOf(u"a(", u"all", {2, 6}), outputOf(u"b", u"in", {4, 5}),
                    outputOf(u")", u"all", {2, 6}), textOf(u")")}));
  // Two markers that happen to look alike have different ranges.
  addLine(lineWith({outputOf(u"a", u"o", {0, 1}), outputOf(u"b", u"o", {1, 2})}));
  EXPECT_EQ(tree(),
            "   1   f(a(b))\n"
            "         ~~ ~ output #all\n"
            "           ~ output #in\n"
            "   2   ab\n"
            "       ~ output #o\n"
            "        ~ output #o\n");
}

TEST_F(DocumentTrees, APieceWithoutTextOfItsOwnStillHasItsLabel) {
  addLine(
      lineWith({textOf(u"e"), outputOf(u"\u0301", u"accent", {1, 2}), outputOf(u"", u"empty")}));
  EXPECT_EQ(tree(),
            "   1   e\u0301\n"
            "       output #accent\n"
            "       output #empty\n");
}

TEST_F(DocumentTrees, ATaskIsABracketBelowItsIdTextAndSettings) {
  LiveTaskData data;
  data.setTaskId(u"t").setText(u"Fit \"it\"").setAppIdentifier(u"fit.json").setAutoRun(u"true");
  data.setCollapsed(u"false")
      .setExecutionModel(u"false")
      .setAppState(u"{\"a\":1}")
      .setView(u"two words")
      .setNumCodeLines(3);
  addLine({headerOf(u"t", data), lineOf(u"a")}, outcomeOfKind(3));
  addLine(lineOf(u"b"), outcomeOfKind(3));
  addLine(lineOf(u""));
  addLine(lineOf(u"c"));
  EXPECT_EQ(tree(),
            "     ┌ task #t \"Fit \\\"it\\\"\", 3 lines\n"
            "     │   taskClassDefFile fit.json, run false, autorun true, appState {\"a\":1}, "
            "view \"two words\"\n"
            "   1 │ a\n"
            "   2 │ b\n"
            "   3 └\n"
            "   4   c\n");
}

TEST_F(DocumentTrees, NotesOfALineInATaskAreInItsBracket) {
  LiveTaskData data;
  auto first = lineOf(u"a");
  fail(first, u"rule", u"", {});
  addLine({headerOf(u"", data), first}, outcomeOfKind(3));
  auto last = lineOf(u"b");
  fail(last, u"rule", u"", {});
  addLine(last);
  style.symbols = Symbols::kAscii;
  const std::string failure = "failure: a parser reports \"rule\" for the marker \"m\" [rule]\n";
  EXPECT_EQ(tree(), "     / task\n   1 | a\n     | " + failure + "   2 \\ b\n       " + failure);
}

TEST_F(DocumentTrees, ATaskOfOneLineClosesAtOnceAndOneWithoutAnEndStaysOpen) {
  LiveTaskData data;
  data.setNumCodeLines(1);
  addLine({headerOf(u"one", data), lineOf(u"a")});
  // Without a line node.
  addLine(headerOf(u"none", LiveTaskData()));
  addLine(lineOf(u"b"));
  addLine({headerOf(u"open", LiveTaskData()), lineOf(u"c")}, outcomeOfKind(3));
  addLine(lineOf(u"d"), outcomeOfKind(3));
  EXPECT_EQ(tree(),
            "     ┌ task #one, 1 line\n"
            "   1 └ a\n"
            "     ┌ task #none\n"
            "   2 └\n"
            "   3   b\n"
            "     ┌ task #open\n"
            "   4 │ c\n"
            "   5 │ d\n");
}

TEST_F(DocumentTrees, ATaskThatStaysOpenEndsWithItsFile) {
  addLine({headerOf(u"open", LiveTaskData()), lineOf(u"c")}, outcomeOfKind(3));
  DocumentTree writer(output, style, Records::kHidden);
  writer.write(result());
  ParsedDocument next;
  next.addLine(nodes::makeLine(next.model()));
  output.text().clear();
  writer.write(next.result());
  EXPECT_EQ(output.text(), "a.py\n   1\n");
}

TEST_F(DocumentTrees, AnAnchorAndContributorDataAreBelowTheLine) {
  auto line = lineOf(u"x");
  line->setAnchorId(u"here");
  contribute(line, {{"b", Value()}, {"a", Value(1.5)}});
  addLine(line);
  auto other = lineOf(u"y");
  other->setAnchorId(u"two words");
  addLine(other);
  EXPECT_EQ(tree(),
            "   1   x\n"
            "       ⚓ here\n"
            "       feature: {\"a\":1.5,\"b\":null}\n"
            "   2   y\n"
            "       ⚓ \"two words\"\n");
}

TEST_F(DocumentTrees, ATreeOfAsciiSymbolsHasNoOthers) {
  auto line = lineOf(u"x");
  line->setAnchorId(u"here");
  addLine({headerOf(u"t", LiveTaskData()), line});
  addLine(lineOf(u"1234567890123456"));
  style.symbols = Symbols::kAscii;
  style.columns = 20;
  EXPECT_EQ(tree(),
            "     / task #t\n"
            "   1 \\ x\n"
            "       anchor here\n"
            "   2   1234567890123\n"
            "   >     456\n");
}

TEST_F(DocumentTrees, AFailureIsExplainedAsByCheckWithItsDataInWords) {
  using foundation::json::Array;
  const auto position = [](double begin, double end) {
    return Object{{"position", Array{Value(begin), Value(end)}}};
  };
  auto line = lineOf(u"x");
  fail(line, u"invalid_position_data", u"output", position(5, 4));
  fail(line, u"invalid_position_data", u"output", position(4, 4));
  fail(line, u"invalid_position_data", u"output", position(0, 400));
  // As doubles, these numbers are equal; the marker's may differ.
  fail(line, u"invalid_position_data", u"output", position(0x1p53, 0x1p53));
  fail(line, u"missing_task_marker_pair", u"task",
       {{"text", Value("a\nb")}, {"depth", Value(2.0)}});
  fail(line, u"overlapping_task_marker", u"task", {});
  fail(line, u"rule", u"control", {{"why", Value("because")}});
  addLine(line);
  EXPECT_EQ(
      tree(),
      "   1   x\n"
      "       failure: the range [5,4] ends before it begins (output marker \"m\") "
      "[invalid_position_data]\n"
      "       failure: the range [4,4] is empty: the second number is the position after the last "
      "character (output marker \"m\") [invalid_position_data]\n"
      "       failure: the range of the output marker \"m\" cannot be used: [0,400] "
      "[invalid_position_data]\n"
      "       failure: the range of the output marker \"m\" cannot be used: "
      "[9007199254740992,9007199254740992] [invalid_position_data]\n"
      "       failure: the task marker \"m\" has no partner (its settings: depth 2, text "
      "\"a\\nb\") "
      "[missing_task_marker_pair]\n"
      "       failure: the task marker \"m\" is inside another task [overlapping_task_marker]\n"
      "       failure: a parser reports \"rule\" for the control marker \"m\" (why \"because\") "
      "[rule]\n");
}

TEST_F(DocumentTrees, OnATerminalTheFailuresOfAFileAreCounted) {
  auto line = lineOf(u"x");
  fail(line, u"rule", u"", {});
  addLine({headerOf(u"open", LiveTaskData()), line}, outcomeOfKind(3));
  const std::string rows = tree();
  style.isTerminal = true;
  EXPECT_EQ(tree(), rows + "       1 failure; \"tessera check\" says more\n");
  DocumentTree writer(output, style, Records::kHidden);
  fail(line, u"other", u"", {});
  writer.write(result());
  EXPECT_TRUE(output.text().ends_with("\n       2 failures; \"tessera check\" says more\n"));
  // The next file is counted from the beginning.
  output.text().clear();
  ParsedDocument next;
  next.addLine(nodes::makeLine(next.model()));
  writer.write(next.result());
  EXPECT_EQ(output.text(), "a.py\n   1\n");
}

TEST_F(DocumentTrees, LongValuesAreCutUnlessEverythingIsShown) {
  auto line = lineOf(u"x");
  contribute(line, {{"k", Value(std::string(500, 'v'))}});
  addLine(line);
  const std::string cut = "       feature: {\"k\":\"" + std::string(90, 'v') + "...\n";
  EXPECT_EQ(tree(), "   1   x\n" + cut);
  EXPECT_NE(tree(Records::kShown).find(std::string(500, 'v') + "\"}\n"), std::string::npos);
}

TEST_F(DocumentTrees, ANodeOfAnotherBundleHasTheNameOfItsClassAndItsText) {
  const Node note = example::NoteNode::Builder(model()).createNoteNode({});
  note->setAnchorId(u"a");
  const WordNode inner = WordNode::Builder(model()).createWordNode({});
  inner->setText(u"in \u001B");
  note->getChildrenMutable().add(inner);
  const WordNode word = WordNode::Builder(model()).createWordNode({});
  word->setText(u"word");
  addLine(lineWith({textOf(u"a "), word, note}));
  EXPECT_EQ(tree(),
            "   1   a word\n"
            "         ~~~~ WordNode\n"
            "       NoteNode\n"
            "         ⚓ a\n"
            "         WordNode \"in \\u001b\"\n");
}

TEST_F(DocumentTrees, NodesOfALineThatAreNotLinesFollowAnEmptyRow) {
  addLine({lineOf(u"one"), lineOf(u"two")});
  addLine({textOf(u"top"), textOf(u"more")});
  parsed.lines.add({});
  EXPECT_EQ(tree(),
            "   1   one\n"
            "   1   two\n"
            "   2\n"
            "       PlainTextNode \"top\"\n"
            "       PlainTextNode \"more\"\n"
            "   3\n");
}

TEST_F(DocumentTrees, EverythingAboutATextNodeIsShown) {
  const Node text = textOf(u"x");
  text->setAnchorId(u"here");
  fail(text, u"rule", u"", {});
  text->getChildrenMutable().add(outputOf(u"y", u"o"));
  addLine(lineWith({text}));
  EXPECT_EQ(tree(),
            "   1   x\n"
            "       ~ PlainTextNode\n"
            "         ⚓ here\n"
            "         failure: a parser reports \"rule\" for the marker \"m\" [rule]\n"
            "         output #o \"y\"\n");
}

TEST_F(DocumentTrees, TheResultAndTheRecordsOfALineAreShownOnlyWhenAsked) {
  LineOutcome outcome;
  outcome.parser = 1;
  outcome.result.type = {2, 3};
  outcome.result.flag = true;
  outcome.result.markerTypes = {u"%<@task>", u"%<@output>"};
  outcome.log = {"one", "\x1B"};
  addLine(lineOf(u"x"), outcome);
  addLine(lineOf(u"y"));
  EXPECT_EQ(tree(), "   1   x\n   2   y\n");
  EXPECT_EQ(tree(Records::kShown),
            "   1   x\n"
            "           parser without a name, type 2/3, flag, markers %<@output> %<@task>\n"
            "           log: one\n"
            "           log: \\u001b\n"
            "   2   y\n"
            "           parser P, type 0/0\n");
}

TEST_F(DocumentTrees, ALongLineIsFoldedAfterABlankAndMarksFollowTheirRow) {
  style.columns = 30;
  addLine(
      lineWith({textOf(u"first second "), outputOf(u"third fourth fifth", u"o"), textOf(u" x")}));
  EXPECT_EQ(tree(),
            "   1   first second third \n"
            "                    ~~~~~~\n"
            "   ↪     fourth fifth x\n"
            "         ~~~~~~~~~~~~\n"
            "         output #o\n");
}

TEST_F(DocumentTrees, ALineWithTabsIsFoldedByTheColumnsThatItTakes) {
  style.columns = 25;
  addLine(lineOf(u"\t1234567890"));
  addLine(lineOf(u"\t1234567890a"));
  EXPECT_EQ(tree(),
            "   1           1234567890\n"
            "   2           1234567890\n"
            "   ↪     a\n");
}

TEST_F(DocumentTrees, ALongNameOfAFileIsFolded) {
  style.columns = 20;
  file = "folder/" + std::string(20, 'x');
  DocumentTree(output, style, Records::kHidden).write(result());
  EXPECT_EQ(output.text(), "folder/xxxxxxxxxxxxx\n  xxxxxxx\n");
}

TEST_F(DocumentTrees, ALongNoteIsFolded) {
  style.columns = 40;
  auto line = lineOf(u"x");
  fail(line, u"rule", u"control", {});
  addLine(line);
  EXPECT_EQ(tree(),
            "   1   x\n"
            "       failure: a parser reports \"rule\" \n"
            "         for the control marker \"m\" \n"
            "         [rule]\n");
}

TEST_F(DocumentTrees, WithColorsPiecesAreUnderlined) {
  style.color = true;
  auto line = lineWith({textOf(u"a "), outputOf(u"\u200Bb", u"o")});
  fail(line, u"rule", u"", {});
  addLine({headerOf(u"t", LiveTaskData()), line});
  EXPECT_EQ(tree(),
            "     \x1b[32m┌\x1b[0m \x1b[1;32mtask\x1b[0m\x1b[32m #t\x1b[0m\n"
            "   \x1b[2m1\x1b[0m \x1b[32m└\x1b[0m a \x1b[4;36m\x1b[7m<U+200B>\x1b[0m\x1b[4;36mb"
            "\x1b[0m\n"
            "         \x1b[36m╰ output #o\x1b[0m\n"
            "       \x1b[1;31mfailure\x1b[0m\x1b[31m: a parser reports \"rule\" for the marker "
            "\"m\" [rule]\x1b[0m\n");
}

TEST_F(DocumentTrees, MarksFarToTheRightDoNotMakeRowsLong) {
  std::vector<Node> children;
  for (int i = 0; i < 4000; ++i) {
    children.push_back(textOf(u"text "));
    children.push_back(outputOf(u"x", u"o", {i, i + 1}));
  }
  addLine(lineWith(children));
  const std::string rows = tree();
  EXPECT_NE(rows.find("\n       \"x\" output #o\n"), std::string::npos);
  EXPECT_LT(rows.size(), 4000 * 40u);
}

TEST_F(DocumentTrees, NodesMayNestVeryDeep) {
  constexpr int kDepth = 100000;
  auto top = nodes::makeLine(model());
  Node innermost = top;
  for (int i = 0; i < kDepth; ++i) {
    const Node child = nodes::makeLine(model());
    innermost->getChildrenMutable().add(child);
    innermost = child;
  }
  addLine(top);
  const std::string rows = tree();
  std::size_t count = 0;
  for (auto at = rows.find("LineNode"); at != rows.npos; at = rows.find("LineNode", at + 1)) {
    ++count;
  }
  EXPECT_EQ(count, kDepth);
  // Rows are indented only up to a limit, so the text does not grow with the square of the depth.
  EXPECT_LT(rows.size(), kDepth * 100u);
}

}  // namespace
