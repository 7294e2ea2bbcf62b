#include <boost/uuid/uuid.hpp>

#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/bundle/component.hpp"

namespace quenlith::build::markup::code {

/// Has the qualified name of the default parser of the markup bundle, but is another class.
class PlainTextNodeParserImpl : public CodeElementParser {
 public:
  bool canParse(const syntax::Marker& /*marker*/) override { return true; }

  document::kdzero::Node parse(const kd::zero::Model& model, const CodeElement& element) override {
    using document::kdzero::PlainTextNode;
    PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
    node->setText(u"other(" + element.text + u")");
    return node;
  }
};

}  // namespace quenlith::build::markup::code

namespace quenlith::bundle {
using build::markup::code::CodeElementParser;
}

QUENLITH_COMPONENT(quenlith_build_markup_code_PlainTextNodeParserImpl,
                   build::markup::code::PlainTextNodeParserImpl, Provides<CodeElementParser>);
