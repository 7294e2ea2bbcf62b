#include "kd/zero/ModelElement.hpp"

#include "kd/zero/Model.hpp"
#include "kd/zero/Releases.hpp"
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
    element->giveBackBlock();
    return;
  }
  Releases releases;
  element->end(releases);
}

void ModelElement::Releases::end(Impl* child) noexcept {
  ofRoot = false;
  child->end(*this);
  while (Impl* ended = pending) {
    pending = ended->container;
    ended->end(*this);
  }
  ofRoot = true;
}

}  // namespace kd::zero
