#pragma once

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero {

/// A value that was read through reflection: its type and, of a reference, the element.
class QUENLITH_MODEL_EXPORT Value {
 public:
  /// A value of a type that is no class of elements: only its type is kept, borrowed.
  explicit Value(const meta::Type::Impl& type) noexcept;
  /// A reference to an element; null is the empty reference.
  explicit Value(ModelElement::Impl* element) noexcept;

  meta::Type getType() const noexcept { return meta::Type(*typeOfValue); }

  /// Returns the element, null for an empty reference; borrowed.
  ///
  /// Throws Exception<CannotCastIncompatibleTypes> with the qualified name of the type when
  /// the type does not conform to that of all model elements. The value is not touched then.
  ModelElement::Impl* toModelElement() const;

 private:
  const meta::Type::Impl* typeOfValue;
  ModelElement::Impl* element = nullptr;
};

}  // namespace kd::zero
