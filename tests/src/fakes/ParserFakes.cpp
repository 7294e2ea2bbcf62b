#include "fakes/ParserFakes.hpp"

#include "document/kdzero/PlainTextNode.hpp"

namespace quenlith::test {

using build::markup::code::CodeElement;
using build::markup::code::CodeElementParser;
using build::markup::contributordata::LineContributorDataParser;
using contributors::kdzero::LineData;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using syntax::Marker;

bool FakeElementParser::canParse(const Marker& marker) {
  asked.push_back(marker);
  if (failsToAnswer) throw ServiceFailure();
  return marker.getElement() == accepted;
}

Node FakeElementParser::parse(const kd::zero::Model& model, const CodeElement& element) {
  parsed.push_back(element);
  if (failsToParse) throw ServiceFailure();
  if (makesNothing) return {};
  PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode({});
  node->setText(ownName + u"(" + element.text + u")");
  return node;
}

bool FakeContributor::isApplicable(const Marker& marker) {
  asked.push_back(marker);
  if (failsToAnswer) throw ServiceFailure();
  return marker.getElement() == applicable;
}

std::pair<ustring, LineData> FakeContributor::parse(const kd::zero::Model& model,
                                                    const Marker& marker) {
  if (failsToParse) throw ServiceFailure();
  if (makesNothing) return {ownName, LineData()};
  LineData data = LineData::Builder(otherModel ? otherModel : model).createLineData({});
  data->setData({{"by", fl::i18n::ustring_to_utf8(ownName)},
                 {"to", fl::i18n::ustring_to_utf8(marker.getId())}});
  return {ownName, data};
}

std::vector<std::shared_ptr<LineContributorDataParser>>
FakeProvider::getLineContributorDataParsers() {
  calls.emplace_back("contributors");
  if (failsForContributors) throw ServiceFailure();
  return contributors;
}

std::vector<std::shared_ptr<CodeElementParser>> FakeProvider::getCodeElementParsers() {
  calls.emplace_back("element parsers");
  if (failsForElementParsers) throw ServiceFailure();
  return elementParsers;
}

shared::appendix::AppendixEntry FakeAppendix::findEntry(const Marker& marker) const {
  if (failsAt && asked >= *failsAt) throw ServiceFailure();
  ++asked;
  for (const Marker& entry : entries) {
    if (entry.getElement() == marker.getElement() && entry.getId() == marker.getId()) {
      return {u"ignored", entry};
    }
  }
  return {};
}

FakeAppendix::~FakeAppendix() {
  if (atEnd) atEnd();
}

std::vector<ustring> childTexts(const Node& node) {
  std::vector<ustring> texts;
  for (const Node& child : node->getChildren()) {
    texts.emplace_back(PlainTextNode::castFrom(child)->getText());
  }
  return texts;
}

ustring kindText(const ustring& element) {
  return Marker(element).toString();
}

}  // namespace quenlith::test
