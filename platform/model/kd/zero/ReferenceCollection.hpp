#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <utility>

#include "kd/zero/AbstractOwnedCollection.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/ModelStorage.hpp"

namespace kd::zero {

/// A collection of references to elements, of whatever kind.
///
/// One element stands in the collection itself, more of them in a block of the model's
/// storage. Appending is constant on average however many there are.
class QUENLITH_MODEL_EXPORT ReferenceCollection : public AbstractOwnedCollection {
 public:
  /// Tells whether it owns its elements: an element is then in one such collection at most.
  bool isComposite() const noexcept { return getCollectionProperty().isComposite(); }
  /// The property at the other end of a bidirectional reference, or null.
  const meta::Property* getOpposite() const noexcept {
    return getCollectionProperty().getOpposite();
  }

  /// Drops all elements; for the owner's own end.
  void releaseAll(ModelElement::Releases& releases) noexcept;

 protected:
  ReferenceCollection(const ModelElement::Impl& collectionOwner,
                      const meta::Property& property) noexcept
      : AbstractOwnedCollection(collectionOwner, property, Holds::kElements) {}
  ReferenceCollection(ModelElement::Impl* const& collectionOwner,
                      const meta::Property& property) noexcept
      : AbstractOwnedCollection(collectionOwner, property, Holds::kElements) {}
  ~ReferenceCollection() = default;

  void append(ModelElement element) {
    if (!appendDetached(element)) appendByRules(std::move(element));
  }
  ModelElement::Impl* const* places() const noexcept { return inBlock ? many : &one; }

 private:
  friend class AbstractOwnedCollection::Operation;
  friend struct Containment;

  using Identities = std::unordered_set<const ModelElement::Impl*>;
  struct BlockHead {
    std::size_t capacity;
    /// The elements of a large unique collection that is asked by identity; else null.
    Identities* identities;
  };
  static constexpr std::size_t kIdentitiesFrom = 16;

  /// Does what `appendByRules` comes to for an element that was just made, when there is room
  /// for it, and returns true; else does nothing. Most elements are appended so, and all that the
  /// rules ask is then known from the element itself.
  bool appendDetached(ModelElement& element) noexcept;
  void appendByRules(ModelElement element);
  void checkCompatibleModel(const ModelElement::Impl& element) const;
  void checkNoCycle(const ModelElement::Impl& element) const;
  bool contains(ModelElement::Impl& element);
  bool containsIdentity(const ModelElement::Impl& element);
  void store(ModelElement& element);
  void _inverseAddThis(ModelElement::Impl& collectionOwner, ModelElement::Impl& element,
                       const meta::Property& opposite, bool elementIsOwner) const;
  void _setContainedByThis(ModelElement::Impl& collectionOwner, ModelElement::Impl& element,
                           const meta::Property& property) const;
  void growBlock();
  void freeBlock() noexcept;
  void truncate(std::size_t newCount) noexcept;
  void forget(const ModelElement::Impl& element) noexcept;
  BlockHead& blockHead() const noexcept { return reinterpret_cast<BlockHead*>(many)[-1]; }
  static std::size_t blockBytes(std::size_t capacity) noexcept {
    return sizeof(BlockHead) + capacity * sizeof(ModelElement::Impl*);
  }

  union {
    ModelElement::Impl* one = nullptr;
    ModelElement::Impl** many;
  };
};

inline bool ReferenceCollection::appendDetached(ModelElement& element) noexcept {
  ModelElement::Impl* added = element.get();
  if (added == nullptr || !linksContainer || added->container != nullptr || added->proxy) {
    return false;
  }
  ModelElement::Impl& holder = owner();
  ModelStorage& storage = ModelStorage::of(&holder);
  const bool canBeAbove =
      added == &holder || (added->containsOthers && holder.container != nullptr);
  const bool hasRoom = inBlock ? count < blockHead().capacity : count == 0;
  if (canBeAbove || !hasRoom || &ModelStorage::of(added) != &storage) return false;
  ++storage.operations;
  (inBlock ? many[count] : one) = element.detach();
  ++count;
  added->container = &holder;
  added->containerProperty = propertyIndex;
  holder.containsOthers = true;
  return true;
}

}  // namespace kd::zero
