#pragma once

#include <boost/uuid/uuid.hpp>
#include <string>

#include "document/kdzero/TextNode.hpp"
#include "kd/zero/ElementBuilder.hpp"

/// A text node of a class that the program does not know.
class WordNode : public kd::zero::Handle<WordNode, document::kdzero::TextNode> {
 public:
  class Impl;
  class Builder;
};

class WordNode::Impl final : public document::kdzero::TextNode::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept {
    static const kd::zero::meta::Class metaClass = kd::zero::ElementMaker::describe<Impl>(
        u"WordNode", document::kdzero::TextNode::Impl::classOf());
    return metaClass;
  }

  std::u16string extra;

 private:
  friend struct kd::zero::ElementMaker;

  explicit Impl(const boost::uuids::uuid& uuid)
      : document::kdzero::TextNode::Impl(classOf(), uuid) {}
  ~Impl() = default;
};

class WordNode::Builder : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  WordNode createWordNode(const boost::uuids::uuid& uuid) const { return make<WordNode>(uuid); }
};
