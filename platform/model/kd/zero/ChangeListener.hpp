#pragma once

#include <memory>

#include "kd/zero/OCDChange.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

class AbstractOwnedCollection;

/// Is notified of each value that is appended to a sequence of plain values of a model, before it
/// is appended. There are no notifications of other changes: to collections of elements, to the
/// texts of nodes and to other fields.
class QUENLITH_MODEL_EXPORT ChangeListener {
 public:
  virtual ~ChangeListener();

  /// Called before `collection` changes. `change` describes the change; the listener owns it. An
  /// exception prevents the change and reaches the caller that requested it. Must not append to
  /// `collection`; it may append to others.
  virtual void modifying(const AbstractOwnedCollection& collection,
                         std::unique_ptr<OCDChange> change) = 0;
};

}  // namespace kd::zero
