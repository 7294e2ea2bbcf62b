#pragma once

#include "quenlith/build/markup/code/CodeElementParser.hpp"

namespace tessera::pieces {

/// Turns the pieces that output and control markers own into nodes.
///
/// Without a parser for them these pieces are left out of the document. Its ranking is below the
/// default of 0, so another bundle that accepts such a marker takes precedence.
class PieceParser : public quenlith::build::markup::code::CodeElementParser {
 public:
  bool canParse(const quenlith::syntax::Marker& marker) override;

  /// Returns a ControlNode for a piece of a control marker, otherwise an OutputNode. `element` must
  /// have a marker and a range.
  document::kdzero::Node parse(const kd::zero::Model& model,
                               const quenlith::build::markup::code::CodeElement& element) override;
};

}  // namespace tessera::pieces
