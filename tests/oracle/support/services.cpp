#include "oracle/support/services.hpp"

#include <algorithm>
#include <boost/uuid/nil_generator.hpp>
#include <optional>

#include "contributors/kdzero/LineData.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

namespace quenlith::oracle {

using build::markup::code::CodeElement;
using contributors::kdzero::LineData;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using kd::zero::Model;
using syntax::Marker;

PlainMarker plainMarker(const Marker& marker) {
  return {marker.getElement(), marker.getType(), marker.getId(), marker.getData()};
}

class WorldProvider::Pieces final : public CodeElementParser {
 public:
  Pieces(World& serviceWorld, std::size_t parserNumber, std::shared_ptr<Node> lastNodeOfAll)
      : world(serviceWorld), number(parserNumber), lastNode(std::move(lastNodeOfAll)) {}

  bool canParse(const Marker& marker) override {
    // The default parser is never asked: the twin's trace never contains this note.
    if (number == world.defaultParser()) world.note("canParse of the default parser");
    return number == world.defaultParser() || world.canParse(number, plainMarker(marker));
  }

  Node parse(const Model& model, const CodeElement& element) override {
    std::optional<PlainMarker> marker;
    if (element.marker) marker = plainMarker(*element.marker);
    const PieceResult result = world.parsePiece(number, element.text, marker, element.range);
    if (result.kind == PieceResult::Kind::kEmptyHandle) return {};
    if (result.kind == PieceResult::Kind::kLastOneAgain) return *lastNode;
    PlainTextNode node =
        PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::nil_uuid());
    node->setText(result.text);
    *lastNode = node;
    return node;
  }

 private:
  World& world;
  std::size_t number;
  std::shared_ptr<Node> lastNode;
};

class WorldProvider::Contributions final : public LineContributorDataParser {
 public:
  Contributions(World& serviceWorld, std::size_t parserNumber)
      : world(serviceWorld), number(parserNumber) {}

  bool isApplicable(const Marker& marker) override {
    return world.isApplicable(number, plainMarker(marker));
  }

  std::pair<ustring, LineData> parse(const Model& model, const Marker& marker) override {
    const Contribution contribution = world.contribute(number, plainMarker(marker));
    LineData data;
    if (contribution.data) {
      data = LineData::Builder(model).createLineData(boost::uuids::nil_uuid());
      data->setData(*contribution.data);
    }
    return {contribution.feature, data};
  }

 private:
  World& world;
  std::size_t number;
};

WorldProvider::WorldProvider(World& serviceWorld)
    : world(serviceWorld), lastNode(std::make_shared<Node>()) {
  const std::size_t last = world.defaultParser();
  for (std::size_t i = 0; i < last; ++i) {
    codeElementParsers.push_back(std::make_shared<Pieces>(world, i, lastNode));
  }
  codeElementParsers.push_back(makeDefaultParser());
  for (std::size_t i = 0; i < world.getPlan().contributorParsers.size(); ++i) {
    contributorParsers.push_back(std::make_shared<Contributions>(world, i));
  }
}

std::shared_ptr<CodeElementParser> WorldProvider::makeDefaultParser() const {
  const WorldPlan& plan = world.getPlan();
  if (!plan.hasDefaultParser) return nullptr;
  if (plan.builtInDefaultParser) {
    return std::make_shared<build::markup::code::PlainTextNodeParserImpl>();
  }
  return std::make_shared<Pieces>(world, world.defaultParser(), lastNode);
}

std::vector<std::shared_ptr<LineContributorDataParser>>
WorldProvider::getLineContributorDataParsers() {
  world.noteCall("getLineContributorDataParsers");
  return contributorParsers;
}

std::vector<std::shared_ptr<CodeElementParser>> WorldProvider::getCodeElementParsers() {
  world.noteCall("getCodeElementParsers");
  *lastNode = Node();
  return codeElementParsers;
}

bool WorldProvider::isSoleOwner() const {
  const auto alone = [](const auto& service) { return service.use_count() <= 1; };
  return std::all_of(codeElementParsers.begin(), codeElementParsers.end(), alone) &&
         std::all_of(contributorParsers.begin(), contributorParsers.end(), alone);
}

}  // namespace quenlith::oracle
