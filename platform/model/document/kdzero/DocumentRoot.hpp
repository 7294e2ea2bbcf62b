#pragma once

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

/// Handle to the element that contains the top-level nodes of a document.
class DocumentRoot : public kd::zero::Handle<DocumentRoot, kd::zero::ModelElement> {
 public:
  class Impl;
};

class QUENLITH_MODEL_EXPORT DocumentRoot::Impl final : public kd::zero::ModelElement::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  Impl();

  const kd::zero::ElementSequence<Node>& getChildren() const noexcept { return children; }
  kd::zero::ElementSequence<Node>& getChildrenMutable() noexcept { return children; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  void releaseAll(kd::zero::ModelElement::DeferredReleases& releases) noexcept {
    children.releaseAll(releases);
  }
  void verifyParts(kd::zero::Verification& verification) const {
    children.verify(*this, verification);
  }

  kd::zero::ElementSequence<Node> children;
};

}  // namespace document::kdzero
