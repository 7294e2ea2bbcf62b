#pragma once

#include "document/kdzero/Node.hpp"

namespace tessera::formats {

/// The kinds of node that are written in different ways. A piece is an OutputNode or a ControlNode;
/// the classes of other bundles are of the kind kOther.
enum class NodeKind { kLine, kPlainText, kTaskLine, kTask, kPiece, kOther };

NodeKind kindOf(const document::kdzero::Node& node) noexcept;

/// Returns whether `node` is of a class that has a text.
bool hasText(const document::kdzero::Node& node) noexcept;

}  // namespace tessera::formats
