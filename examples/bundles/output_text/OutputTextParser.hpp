#pragma once

#include "quenlith/build/markup/code/CodeElementParser.hpp"

namespace examples {

/// Keeps the text that the range of an output marker covers, as plain text.
///
/// Without a parser for it that text is left out of the document.
class OutputTextParser : public quenlith::build::markup::code::CodeElementParser {
 public:
  bool canParse(const quenlith::syntax::Marker& marker) override;
  document::kdzero::Node parse(const kd::zero::Model& model,
                               const quenlith::build::markup::code::CodeElement& element) override;
};

}  // namespace examples
