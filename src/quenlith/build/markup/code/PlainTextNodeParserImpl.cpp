#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

#include "quenlith/build/markup/code/line/makePlainTextNode.hpp"

namespace quenlith::build::markup::code {

PlainTextNodeParserImpl::PlainTextNodeParserImpl() = default;
PlainTextNodeParserImpl::~PlainTextNodeParserImpl() = default;

bool PlainTextNodeParserImpl::canParse(const syntax::Marker& /*marker*/) {
  return true;
}

document::kdzero::Node PlainTextNodeParserImpl::parse(const kd::zero::Model& model,
                                                      const CodeElement& element) {
  return line::makePlainTextNode(model, element.text);
}

}  // namespace quenlith::build::markup::code
