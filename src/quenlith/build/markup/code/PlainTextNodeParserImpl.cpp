#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

#include <boost/uuid/uuid.hpp>

#include "document/kdzero/PlainTextNode.hpp"

namespace quenlith::build::markup::code {

using document::kdzero::PlainTextNode;

PlainTextNodeParserImpl::PlainTextNodeParserImpl() = default;
PlainTextNodeParserImpl::~PlainTextNodeParserImpl() = default;

bool PlainTextNodeParserImpl::canParse(const syntax::Marker& /*marker*/) {
  return true;
}

document::kdzero::Node PlainTextNodeParserImpl::parse(const kd::zero::Model& model,
                                                      const CodeElement& element) {
  return makeNode(model, element.text);
}

document::kdzero::Node PlainTextNodeParserImpl::makeNode(const kd::zero::Model& model,
                                                         std::u16string_view text) {
  PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
  node->setText(text);
  return node;
}

}  // namespace quenlith::build::markup::code
