#pragma once

#include <boost/uuid/uuid.hpp>

#include "kd/zero/ElementBuilder.hpp"
#include "tessera/pieces/PieceNode.hpp"

namespace tessera::pieces {

/// Handle to the node of a piece that a control marker owns: a value that can be set.
class ControlNode : public kd::zero::Handle<ControlNode, PieceNode> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_PIECE_NODES_EXPORT ControlNode::Impl final : public PieceNode::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) : PieceNode::Impl(classOf(), uuid) {}
  ~Impl() = default;
};

class ControlNode::Builder : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached node. Any number of nodes may have the same `uuid`.
  ControlNode createControlNode(const boost::uuids::uuid& uuid) const {
    return make<ControlNode>(uuid);
  }
};

}  // namespace tessera::pieces
