#include "tessera/html/PieceMarkers.hpp"

namespace tessera::html {

using document::kdzero::Node;
using PieceImpl = pieces::PieceNode::Impl;

namespace {

bool areOfOneMarker(const PieceImpl& first, const PieceImpl& second) {
  return &first.getMetaClass() == &second.getMetaClass() && first.getMarker() == second.getMarker();
}

}  // namespace

bool PieceMarkers::add(const Node& piece) {
  const auto& added = *static_cast<const PieceImpl*>(piece.get());
  const PieceImpl*& last = lastPieces[added.getRange()];
  const bool isNew = last == nullptr || !areOfOneMarker(*last, added);
  last = &added;
  return isNew;
}

}  // namespace tessera::html
