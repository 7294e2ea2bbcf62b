#include "kd/zero/Model.hpp"

#include <algorithm>

#include "kd/zero/Verification.hpp"

namespace kd::zero {

Model Model::create() {
  Model model;
  model.storageOfModel = ModelStorage::make();
  return model;
}

Model Model::share(ModelStorage& storage) noexcept {
  storage.addHandle();
  Model model;
  model.storageOfModel = &storage;
  return model;
}

const char* Model::findBrokenInvariant() const {
  Verification verification(*storageOfModel);
  verification.checkStorage();
  if (storageOfModel->root != nullptr) verification.checkTree(*storageOfModel->root);
  verification.finish();
  return verification.getBroken();
}

const char* Model::findBrokenInvariant(const ModelElement& top) const {
  Verification verification(*storageOfModel);
  verification.checkTree(*top.get());
  verification.finish();
  return verification.getBroken();
}

void Model::addListener(ChangeListener& listener) const {
  storageOfModel->listeners.push_back(&listener);
}

void Model::removeListener(ChangeListener& listener) const noexcept {
  auto& listeners = storageOfModel->listeners;
  const auto place = std::find(listeners.begin(), listeners.end(), &listener);
  if (place != listeners.end()) listeners.erase(place);
}

}  // namespace kd::zero
