#include "kd/zero/ModelElement.hpp"

#include "kd/zero/Model.hpp"
#include "kd/zero/meta/Class.hpp"

namespace kd::zero {

Model ModelElement::Impl::getModel() const noexcept {
  return Model::share(ModelStorage::of(this));
}

const meta::Class& ModelElement::Impl::getMetaClass() const noexcept {
  return meta::Class::at(classIndex);
}

bool ModelElement::Impl::isKindOf(const meta::Class& metaClass) const noexcept {
  return getMetaClass().conformsTo(metaClass);
}

void ModelElement::Impl::destroy(Impl* element) noexcept {
  Releases releases;
  element->end(releases);
}

inline void ModelElement::Impl::end(Releases& releases) noexcept {
  const meta::Class& metaClass = getMetaClass();
  ModelStorage& storage = ModelStorage::of(this);
  metaClass.getDismantle()(*this, releases);
  storage.deallocateElement(this, metaClass.getSizeBytes());
}

void ModelElement::Releases::endPending() noexcept {
  ofRoot = false;
  while (Impl* ended = pending) {
    pending = ended->container;
    ended->end(*this);
  }
  ofRoot = true;
}

}  // namespace kd::zero
