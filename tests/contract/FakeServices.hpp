#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <boost/uuid/uuid.hpp>

#include "contributors/kdzero/LineData.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/Node.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace contract {

using fl::i18n::ustring;
using quenlith::build::markup::code::CodeElement;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::contributordata::LineContributorDataParser;
using quenlith::syntax::Marker;

/// Accepts the markers of one element and makes a node whose anchor id is the piece's text.
class PieceParser : public CodeElementParser {
 public:
  explicit PieceParser(ustring element) : element(std::move(element)) {}

  bool canParse(const Marker& marker) override { return marker.getElement() == element; }

  document::kdzero::Node parse(const kd::zero::Model& model, const CodeElement& piece) override {
    pieces.push_back(piece);
    auto node = document::kdzero::LiveAppLineNode::Builder(model).createLiveAppLineNode(
        boost::uuids::uuid{});
    node->setAnchorId(piece.text);
    return node;
  }

  std::vector<CodeElement> pieces;

 private:
  ustring element;
};

/// Contributes one line data for every marker of one element.
class ElementContributor : public LineContributorDataParser {
 public:
  ElementContributor(ustring element, ustring feature)
      : element(std::move(element)), feature(std::move(feature)) {}

  bool isApplicable(const Marker& marker) override { return marker.getElement() == element; }

  std::pair<ustring, contributors::kdzero::LineData> parse(const kd::zero::Model& model,
                                                           const Marker& /*marker*/) override {
    return {feature,
            contributors::kdzero::LineData::Builder(model).createLineData(boost::uuids::uuid{})};
  }

 private:
  ustring element;
  ustring feature;
};

/// Returns two lists that a test fills; the last code element parser is the default one.
class FakeProvider : public quenlith::build::markup::services::ParserServicesProvider {
 public:
  std::vector<std::shared_ptr<LineContributorDataParser>> getLineContributorDataParsers() override {
    if (failing) throw std::runtime_error("The bundle context is no longer valid");
    return contributors;
  }

  std::vector<std::shared_ptr<CodeElementParser>> getCodeElementParsers() override {
    return codeElementParsers;
  }

  bool failing = false;
  std::vector<std::shared_ptr<LineContributorDataParser>> contributors;
  std::vector<std::shared_ptr<CodeElementParser>> codeElementParsers{
      std::make_shared<quenlith::build::markup::code::PlainTextNodeParserImpl>()};
};

/// Returns the entry that a test sets for every marker.
class FakeAppendix : public quenlith::shared::appendix::AppendixBuilder {
 public:
  void addEntry(const Marker& marker) override { entry = marker; }
  ustring build() const override { return {}; }
  quenlith::shared::appendix::AppendixEntry findEntry(const Marker& marker) const override {
    asked.push_back(marker);
    return {u"ignored", entry};
  }

  std::optional<Marker> entry;
  mutable std::vector<Marker> asked;
};

/// Returns the text of a plain text node.
inline ustring textOf(const document::kdzero::Node& node) {
  const auto text = document::kdzero::PlainTextNode::castFrom(node);
  return text ? ustring(text->getText()) : ustring(u"not a plain text node");
}

/// Returns the text of each child of `node`: plain text unchanged, the piece of a marker in angle
/// brackets.
inline std::vector<ustring> childrenOf(const document::kdzero::Node& node) {
  std::vector<ustring> texts;
  for (std::size_t i = 0; i < node->getChildren().size(); ++i) {
    const document::kdzero::Node child = node->getChildren().at(i);
    const bool plain = static_cast<bool>(document::kdzero::PlainTextNode::castFrom(child));
    texts.push_back(plain ? textOf(child) : u"<" + ustring(child->getAnchorId()) + u">");
  }
  return texts;
}

}  // namespace contract
