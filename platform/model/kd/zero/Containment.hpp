#pragma once

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/Value.hpp"
#include "kd/zero/meta/Property.hpp"

namespace kd::zero {

/// The one link from an element to the element that it belongs to.
struct QUENLITH_MODEL_EXPORT Containment {
  /// Reads the container as a single-valued property.
  static Value read(const ModelElement::Impl& element);

  /// Makes `owner` the container of `element`, through its collection `collection`. An element
  /// that belonged to another collection leaves it, so that it stands in one place of a tree.
  static void assign(ModelElement::Impl& element, ModelElement::Impl& owner,
                     const meta::Property& collection);

  /// Undoes `assign` for an element that leaves `collection` of `owner`.
  static void clear(ModelElement::Impl& element, const ModelElement::Impl& owner,
                    const meta::Property& collection) noexcept;

  static bool isWithin(const ModelElement::Impl& element, const ModelElement::Impl& root) noexcept;
};

}  // namespace kd::zero
