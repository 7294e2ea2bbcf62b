#pragma once

#include "document/kdzero/TextNode.hpp"
#include "kd/zero/ElementBuilder.hpp"

namespace document::kdzero {

/// Handle to an inline node with a run of plain text.
class PlainTextNode : public kd::zero::Handle<PlainTextNode, TextNode> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_MODEL_EXPORT PlainTextNode::Impl final : public TextNode::Impl {
 public:
  template <class Builder>
  class BuilderBase;

  static constexpr kd::zero::meta::ClassKey kClassKey = keys::kPlainTextNode;
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) : TextNode::Impl(kClassKey, uuid, Parts::kNone) {}
  ~Impl() = default;
};

template <class Builder>
class PlainTextNode::Impl::BuilderBase : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached node. Any number of nodes may have the same `uuid`.
  PlainTextNode createPlainTextNode(const boost::uuids::uuid& uuid) const {
    return make<PlainTextNode>(uuid);
  }
};

class PlainTextNode::Builder : public Impl::BuilderBase<Builder> {
 public:
  using BuilderBase::BuilderBase;
};

}  // namespace document::kdzero
