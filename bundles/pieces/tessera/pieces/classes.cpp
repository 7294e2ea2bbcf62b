#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace tessera::pieces {

using kd::zero::ElementMaker;
using kd::zero::meta::Class;

const Class OutputNode::Impl::kMetaClass =
    ElementMaker::describe<Impl>(u"tessera::pieces::OutputNode", PieceNode::Impl::classOf());

const Class ControlNode::Impl::kMetaClass =
    ElementMaker::describe<Impl>(u"tessera::pieces::ControlNode", PieceNode::Impl::classOf());

}  // namespace tessera::pieces
