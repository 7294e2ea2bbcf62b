#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/tessera/support/WrittenText.hpp"
#include "tessera/formats/DocumentWriter.hpp"

/// A document that is filled line by line and then written.
class ParsedDocument {
 public:
  ParsedDocument() { parsed.document = std::make_shared<document::kdzero::TesseraDocument>(); }

  kd::zero::Model model() const { return parsed.document->getModel(); }

  /// Makes `node` the only one of the next line.
  void addLine(const document::kdzero::Node& node, tessera::session::LineOutcome outcome = {}) {
    addLine(std::vector{node}, std::move(outcome));
  }

  /// Like the other one, but with several nodes.
  void addLine(const std::vector<document::kdzero::Node>& nodes,
               tessera::session::LineOutcome outcome = {}) {
    outcome.firstNode = parsed.document->getNumberOfChildren();
    outcome.nodeCount = nodes.size();
    for (const auto& node : nodes) parsed.document->addChild(node);
    parsed.lines.add(std::move(outcome));
  }

  tessera::formats::FileResult result() const { return {file, parsed, parsers}; }

  std::string file = "a.py";
  tessera::session::ParsedSnippet parsed;
  std::vector<tessera::session::NamedParser> parsers{{"P", nullptr}, {"", nullptr}};
};
