#pragma once

#include <string_view>

#include "document/kdzero/Node.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/ElementBuilder.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace document::kdzero {

/// Handle to an inline node with the data of an embedded task.
class LiveAppIntegratedInlineNode : public kd::zero::Handle<LiveAppIntegratedInlineNode, Node> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_MODEL_EXPORT LiveAppIntegratedInlineNode::Impl final : public Node::Impl {
 public:
  using LiveTaskData = tessera::contentmodel::kdzero::LiveTaskData;
  template <class Builder>
  class BuilderBase;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// Valid until it is set again or the node is destroyed.
  std::u16string_view getId() const noexcept { return id; }
  void setId(const ustring& newId) { id = newId; }

  const LiveTaskData& getLiveTaskData() const noexcept { return liveTaskData; }
  /// Stores a copy of `data`. Throws std::bad_alloc; the data is unchanged in that case.
  void setLiveTaskData(const LiveTaskData& data) { liveTaskData = LiveTaskData(data); }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) : Node::Impl(classOf(), uuid) {}
  ~Impl() = default;

  ustring id;
  LiveTaskData liveTaskData;
};

template <class Builder>
class LiveAppIntegratedInlineNode::Impl::BuilderBase : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached node. Any number of nodes may have the same `uuid`.
  LiveAppIntegratedInlineNode createLiveAppIntegratedInlineNode(
      const boost::uuids::uuid& uuid) const {
    return make<LiveAppIntegratedInlineNode>(uuid);
  }
};

class LiveAppIntegratedInlineNode::Builder : public Impl::BuilderBase<Builder> {
 public:
  using BuilderBase::BuilderBase;
};

}  // namespace document::kdzero
