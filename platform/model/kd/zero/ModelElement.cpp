#include "kd/zero/ModelElement.hpp"

#include "kd/zero/DeferredReleases.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/meta/Class.hpp"

namespace kd::zero {

Model ModelElement::Impl::getModel() const noexcept {
  return Model::share(ModelStorage::of(this));
}

bool ModelElement::Impl::isKindOf(const meta::Class& metaClass) const noexcept {
  return getMetaClass().conformsTo(metaClass);
}

void ModelElement::Impl::destroy(Impl* element) noexcept {
  if (!element->hasParts) {
    element->deallocateBlock();
    return;
  }
  DeferredReleases releases;
  element->destroyWith(releases);
}

void ModelElement::DeferredReleases::destroyTree(Impl* child) noexcept {
  ofRoot = false;
  child->destroyWith(*this);
  while (Impl* element = pending) {
    pending = element->container;
    element->destroyWith(*this);
  }
  ofRoot = true;
}

}  // namespace kd::zero
