#pragma once

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/meta/Class.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

/// Elements whose last reference is gone and whose end is still to come. Released trees go
/// through this list, however deep they are, so that no release recurses.
class ModelElement::DeferredReleases {
 public:
  /// Drops one reference to `element` (never null), which ends soon if it was the last.
  void drop(Impl* element) noexcept {
    if (--element->references != 0) return;
    if (!element->hasParts) {
      element->deallocateBlock();
      return;
    }
    // While the root of a tree lets go of its children, each is ended at once, as it is in reach
    // then; what these let go of waits in the list.
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
  /// Ends a child of the root, and all that ends with it.
  QUENLITH_MODEL_EXPORT void destroyTree(Impl* child) noexcept;

  // The container of a released element says nothing any more: it links the list.
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
