#pragma once

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

class LiveAppLineNodeImpl : public Node::Impl {};

class LiveAppLineNode : public NodeHandle<LiveAppLineNodeImpl> {
 public:
  class Builder {
   public:
    explicit Builder(const kd::zero::Model& model);
    LiveAppLineNode createLiveAppLineNode(const boost::uuids::uuid& uuid) const;
  };
};

}  // namespace document::kdzero
