#pragma once

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

class LineNodeImpl : public Node::Impl {};

class LineNode : public NodeHandle<LineNodeImpl> {
 public:
  class Builder {
   public:
    explicit Builder(const kd::zero::Model& model);
    LineNode createLineNode(const boost::uuids::uuid& uuid) const;
  };
};

}  // namespace document::kdzero
