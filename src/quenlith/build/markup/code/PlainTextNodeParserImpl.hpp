#pragma once

#include <boost/uuid/uuid.hpp>
#include <string_view>

#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"

namespace quenlith::build::markup::code {

/// The default code element parser: turns any text into a plain-text node. Stateless; may be
/// used on any thread.
class PlainTextNodeParserImpl : public CodeElementParser {
 public:
  PlainTextNodeParserImpl();
  ~PlainTextNodeParserImpl() override;

  /// Returns true, whatever the marker.
  bool canParse(const syntax::Marker& marker) override;

  /// Returns a new plain-text node with the text of `element`, whose marker and range do not
  /// count. Throws what the model throws.
  document::kdzero::Node parse(const kd::zero::Model& model, const CodeElement& element) override;

  /// Returns what `parse` returns for a code element with this text.
  static document::kdzero::Node makeNode(const kd::zero::Model& model, std::u16string_view text) {
    using document::kdzero::PlainTextNode;
    return PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, text);
  }
};

}  // namespace quenlith::build::markup::code
