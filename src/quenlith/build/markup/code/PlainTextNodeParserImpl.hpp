#pragma once

#include "quenlith/build/markup/code/CodeElementParser.hpp"

namespace quenlith::build::markup::code {

/// The default code element parser: turns any text into a plain-text node. Stateless, so it may be
/// used on several threads.
class PlainTextNodeParserImpl : public CodeElementParser {
 public:
  PlainTextNodeParserImpl();
  ~PlainTextNodeParserImpl() override;

  /// Returns true, whatever the marker.
  bool canParse(const syntax::Marker& marker) override;

  /// Returns a new plain-text node with the text of `element`. Ignores its marker and range. Throws
  /// what the model throws.
  document::kdzero::Node parse(const kd::zero::Model& model, const CodeElement& element) override;
};

}  // namespace quenlith::build::markup::code
