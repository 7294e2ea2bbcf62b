#include "kd/zero/AbstractOwnedCollection.hpp"

#include <cassert>
#include <vector>

#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/OCDChangeDescriptor.hpp"
#include "kd/zero/PrimitiveCollection.hpp"
#include "kd/zero/ReferenceCollection.hpp"

namespace kd::zero {

namespace {

std::size_t distance(const void* from, const void* to) noexcept {
  return static_cast<std::size_t>(static_cast<const std::byte*>(to) -
                                  static_cast<const std::byte*>(from));
}

}  // namespace

AbstractOwnedCollection::AbstractOwnedCollection(const ModelElement::Impl& collectionOwner,
                                                 const meta::Property& property,
                                                 Holds content) noexcept
    : propertyIndex(property.getIndex()),
      ownerDistance((distance(&collectionOwner, this) / kGranule) & 0x1FFF),
      ownerIsReferred(false),
      holdsValues(content == Holds::kValues) {
  assert(&owner() == &collectionOwner);
}

AbstractOwnedCollection::AbstractOwnedCollection(ModelElement::Impl* const& collectionOwner,
                                                 const meta::Property& property,
                                                 Holds content) noexcept
    : propertyIndex(property.getIndex()),
      ownerDistance((distance(&collectionOwner, this) / kGranule) & 0x1FFF),
      ownerIsReferred(true),
      holdsValues(content == Holds::kValues) {
  assert(&owner() == collectionOwner);
}

ModelElement::Impl& AbstractOwnedCollection::owner() const noexcept {
  const std::byte* place = reinterpret_cast<const std::byte*>(this) -
                           static_cast<std::ptrdiff_t>(ownerDistance) * kGranule;
  if (ownerIsReferred) return **reinterpret_cast<ModelElement::Impl* const*>(place);
  return *const_cast<ModelElement::Impl*>(reinterpret_cast<const ModelElement::Impl*>(place));
}

void AbstractOwnedCollection::modifying(const OCDChangeDescriptor& change) const {
  const std::vector<ChangeListener*>& listeners = ModelStorage::of(&owner()).listeners;
  if (listeners.empty()) return;
  // A listener may add or remove listeners: those told are those there at the start.
  const std::vector<ChangeListener*> told = listeners;
  for (ChangeListener* listener : told) listener->modifying(*this, change.makeChange());
}

AbstractOwnedCollection::Operation::Operation(AbstractOwnedCollection& changed) noexcept
    : collection(changed), oldCount(changed.count) {
  ++ModelStorage::of(&changed.owner()).operations;
}

void AbstractOwnedCollection::Operation::rollBack() noexcept {
  if (collection.holdsValues) {
    static_cast<PrimitiveCollection&>(collection).truncate(oldCount);
  } else {
    static_cast<ReferenceCollection&>(collection).truncate(oldCount);
  }
}

}  // namespace kd::zero
