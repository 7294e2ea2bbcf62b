#include "kd/zero/Value.hpp"

#include "foundation/core/except/Exception.hpp"
#include "kd/zero/meta/Class.hpp"
#include "kd0/messages/CannotCastIncompatibleTypes.hpp"

namespace kd::zero {

Value::Value(const meta::Type::Impl& type) noexcept : typeOfValue(&type) {}

Value::Value(ModelElement::Impl* element) noexcept
    : typeOfValue(element == nullptr ? &meta::Class::modelElement() : &element->getMetaClass()),
      element(element) {}

ModelElement::Impl* Value::toModelElement() const {
  using foundation::core::except::Exception;
  using kd0::messages::CannotCastIncompatibleTypes;
  if (!typeOfValue->conformsTo(meta::Class::modelElement())) {
    throw Exception<CannotCastIncompatibleTypes, std::exception>(
        CannotCastIncompatibleTypes(typeOfValue->getQualifiedName()));
  }
  return element;
}

}  // namespace kd::zero
