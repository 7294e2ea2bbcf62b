#include <boost/uuid/uuid.hpp>
#include <stdexcept>

#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/bundle/component.hpp"

namespace tests {

/// An extension that records a failure for a slider whose minimum is not a number, and throws for
/// one with the id "stuck". For one with the id "fickle" it throws when it is asked again after it
/// has parsed it.
class SliderParser : public quenlith::build::markup::code::CodeElementParser {
 public:
  bool canParse(const quenlith::syntax::Marker& marker) override {
    if (marker.idView() == u"fickle" && hasParsedFickle) throw std::runtime_error("not again");
    return marker.elementView() == u"control" && marker.typeView() == u"slider";
  }

  document::kdzero::Node parse(const kd::zero::Model& model,
                               const quenlith::build::markup::code::CodeElement& element) override {
    using document::kdzero::PlainTextNode;
    const quenlith::syntax::Marker& marker = element.marker.value();
    hasParsedFickle |= marker.idView() == u"fickle";
    if (marker.idView() == u"stuck") throw std::runtime_error("the slider is stuck");
    PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
    node->setText(element.text);
    const auto minimum = marker.dataView().find("min");
    if (minimum != marker.dataView().end() && minimum->second.is<std::string>()) {
      failures::kdzero::MarkerInfo info;
      info.setFeatureId(marker.getElement()).setMarkerId(marker.getId());
      failures::kdzero::ParserFailure failure;
      failure.setFailureId(u"minimum_not_a_number").setMarkerInfo(info);
      node->getParserFailuresMutable().add(failure);
    }
    return node;
  }

 private:
  bool hasParsedFickle = false;
};

}  // namespace tests

QUENLITH_COMPONENT(tests_SliderParser, tests::SliderParser,
                   Provides<quenlith::build::markup::code::CodeElementParser>)
