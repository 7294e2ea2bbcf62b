#pragma once

#include <cstddef>

#include "document/kdzero/TesseraDocument.hpp"

namespace bench::parsers {

/// What a document has to hold.
struct Contents {
  std::size_t lines = 0;
  /// 16-bit code units in all text nodes.
  std::size_t textUnits = 0;
  std::size_t anchors = 0;
  std::size_t failures = 0;
};

/// Throws std::runtime_error when `document` holds anything else, or a line node has not exactly
/// one child.
void expectDocument(const document::kdzero::TesseraDocument& document, const Contents& wanted);

}  // namespace bench::parsers
