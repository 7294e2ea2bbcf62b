#pragma once

#include <map>

#include "document/kdzero/Node.hpp"
#include "tessera/pieces/PieceNode.hpp"

namespace tessera::html {

/// Tells the markers of a line apart by their pieces: a marker may own several, and pieces of other
/// markers may be between them.
class PieceMarkers {
 public:
  void clear() noexcept { lastPieces.clear(); }

  /// Returns whether no piece that was added before is of the marker of `piece`, a node with a
  /// piece, which must live until `clear`.
  bool add(const document::kdzero::Node& piece);

 private:
  // The last piece that was added with each range.
  std::map<pieces::PieceNode::Impl::Range, const pieces::PieceNode::Impl*> lastPieces;
};

}  // namespace tessera::html
