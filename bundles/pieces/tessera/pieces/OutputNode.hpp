#pragma once

#include <boost/uuid/uuid.hpp>

#include "kd/zero/ElementBuilder.hpp"
#include "tessera/pieces/PieceNode.hpp"

namespace tessera::pieces {

/// Handle to the node of a piece that an output marker owns: code whose result is shown.
class OutputNode : public kd::zero::Handle<OutputNode, PieceNode> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_PIECE_NODES_EXPORT OutputNode::Impl final : public PieceNode::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) : PieceNode::Impl(classOf(), uuid) {}
  ~Impl() = default;
};

class OutputNode::Builder : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached node. Any number of nodes may have the same `uuid`.
  OutputNode createOutputNode(const boost::uuids::uuid& uuid) const {
    return make<OutputNode>(uuid);
  }
};

}  // namespace tessera::pieces
