#pragma once

#include <boost/uuid/uuid.hpp>
#include <functional>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"

/// A snippet parser whose answers a test sets, and that records its calls.
class FakeParser final : public quenlith::build::markup::SnippetParser {
 public:
  using Document = document::kdzero::TesseraDocument;
  using ParseResult = quenlith::build::markup::ParseResult;
  using Snippet = quenlith::build::markup::Snippet;

  static void addNode(Document& document) {
    using ::document::kdzero::LineNode;
    document.addChild(LineNode::Builder(document.getModel()).createLineNode(boost::uuids::uuid()));
  }

  bool canParse(const Snippet& snippet) override {
    asked.push_back(snippet);
    return accepts(snippet);
  }
  ParseResult parse(std::shared_ptr<Document> document, const Snippet& snippet) override {
    parsed.push_back(snippet);
    return parses(*document, snippet);
  }
  void reset() override {
    ++resets;
    onReset();
  }

  std::function<bool(const Snippet&)> accepts = [](const Snippet&) { return true; };
  // Adds a node, as a parser must.
  std::function<ParseResult(Document&, const Snippet&)> parses = [](Document& document,
                                                                    const Snippet&) {
    addNode(document);
    return ParseResult();
  };
  std::function<void()> onReset = [] {};
  std::vector<Snippet> asked;
  std::vector<Snippet> parsed;
  int resets = 0;
};
