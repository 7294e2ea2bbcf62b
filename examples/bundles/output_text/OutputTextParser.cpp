#include "OutputTextParser.hpp"

#include <boost/uuid/uuid.hpp>

#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/bundle/component.hpp"

namespace examples {

using document::kdzero::PlainTextNode;
using quenlith::build::markup::code::CodeElement;

bool OutputTextParser::canParse(const quenlith::syntax::Marker& marker) {
  return marker.elementView() == u"output";
}

document::kdzero::Node OutputTextParser::parse(const kd::zero::Model& model,
                                               const CodeElement& element) {
  PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
  node->setText(element.text);
  return node;
}

}  // namespace examples

QUENLITH_COMPONENT(examples_OutputTextParser, examples::OutputTextParser,
                   Provides<quenlith::build::markup::code::CodeElementParser>)
