#pragma once

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

class PlainTextNodeImpl : public Node::Impl {
 public:
  // Also takes a part of a text, which saves a copy.
  void setText(std::u16string_view text);
};

class PlainTextNode : public NodeHandle<PlainTextNodeImpl> {
 public:
  class Builder {
   public:
    explicit Builder(const kd::zero::Model& model);
    PlainTextNode createPlainTextNode(const boost::uuids::uuid& uuid) const;
  };
};

}  // namespace document::kdzero
