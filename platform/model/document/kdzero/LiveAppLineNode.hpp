#pragma once

#include "document/kdzero/Node.hpp"
#include "kd/zero/ElementBuilder.hpp"

namespace document::kdzero {

/// Handle to a line-level node that represents an embedded task.
class LiveAppLineNode : public kd::zero::Handle<LiveAppLineNode, Node> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_MODEL_EXPORT LiveAppLineNode::Impl final : public Node::Impl {
 public:
  template <class Builder>
  class BuilderBase;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) : Node::Impl(classOf(), uuid) {}
  ~Impl() = default;
};

template <class Builder>
class LiveAppLineNode::Impl::BuilderBase : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached node. Any number of nodes may have the same `uuid`.
  LiveAppLineNode createLiveAppLineNode(const boost::uuids::uuid& uuid) const {
    return make<LiveAppLineNode>(uuid);
  }
};

class LiveAppLineNode::Builder : public Impl::BuilderBase<Builder> {
 public:
  using BuilderBase::BuilderBase;
};

}  // namespace document::kdzero
