#pragma once

#include <set>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/SnippetType.hpp"

namespace quenlith::build::markup {

/// What a snippet parser returns for one line, besides the nodes that it adds to the document.
struct ParseResult {
  /// What the host passes with the next line.
  SnippetType type;
  /// The kinds of marker on the line, each as the canonical text of a marker built from the kind's
  /// element name. Ascending by code units.
  std::set<fl::i18n::ustring> markerTypes;
  /// Passed through unchanged; the parsers of this bundle never set it.
  bool flag = false;
};

}  // namespace quenlith::build::markup
