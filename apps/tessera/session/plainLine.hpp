#pragma once

#include <string_view>

#include "document/kdzero/Node.hpp"

namespace tessera::session {

/// Returns whether `node` is a text without children, anchor, failures and contributor data.
bool isBareText(const document::kdzero::Node& node) noexcept;

/// Returns whether `node` is a line that has one bare text as its child and nothing else: the node
/// of a line of plain code.
bool isPlainLine(const document::kdzero::Node& node) noexcept;

/// Returns the text of a node that has one; valid until that text changes.
std::u16string_view textOf(const document::kdzero::Node& node) noexcept;

}  // namespace tessera::session
