#pragma once

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/meta/Class.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

/// Elements without references that are still to be destroyed. Trees are released through this
/// list, so that no release recurses, however deep the tree is.
class ModelElement::DeferredReleases {
 public:
  /// Drops one reference to `element`, which must not be null. If it was the last one, destroys the
  /// element or adds it to the list.
  void drop(Impl* element) noexcept {
    if (--element->references != 0) return;
    if (!element->hasParts) {
      element->deallocateBlock();
      return;
    }
    // The children of the root are destroyed at once, while they are in the cache; the elements
    // that these release wait in the list.
    if (ofRoot) {
      destroyTree(element);
    } else {
      push(element);
    }
  }

 private:
  friend class ModelElement::Impl;

  void push(Impl* element) noexcept {
    element->container = pending;
    pending = element;
  }
  /// Destroys a child of the root and everything that is released with it.
  QUENLITH_MODEL_EXPORT void destroyTree(Impl* child) noexcept;

  // A singly linked list through `container`, which a released element does not need any more.
  // So a release allocates nothing.
  Impl* pending = nullptr;
  bool ofRoot = true;
};

inline void ModelElement::Impl::destroyWith(DeferredReleases& releases) noexcept {
  getMetaClass().getDismantle()(*this, releases);
  deallocateBlock();
}

inline void ModelElement::Impl::deallocateBlock() noexcept {
  const std::size_t prefixBytes = meta::Class::prefixBytes({classIndex});
  const std::size_t sizeBytes = prefixBytes + getMetaClass().getSizeBytes() + extraBytes();
  ModelStorage::of(this).deallocateElement(reinterpret_cast<std::byte*>(this) - prefixBytes,
                                           sizeBytes);
}

}  // namespace kd::zero
