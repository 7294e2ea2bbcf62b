#pragma once

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

class PlainTextNodeImpl : public Node::Impl {
 public:
  // An addition, see docs/architecture.md: a part of a text is set without a copy, which saves 214
  // of 4,000 instructions per line with one marker (5 %).
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
