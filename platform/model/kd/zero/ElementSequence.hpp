#pragma once

#include <cstddef>
#include <stdexcept>
#include <utility>

#include "kd/zero/ReferenceCollection.hpp"

namespace kd::zero {

/// Sequence of elements of kind `T` (a handle class) that one element owns through one of its
/// properties.
///
/// Each place counts as a reference to its element. Elements that refer to each other in a cycle
/// are never destroyed; only sequences that do not contain their elements allow such a cycle.
template <class T>
class ElementSequence final : public ReferenceCollection {
 public:
  ElementSequence(const ModelElement::Impl& collectionOwner, meta::PropertyKey property) noexcept
      : ReferenceCollection(collectionOwner, property) {}
  ElementSequence(ModelElement::Impl* const& collectionOwner, meta::PropertyKey property) noexcept
      : ReferenceCollection(collectionOwner, property) {}

  /// Appends `element`; the sequence shares it.
  ///
  /// Ignores an empty handle, and an element that is in a unique sequence already. A sequence that
  /// is composite, or whose opposite is the container, contains its elements: an element that
  /// another collection contained is removed from that one. Throws
  /// Exception<ElementOfAnotherModel>; Exception<ElementWithinItself> when the owner of a sequence
  /// that contains its elements is the element or is within it;
  /// Exception<CannotCastIncompatibleTypes> when the value of the opposite property is not an
  /// element. The sequence is unchanged in these cases.
  void add(T element) { append(std::move(element)); }

  const T& operator[](std::size_t index) const noexcept { return data()[index]; }
  /// Throws std::out_of_range.
  const T& at(std::size_t index) const {
    if (index >= size()) throw std::out_of_range("no element at this index of the sequence");
    return data()[index];
  }
  /// The handles as an array; valid until the next change of the sequence.
  const T* data() const noexcept {
    // A handle consists of one pointer, so an array of pointers is read as an array of handles.
    static_assert(sizeof(T) == sizeof(ModelElement::Impl*));
    return reinterpret_cast<const T*>(places());
  }
  const T* begin() const noexcept { return data(); }
  const T* end() const noexcept { return data() + size(); }
};

}  // namespace kd::zero
