#include "BrokenParser.hpp"

#include <stdexcept>

#include "quenlith/bundle/component.hpp"

namespace examples {

BrokenParser::BrokenParser() {
  throw std::runtime_error("the dictionary of BrokenParser is missing");
}

bool BrokenParser::canParse(const quenlith::syntax::Marker& /*marker*/) {
  return true;
}

document::kdzero::Node BrokenParser::parse(
    const kd::zero::Model& /*model*/,
    const quenlith::build::markup::code::CodeElement& /*element*/) {
  return {};
}

}  // namespace examples

QUENLITH_COMPONENT(examples_BrokenParser, examples::BrokenParser,
                   Provides<quenlith::build::markup::code::CodeElementParser>)
