#include "kd/zero/AbstractOwnedCollection.hpp"

#include <algorithm>
#include <vector>

#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/OCDChangeDescriptor.hpp"
#include "kd/zero/PrimitiveCollection.hpp"
#include "kd/zero/ReferenceCollection.hpp"

namespace kd::zero {

void AbstractOwnedCollection::modifying(const OCDChangeDescriptor& change) const {
  const std::vector<ChangeListener*>& listeners = ModelStorage::of(&owner()).listeners;
  if (listeners.empty()) return;
  // A listener may add and remove listeners. Notify those that were registered at the start and
  // still are when it is their turn: one that was removed may have been destroyed.
  const std::vector<ChangeListener*> atStart = listeners;
  for (ChangeListener* listener : atStart) {
    const bool stillRegistered =
        std::find(listeners.begin(), listeners.end(), listener) != listeners.end();
    if (stillRegistered) listener->modifying(*this, change.makeChange());
  }
}

void AbstractOwnedCollection::Operation::rollBack() noexcept {
  if (collection.containsValues()) {
    static_cast<PrimitiveCollection&>(collection).truncate(oldCount);
  } else {
    static_cast<ReferenceCollection&>(collection).truncate(oldCount);
  }
}

}  // namespace kd::zero
