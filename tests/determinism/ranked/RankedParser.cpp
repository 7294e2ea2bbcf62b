#include <boost/uuid/uuid.hpp>

#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/bundle/component.hpp"

namespace tests {

/// Accepts every control, and writes its own name before the text.
class RankedParser : public quenlith::build::markup::code::CodeElementParser {
 public:
  bool canParse(const quenlith::syntax::Marker& marker) override {
    return marker.elementView() == u"control";
  }

  document::kdzero::Node parse(const kd::zero::Model& model,
                               const quenlith::build::markup::code::CodeElement& element) override {
    using document::kdzero::PlainTextNode;
    PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
    node->setText(u"ranked " + element.text);
    return node;
  }
};

}  // namespace tests

QUENLITH_COMPONENT(tests_RankedParser, tests::RankedParser,
                   Provides<quenlith::build::markup::code::CodeElementParser>)
