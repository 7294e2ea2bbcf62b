#pragma once

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero {

/// A value that was read through reflection: its type and, borrowed, the value itself.
class QUENLITH_MODEL_EXPORT Value {
 public:
  /// A value of a type that is no class of elements. Both are borrowed.
  Value(const meta::Type::Impl& type, const void* object) noexcept;
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
  const void* object = nullptr;
};

}  // namespace kd::zero
