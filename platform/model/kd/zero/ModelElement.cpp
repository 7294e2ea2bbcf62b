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
  releases.push(element);
  while (Impl* ended = releases.pending) {
    releases.pending = ended->container;
    const meta::Class& metaClass = ended->getMetaClass();
    ModelStorage& storage = ModelStorage::of(ended);
    metaClass.getDismantle()(*ended, releases);
    storage.deallocateElement(ended, metaClass.getSizeBytes());
  }
}

}  // namespace kd::zero
