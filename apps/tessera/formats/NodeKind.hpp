#pragma once

#include <string_view>

#include "document/kdzero/Node.hpp"

namespace tessera::formats {

/// The kinds of node that a document is made of.
enum class NodeKind { kLine, kPlainText, kTaskLine, kTask };

/// Returns the kind of `node`. A node of a class that another bundle defines counts as a line.
NodeKind kindOf(const document::kdzero::Node& node) noexcept;

/// Returns the name of the kind's class.
std::string_view nameOf(NodeKind kind) noexcept;

/// Returns whether `node` is a text without children, anchor, failures and contributor data.
bool isBareText(const document::kdzero::Node& node) noexcept;

/// Returns whether `node` is a line that has one bare text as its child and nothing else: the node
/// of a line of plain code.
bool isPlainLine(const document::kdzero::Node& node) noexcept;

/// Returns the text of a node of the kind kPlainText; valid until that text changes.
std::u16string_view textOf(const document::kdzero::Node& node) noexcept;

}  // namespace tessera::formats
