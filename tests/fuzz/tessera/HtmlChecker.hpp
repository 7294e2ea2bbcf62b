#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quenlith::fuzz {

/// What a page consists of.
struct HtmlContent {
  /// The first rule that the page breaks, with the place; empty if there is none.
  std::string fault;
  /// The names of its elements, in order.
  std::vector<std::string> elements;
  /// All text that is not a style, with entities replaced.
  std::string text;
};

/// Reads a page and checks its form, more strictly than HTML does: every element is closed in turn
/// (a list item may be closed by the next one or by the end of its list), attributes have values of
/// a few harmless forms and no name that a script could be in, and "<", ">" and "&" are nothing
/// else but a tag or one of three entities. There are no comments and no control characters but tab
/// and line feed.
HtmlContent readHtml(std::string_view html);

}  // namespace quenlith::fuzz
