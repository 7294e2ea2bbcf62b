#pragma once

#include "quenlith/build/markup/code/CodeElementParser.hpp"

namespace examples {

/// Cannot be created: shows what a host does with a component whose constructor throws. The host
/// reports the bundle, and parses without it.
class BrokenParser : public quenlith::build::markup::code::CodeElementParser {
 public:
  BrokenParser();

  bool canParse(const quenlith::syntax::Marker& marker) override;
  document::kdzero::Node parse(const kd::zero::Model& model,
                               const quenlith::build::markup::code::CodeElement& element) override;
};

}  // namespace examples
