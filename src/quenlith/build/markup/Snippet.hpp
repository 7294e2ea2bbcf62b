#pragma once

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/SnippetType.hpp"

namespace quenlith::build::markup {

/// One line of source text on its way to a snippet parser. Text is UTF-16.
struct Snippet {
  /// The line without its line ending; comment markers may stand in it.
  fl::i18n::ustring text;
  /// The `type` of the result of the line before.
  SnippetType type;
  /// The whole block of text that the line belongs to; the task parser looks for the
  /// partner of a task marker here.
  fl::i18n::ustring auxiliaryText;
};

}  // namespace quenlith::build::markup
