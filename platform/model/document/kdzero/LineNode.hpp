#pragma once

#include "document/kdzero/Node.hpp"
#include "kd/zero/ElementBuilder.hpp"

namespace document::kdzero {

/// Handle to the node of one line of code.
class LineNode : public kd::zero::Handle<LineNode, Node> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_MODEL_EXPORT LineNode::Impl final : public Node::Impl {
 public:
  template <class Builder>
  class BuilderBase;

  static constexpr kd::zero::meta::ClassKey kClassKey = keys::kLineNode;
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) : Node::Impl(kClassKey, uuid, Parts::kNone) {}
  ~Impl() = default;
};

template <class Builder>
class LineNode::Impl::BuilderBase : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached node. Any number of nodes may have the same `uuid`.
  LineNode createLineNode(const boost::uuids::uuid& uuid) const { return make<LineNode>(uuid); }
};

class LineNode::Builder : public Impl::BuilderBase<Builder> {
 public:
  using BuilderBase::BuilderBase;
};

}  // namespace document::kdzero
