#pragma once

#include <cstddef>

#include "document/kdzero/TesseraDocument.hpp"

namespace bench::parsers {

/// What a document must contain.
struct Contents {
  std::size_t lines = 0;
  /// 16-bit code units in all text nodes.
  std::size_t textUnits = 0;
  std::size_t anchors = 0;
  std::size_t failures = 0;
};

/// Throws std::runtime_error if `document` contains anything else, or if a line node does not have
/// exactly one child.
void expectDocument(const document::kdzero::TesseraDocument& document, const Contents& wanted);

}  // namespace bench::parsers
