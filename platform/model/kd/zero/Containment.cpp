#include "kd/zero/Containment.hpp"

#include "kd/zero/ReferenceCollection.hpp"

namespace kd::zero {

Value Containment::read(const ModelElement::Impl& element) {
  return Value(element.container);
}

void Containment::assign(ModelElement::Impl& element, ModelElement::Impl& owner,
                         const meta::Property& collection) {
  ModelElement::Impl* former = element.container;
  const std::uint16_t formerProperty = element.containerProperty;
  element.container = &owner;
  element.containerProperty = collection.getIndex();
  owner.containsOthers = true;
  if (former == nullptr || (former == &owner && formerProperty == collection.getIndex())) return;
  meta::Property::at(formerProperty).traits().collectionOf(*former)->forget(element);
}

void Containment::clear(ModelElement::Impl& element, const ModelElement::Impl& owner,
                        const meta::Property& collection) noexcept {
  if (element.container != &owner || element.containerProperty != collection.getIndex()) return;
  element.container = nullptr;
}

bool Containment::isWithin(const ModelElement::Impl& element,
                           const ModelElement::Impl& root) noexcept {
  const ModelElement::Impl* above = &element;
  while (above != nullptr && above != &root) above = above->container;
  return above != nullptr;
}

}  // namespace kd::zero
