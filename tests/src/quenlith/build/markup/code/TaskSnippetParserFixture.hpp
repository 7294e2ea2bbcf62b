#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "fakes/ParserFakes.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

namespace quenlith::test {

using build::markup::ParseResult;
using build::markup::SnippetType;
using build::markup::code::TaskSnippetParserImpl;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;

/// Calls a task parser line by line.
class TaskSnippetParser : public testing::Test {
 protected:
  TaskSnippetParser() {
    provider->elementParsers = {defaultParser};
    parser = std::make_unique<TaskSnippetParserImpl>(appendix, provider);
  }

  ParseResult parse(const ustring& line, std::uint8_t kind, const ustring& block) {
    return parser->parse(document, {line, {0, kind}, block});
  }
  /// Parses the lines of a snippet as a host does, each with the type of the previous result.
  /// Returns the kinds of the results.
  std::vector<int> parseSnippet(const std::vector<ustring>& lines) {
    ustring block;
    for (const ustring& line : lines) block += line + u"\n";
    std::vector<int> kinds;
    SnippetType type;
    for (const ustring& line : lines) {
      type = parser->parse(document, {line, type, block}).type;
      kinds.push_back(type.kind);
    }
    return kinds;
  }

  Node node(std::uint64_t index) const { return document->getChildAt(index); }
  bool isHeader(std::uint64_t index) const { return bool(LiveAppLineNode::castFrom(node(index))); }
  /// The task node that is the first child of the node at `index`.
  LiveAppIntegratedInlineNode taskNode(std::uint64_t index) const {
    return taskNodeOf(node(index));
  }
  static LiveAppIntegratedInlineNode taskNodeOf(const Node& top) {
    return LiveAppIntegratedInlineNode::castFrom(top->getChildren().at(0));
  }
  int codeLines(std::uint64_t index) const {
    return taskNode(index)->getLiveTaskData().getNumCodeLines();
  }
  /// The failure ids of the node at `index`.
  std::vector<ustring> failures(std::uint64_t index) const {
    std::vector<ustring> ids;
    for (const ParserFailure& failure : node(index)->getParserFailures()) {
      ids.push_back(failure.getFailureId());
    }
    return ids;
  }

  /// Opens the task "t1" on the first line of the document.
  void openTask() {
    EXPECT_EQ(parse(kOpening, 0, kBlock).type.kind, 3);
    EXPECT_EQ(document->getNumberOfChildren(), 2u);
  }

  const ustring kOpening = u"# <@task#t1>";
  const ustring kBlock = u"# <@task#t1>\n# <@task#t1>";

  std::shared_ptr<FakeElementParser> defaultParser = std::make_shared<FakeElementParser>(u"D", u"");
  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<FakeAppendix> appendix = std::make_shared<FakeAppendix>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
  std::unique_ptr<TaskSnippetParserImpl> parser;
};

}  // namespace quenlith::test
