#pragma once

#include <boost/uuid/uuid.hpp>

#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/Model.hpp"

namespace kd::zero {

/// What the builders of all kinds share: the model that new elements belong to.
class ElementBuilder {
 public:
  /// Shares `builderModel` for the life of the builder.
  explicit ElementBuilder(const Model& builderModel) noexcept : model(builderModel) {}

 protected:
  template <class K>
  K make(const boost::uuids::uuid& uuid) const {
    return ElementMaker::make<K>(model, uuid);
  }

 private:
  Model model;
};

}  // namespace kd::zero
