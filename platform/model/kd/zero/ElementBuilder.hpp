#pragma once

#include <boost/uuid/uuid.hpp>

#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/Model.hpp"

namespace kd::zero {

/// Base of the builders: holds the model that new elements belong to.
class ElementBuilder {
 public:
  /// Shares `model`, which must not be empty, for the life of the builder.
  explicit ElementBuilder(const Model& model) noexcept : storage(model.storage()) {
    storage.addHandle();
  }
  ElementBuilder(const ElementBuilder&) = delete;
  ElementBuilder& operator=(const ElementBuilder&) = delete;
  ~ElementBuilder() { storage.dropHandle(); }

 protected:
  template <class K>
  K make(const boost::uuids::uuid& uuid) const {
    return ElementMaker::make<K>(storage, uuid);
  }

  ModelStorage& storage;
};

}  // namespace kd::zero
