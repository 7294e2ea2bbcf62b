#pragma once

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero {

/// A value that was read through reflection: its type and, for a reference, the element.
class QUENLITH_MODEL_EXPORT Value {
 public:
  /// A value of a type that is not a class of elements. Stores only the type, which is borrowed.
  explicit Value(const meta::Type::Impl& type) noexcept;
  /// A reference to `element`, borrowed; null is the empty reference.
  explicit Value(ModelElement::Impl* element) noexcept;

  meta::Type getType() const noexcept { return meta::Type(*typeOfValue); }

  /// Returns the element, null for an empty reference; borrowed.
  ///
  /// Throws Exception<CannotCastIncompatibleTypes> with the qualified name of the type when
  /// the type does not conform to the type of all model elements.
  ModelElement::Impl* toModelElement() const;

 private:
  const meta::Type::Impl* typeOfValue;
  ModelElement::Impl* element = nullptr;
};

}  // namespace kd::zero
