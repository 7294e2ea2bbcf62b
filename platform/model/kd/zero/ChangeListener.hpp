#pragma once

#include <memory>

#include "kd/zero/OCDChange.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

class AbstractOwnedCollection;

/// Is told of changes to the collections of a model, each before it is made.
class QUENLITH_MODEL_EXPORT ChangeListener {
 public:
  virtual ~ChangeListener();

  /// `collection` is about to change as `change`, now the listener's own, says. What this
  /// throws stops the change.
  virtual void modifying(const AbstractOwnedCollection& collection,
                         std::unique_ptr<OCDChange> change) = 0;
};

}  // namespace kd::zero
