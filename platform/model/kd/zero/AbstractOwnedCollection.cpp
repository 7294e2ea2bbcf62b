#include "kd/zero/AbstractOwnedCollection.hpp"

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
  // A listener may add or remove listeners: those told are those there at the start.
  const std::vector<ChangeListener*> told = listeners;
  for (ChangeListener* listener : told) listener->modifying(*this, change.makeChange());
}

void AbstractOwnedCollection::Operation::rollBack() noexcept {
  if (collection.holdsValues) {
    static_cast<PrimitiveCollection&>(collection).truncate(oldCount);
  } else {
    static_cast<ReferenceCollection&>(collection).truncate(oldCount);
  }
}

}  // namespace kd::zero
