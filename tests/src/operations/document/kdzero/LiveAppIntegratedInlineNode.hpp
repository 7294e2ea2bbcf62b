#pragma once

#include "document/kdzero/Node.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace document::kdzero {

class LiveAppIntegratedInlineNodeImpl : public Node::Impl {
 public:
  void setId(const fl::i18n::ustring& id);
  void setLiveTaskData(const tessera::contentmodel::kdzero::LiveTaskData& data);
  // A task is closed by changing a copy of its data.
  const tessera::contentmodel::kdzero::LiveTaskData& getLiveTaskData() const;
};

class LiveAppIntegratedInlineNode : public NodeHandle<LiveAppIntegratedInlineNodeImpl> {
 public:
  class Builder {
   public:
    explicit Builder(const kd::zero::Model& model);
    LiveAppIntegratedInlineNode createLiveAppIntegratedInlineNode(
        const boost::uuids::uuid& uuid) const;
  };
  // The first child of a header is of this kind.
  static LiveAppIntegratedInlineNode castFrom(const Node& node);
};

}  // namespace document::kdzero
