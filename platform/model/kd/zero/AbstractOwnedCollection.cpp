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
  // A listener may add and remove listeners: those told are those there at the start and still
  // there when it is their turn. One that was removed may have ended.
  const std::vector<ChangeListener*> atStart = listeners;
  for (ChangeListener* listener : atStart) {
    const bool stillThere =
        std::find(listeners.begin(), listeners.end(), listener) != listeners.end();
    if (stillThere) listener->modifying(*this, change.makeChange());
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
