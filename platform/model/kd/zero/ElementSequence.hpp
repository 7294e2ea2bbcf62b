#pragma once

#include <cstddef>
#include <stdexcept>
#include <utility>

#include "kd/zero/ReferenceCollection.hpp"

namespace kd::zero {

/// Sequence of elements of kind `T` (a handle class) that one element owns through one of its
/// properties.
///
/// Each place counts as a reference to its element. Elements that hold one another in a circle,
/// which only sequences that do not contain their elements let them, never end.
template <class T>
class ElementSequence final : public ReferenceCollection {
 public:
  ElementSequence(const ModelElement::Impl& collectionOwner, meta::PropertyKey property) noexcept
      : ReferenceCollection(collectionOwner, property) {}
  ElementSequence(ModelElement::Impl* const& collectionOwner, meta::PropertyKey property) noexcept
      : ReferenceCollection(collectionOwner, property) {}

  /// Appends `element`, with a reference of the sequence's own.
  ///
  /// An empty handle is ignored, and so is an element that is in a unique sequence already.
  /// A sequence that is composite, or whose opposite is the container, contains its elements: one
  /// that belonged to another owner leaves it. Throws Exception<ElementOfAnotherModel>,
  /// Exception<ElementWithinItself> when the owner of a sequence that contains its elements is,
  /// or is within, the element, and
  /// Exception<CannotCastIncompatibleTypes> when the opposite property holds no element; the
  /// sequence stays as it was.
  void add(T element) { append(std::move(element)); }

  const T& operator[](std::size_t index) const noexcept { return data()[index]; }
  /// Throws std::out_of_range.
  const T& at(std::size_t index) const {
    if (index >= size()) throw std::out_of_range("no element at this index of the sequence");
    return data()[index];
  }
  /// The handles, one behind the other; valid until the next append.
  const T* data() const noexcept {
    static_assert(sizeof(T) == sizeof(ModelElement::Impl*));
    return reinterpret_cast<const T*>(places());
  }
  const T* begin() const noexcept { return data(); }
  const T* end() const noexcept { return data() + size(); }
};

}  // namespace kd::zero
