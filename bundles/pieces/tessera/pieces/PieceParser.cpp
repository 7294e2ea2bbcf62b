#include "tessera/pieces/PieceParser.hpp"

#include "quenlith/bundle/component.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace tessera::pieces {

using quenlith::build::markup::code::CodeElement;

namespace {

PieceNode makeNode(const kd::zero::Model& model, bool isControl) {
  if (isControl) return ControlNode::Builder(model).createControlNode({});
  return OutputNode::Builder(model).createOutputNode({});
}

}  // namespace

bool PieceParser::canParse(const quenlith::syntax::Marker& marker) {
  return marker.elementView() == u"output" || marker.elementView() == u"control";
}

document::kdzero::Node PieceParser::parse(const kd::zero::Model& model,
                                          const CodeElement& element) {
  const quenlith::syntax::Marker& marker = element.marker.value();
  PieceNode node = makeNode(model, marker.elementView() == u"control");
  node->setText(element.text);
  node->setMarker(marker);
  node->setRange(element.range.value());
  return node;
}

}  // namespace tessera::pieces

QUENLITH_COMPONENT(tessera_pieces_PieceParser, tessera::pieces::PieceParser,
                   Provides<quenlith::build::markup::code::CodeElementParser>)
