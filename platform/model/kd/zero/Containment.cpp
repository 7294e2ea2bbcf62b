#include "kd/zero/Containment.hpp"

#include "kd/zero/ReferenceCollection.hpp"

namespace kd::zero {

Value Containment::read(const ModelElement::Impl& element) {
  return Value(element.container);
}

void Containment::removeFromPrevious(ModelElement::Impl& element, const ModelElement::Impl& owner,
                                     const meta::Property& collection) noexcept {
  const meta::Property& former = meta::Property::at(element.containerProperty);
  if (element.container == &owner && &former == &collection) return;
  former.traits().collectionOf(*element.container)->forget(element);
}

bool Containment::isWithin(const ModelElement::Impl& element,
                           const ModelElement::Impl& root) noexcept {
  const ModelElement::Impl* above = &element;
  while (above != nullptr && above != &root) above = above->container;
  return above != nullptr;
}

}  // namespace kd::zero
