#pragma once

#include <cstdint>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/Value.hpp"
#include "kd/zero/meta/Property.hpp"

namespace kd::zero {

/// The link from an element to its container: the element that owns the collection it is in.
struct QUENLITH_MODEL_EXPORT Containment {
  /// Reads the container as a single-valued property.
  static Value read(const ModelElement::Impl& element);

  static const ModelElement::Impl* containerOf(const ModelElement::Impl& element) noexcept {
    return element.container;
  }

  /// Makes `owner` the container of `element`, through its collection `collection`. Removes the
  /// element from the collection that it was in before, so that it is in one place of a tree.
  static void assign(ModelElement::Impl& element, ModelElement::Impl& owner,
                     const meta::Property& collection) {
    owner.hasParts = true;
    owner.containsOthers = true;
    if (element.container != nullptr) removeFromPrevious(element, owner, collection);
    element.container = &owner;
    element.containerProperty = collection.getIndex();
  }

  /// Undoes `assign` for an element that is removed from the collection of `owner` with the
  /// property `collectionIndex`. Does nothing if the element has another container.
  static void clear(ModelElement::Impl& element, const ModelElement::Impl& owner,
                    std::uint16_t collectionIndex) noexcept {
    if (element.container == &owner && element.containerProperty == collectionIndex) {
      element.container = nullptr;
    }
  }

  /// Returns false only for an element that never contained another.
  static bool mayContainOthers(const ModelElement::Impl& element) noexcept {
    return element.containsOthers;
  }
  /// Tells whether `element` is `root` or contained in it at any depth.
  static bool isWithin(const ModelElement::Impl& element, const ModelElement::Impl& root) noexcept;

 private:
  static void removeFromPrevious(ModelElement::Impl& element, const ModelElement::Impl& owner,
                                 const meta::Property& collection) noexcept;
};

}  // namespace kd::zero
