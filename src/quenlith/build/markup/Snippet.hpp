#pragma once

#include <cstdint>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/SnippetType.hpp"

namespace quenlith::build::markup {

/// One line of source text for a snippet parser. Text is UTF-16.
struct Snippet {
  /// The line without its line ending. It may contain comment markers.
  fl::i18n::ustring text;
  /// The `type` of the result of the previous line.
  SnippetType type;
  /// The whole block of text that the line belongs to. The task parser looks for the partner of a
  /// task marker here.
  fl::i18n::ustring auxiliaryText;
  /// Two snippets with the same version other than 0 have the same `auxiliaryText`, which saves the
  /// task parser the comparison of the blocks. 0 says nothing about the block.
  std::uint64_t blockVersion = 0;
};

}  // namespace quenlith::build::markup
