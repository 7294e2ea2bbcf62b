#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

namespace quenlith::build::markup::code {

PlainTextNodeParserImpl::PlainTextNodeParserImpl() = default;
PlainTextNodeParserImpl::~PlainTextNodeParserImpl() = default;

bool PlainTextNodeParserImpl::canParse(const syntax::Marker& /*marker*/) {
  return true;
}

document::kdzero::Node PlainTextNodeParserImpl::parse(const kd::zero::Model& model,
                                                      const CodeElement& element) {
  return makeNode(model, element.text);
}

}  // namespace quenlith::build::markup::code
