#include "tessera/pieces/PieceNode.hpp"

namespace tessera::pieces {

using document::kdzero::TextNode;

// An abstract class: no element is of this class itself.
const kd::zero::meta::Class PieceNode::Impl::kMetaClass(u"tessera::pieces::PieceNode",
                                                        &TextNode::Impl::classOf());

PieceNode::Impl::~Impl() = default;

}  // namespace tessera::pieces
