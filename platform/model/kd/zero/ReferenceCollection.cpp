#include "kd/zero/ReferenceCollection.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

#include "foundation/core/except/Exception.hpp"
#include "kd/zero/Containment.hpp"
#include "kd/zero/DeferredReleases.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/Verification.hpp"
#include "kd/zero/meta/Class.hpp"
#include "kd0/messages/ElementOfAnotherModel.hpp"
#include "kd0/messages/ElementWithinItself.hpp"

namespace kd::zero {

using foundation::core::except::Exception;

void ReferenceCollection::appendByRules(ModelElement element) {
  if (!element) return;
  ModelElement::Impl& added = *element.get();
  checkCompatibleModel(added);
  const bool loaded = !added.isProxy();
  if (loaded && isUnique() && contains(added)) return;
  if (loaded) checkNoCycle(added);

  Operation operation(*this);
  store(element);
  if (loaded && getOpposite() != nullptr) {
    _inverseAddThis(owner(), added, *getOpposite(), false);
  } else if (loaded && isComposite()) {
    _setContainedByThis(owner(), added, getCollectionProperty());
  }
  operation.commit();
}

inline void ReferenceCollection::checkCompatibleModel(const ModelElement::Impl& element) const {
  if (&ModelStorage::of(&element) == &ModelStorage::of(&owner())) return;
  throw Exception<kd0::messages::ElementOfAnotherModel, std::exception>(
      kd0::messages::ElementOfAnotherModel(element.getMetaClass().getQualifiedName()));
}

inline void ReferenceCollection::checkNoCycle(const ModelElement::Impl& element) const {
  // Only an element that contains others can contain the owner; most elements do not yet.
  if (!Containment::mayContainOthers(element) && &element != &owner()) return;
  const bool contains = isComposite() || (getOpposite() != nullptr && getOpposite()->isContainer());
  if (!contains) return;
  if (!Containment::isWithin(owner(), element)) return;
  throw Exception<kd0::messages::ElementWithinItself, std::exception>(
      kd0::messages::ElementWithinItself(element.getMetaClass().getQualifiedName()));
}

inline bool ReferenceCollection::contains(ModelElement::Impl& element) {
  const meta::Property* opposite = getOpposite();
  if (opposite == nullptr || opposite->isMany()) return containsIdentity(element);
  // The usual opposite is the link to the container, which a new element does not have.
  if (opposite->isContainer() && Containment::containerOf(element) == nullptr) return false;
  return opposite->traits().read(element).toModelElement() == &owner();
}

bool ReferenceCollection::containsIdentity(const ModelElement::Impl& element) {
  if (size() < kIdentitiesFrom) {
    return std::find(places(), places() + size(), &element) != places() + size();
  }
  Identities*& identities = blockHead().identities;
  if (identities == nullptr) {
    identities = std::make_unique<Identities>(places(), places() + size()).release();
  }
  return identities->count(&element) != 0;
}

inline void ReferenceCollection::store(ModelElement& element) {
  owner().hasParts = true;
  if (size() == kLargestSize) {
    throw std::length_error("a sequence holds at most 2^32 - 1 elements");
  }
  if (!inBlock() && empty()) {
    one = element.detach();
    ++count;
    return;
  }
  if (!inBlock() || size() == blockHead().capacity) growBlock();
  if (Identities* identities = blockHead().identities) identities->insert(element.get());
  many[count] = element.detach();
  ++count;
}

void ReferenceCollection::growBlock() {
  const std::size_t capacity = inBlock() ? capacityAfter(size()) : kFirstCapacity;
  ModelStorage& storage = ModelStorage::of(&owner());
  auto* head = new (storage.allocate(blockBytes(capacity))) BlockHead{capacity, nullptr};
  auto** block = reinterpret_cast<ModelElement::Impl**>(head + 1);
  std::copy_n(places(), size(), block);
  if (inBlock()) {
    head->identities = std::exchange(blockHead().identities, nullptr);
    freeBlock();
  }
  many = block;
  setInBlock(true);
}

void ReferenceCollection::freeBlock() noexcept {
  BlockHead& head = blockHead();
  const std::unique_ptr<Identities> identities(head.identities);
  ModelStorage::of(&owner()).deallocate(&head, blockBytes(head.capacity));
}

inline void ReferenceCollection::_inverseAddThis(ModelElement::Impl& collectionOwner,
                                                 ModelElement::Impl& element,
                                                 const meta::Property& opposite,
                                                 bool /*elementIsOwner*/) const {
  if (opposite.isContainer()) {
    Containment::assign(element, collectionOwner, getCollectionProperty());
  } else {
    opposite.traits().assign(element, collectionOwner, getCollectionProperty());
  }
}

inline void ReferenceCollection::_setContainedByThis(ModelElement::Impl& collectionOwner,
                                                     ModelElement::Impl& element,
                                                     const meta::Property& property) const {
  Containment::assign(element, collectionOwner, property);
}

void ReferenceCollection::truncate(std::size_t newCount) noexcept {
  while (size() > newCount) {
    ModelElement last = ModelElement::adopt(places()[count - 1]);
    --count;
    // A collection that is not unique may still have the element in an earlier place.
    const bool gone =
        isUnique() || std::find(places(), places() + size(), last.get()) == places() + size();
    if (gone) Containment::clear(*last.get(), owner(), propertyIndex);
    if (inBlock() && blockHead().identities != nullptr) blockHead().identities->erase(last.get());
  }
}

void ReferenceCollection::forget(const ModelElement::Impl& element) noexcept {
  auto** first = inBlock() ? many : &one;
  auto** last = std::remove(first, first + size(), &element);
  for (auto dropped = first + size() - last; dropped > 0; --dropped, --count) {
    --const_cast<ModelElement::Impl&>(element).references;
  }
  if (inBlock() && blockHead().identities != nullptr) blockHead().identities->erase(&element);
}

void ReferenceCollection::releaseAll(ModelElement::DeferredReleases& releases) noexcept {
  const ModelElement::Impl& holder = owner();
  ModelElement::Impl* const* element = places();
  for (ModelElement::Impl* const* const end = element + size(); element != end; ++element) {
    Containment::clear(**element, holder, propertyIndex);
    releases.drop(*element);
  }
  if (inBlock()) freeBlock();
  setInBlock(false);
  count = 0;
}

bool ReferenceCollection::isAmongLast(const ModelElement::Impl& element) const noexcept {
  const std::reverse_iterator last(places() + size());
  const std::reverse_iterator first(places());
  return std::find(last, first, &element) != first;
}

void ReferenceCollection::verify(const ModelElement::Impl& holder,
                                 Verification& verification) const {
  verification.expect(&owner() == &holder, "a collection finds its owner");
  verification.expect(!containsValues(), "a collection knows what its places are");
  verification.expect(meta::Property::isAt(propertyIndex), "a collection has a property");
  if (verification.getBroken() != nullptr) return;
  const bool opposesContainer = getOpposite() != nullptr && getOpposite()->isContainer();
  verification.expect(linksContainer() == (isUnique() && opposesContainer),
                      "the key of a collection agrees with its property");
  verification.expect(empty() || holder.hasParts, "the owner of an element has parts");
  verifyPlaces(verification);
  if (verification.getBroken() != nullptr) return;

  std::for_each(places(), places() + size(), [&](const ModelElement::Impl* element) {
    verification.addPlace(element);
    if (verification.getBroken() == nullptr) verifyContainment(*element, holder, verification);
  });
  if (verification.getBroken() == nullptr) verifyDistinct(verification);
}

void ReferenceCollection::verifyPlaces(Verification& verification) const {
  if (!inBlock()) {
    verification.expect(size() <= 1, "a collection without a block has at most one element");
    return;
  }
  const BlockHead& head = blockHead();
  verification.expect(size() <= head.capacity, "a collection is not larger than its block");
  verification.addBlock(&head, blockBytes(head.capacity));
  if (verification.getBroken() != nullptr) return;
  if (head.identities == nullptr) return;
  verification.expect(*head.identities == Identities(places(), places() + size()),
                      "the set of identities has what the places have");
}

void ReferenceCollection::verifyDistinct(Verification& verification) const {
  // With a single-valued opposite, `contains` looks only at the latest owner of an element, so an
  // element that had another owner in between is appended again. Proxies are never looked up.
  const meta::Property* opposite = getOpposite();
  const bool byLatestOwner = opposite != nullptr && !opposite->isMany() && !opposite->isContainer();
  if (!isUnique() || byLatestOwner || size() < 2) return;
  Identities distinct;
  std::for_each(places(), places() + size(), [&](const ModelElement::Impl* element) {
    verification.expect(element->proxy || distinct.insert(element).second,
                        "no element is in a unique collection twice");
  });
}

void ReferenceCollection::verifyContainment(const ModelElement::Impl& element,
                                            const ModelElement::Impl& holder,
                                            Verification& verification) const {
  if (element.proxy || !getCollectionProperty().containsElements()) return;
  verification.expect(element.container == &holder && element.containerProperty == propertyIndex,
                      "an element in a containing collection knows its container");
  verification.expect(holder.containsOthers, "a container counts as one");
}

}  // namespace kd::zero
