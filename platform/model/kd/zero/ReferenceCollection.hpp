#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <unordered_set>
#include <utility>

#include "kd/zero/AbstractOwnedCollection.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/ModelStorage.hpp"

namespace kd::zero {

/// Base of the collections of references to elements of any kind.
///
/// A first element is stored in the collection itself, several in a block of the model's storage.
/// Appending takes amortized constant time, and time linear in the size of the other collection if
/// another one contained the element: moving all elements of a large collection one by one takes
/// quadratic time.
class QUENLITH_MODEL_EXPORT ReferenceCollection : public AbstractOwnedCollection {
 public:
  /// Tells whether it owns its elements: an element is in at most one composite collection.
  bool isComposite() const noexcept { return getCollectionProperty().isComposite(); }
  /// The property at the other end of a bidirectional reference, or null.
  const meta::Property* getOpposite() const noexcept {
    return getCollectionProperty().getOpposite();
  }

  /// Checks the collection, which is one of `holder`, and reports its elements.
  void verify(const ModelElement::Impl& holder, Verification& verification) const;
  /// Tells whether `element` is in it. Searches backwards, so a recently appended one is found
  /// fast.
  bool isAmongLast(const ModelElement::Impl& element) const noexcept;

  /// Drops the references to all elements; for the destruction of the owner.
  void releaseAll(ModelElement::DeferredReleases& releases) noexcept;

 protected:
  ReferenceCollection(const ModelElement::Impl& collectionOwner,
                      meta::PropertyKey property) noexcept
      : AbstractOwnedCollection(collectionOwner, property, Content::kElements) {}
  ReferenceCollection(ModelElement::Impl* const& collectionOwner,
                      meta::PropertyKey property) noexcept
      : AbstractOwnedCollection(collectionOwner, property, Content::kElements) {}
  // An owner that forgets to release a collection would keep its elements and their model forever.
  ~ReferenceCollection() { assert(empty() && "releaseAll of the owner releases each collection"); }

  void append(ModelElement element) {
    if (!appendDetached(element)) appendByRules(std::move(element));
  }
  ModelElement::Impl* const* places() const noexcept { return inBlock() ? many : &one; }

  static constexpr std::size_t kFirstCapacity = 4;
  static constexpr std::size_t kLargestSize = std::numeric_limits<std::uint32_t>::max();
  /// The capacity of the block that replaces a full one. It never exceeds kLargestSize, so that
  /// `appendDetached`, which looks at the capacity only, does not append to a collection of that
  /// size either.
  static constexpr std::size_t capacityAfter(std::size_t capacity) noexcept {
    return std::min(2 * capacity, kLargestSize);
  }

 private:
  friend class AbstractOwnedCollection::Operation;
  friend struct Containment;
  friend struct ElementMaker;

  using Identities = std::unordered_set<const ModelElement::Impl*>;
  struct BlockHead {
    std::size_t capacity;
    /// The elements of a large unique collection that is searched by identity; otherwise null.
    Identities* identities;
  };
  static constexpr std::size_t kIdentitiesFrom = 16;

  /// The fast path of `append`: does the same as `appendByRules` for an element without a container
  /// when no block has to be allocated, and returns true. Most elements are appended this way; the
  /// header of the element then answers what the rules ask.
  ///
  /// Otherwise returns false and changes neither the collection nor `element`; the owner may have
  /// been marked as an element with parts, which only makes its destruction slower.
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
  void verifyPlaces(Verification& verification) const;
  void verifyDistinct(Verification& verification) const;
  void verifyContainment(const ModelElement::Impl& element, const ModelElement::Impl& holder,
                         Verification& verification) const;
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
  ModelElement::Impl* holder = enclosingOwner();
  if (added == nullptr || holder == nullptr || !linksContainer()) return false;
  if (added->container != nullptr || added->proxy) return false;

  ModelStorage& storage = ModelStorage::of(holder);
  if (&ModelStorage::of(added) != &storage) return false;
  // Set before the test of `added->hasParts`, so that the test does not miss an element that is
  // appended to itself. An element without parts contains nothing, so it is not above the holder.
  holder->hasParts = true;
  if (added->hasParts && (added == holder || holder->container != nullptr)) return false;

  const bool several = inBlock();
  if (several ? count == blockHead().capacity : count != 0) return false;
  (several ? many[count] : one) = element.detach();
  ++count;
  ++storage.operations;
  added->container = holder;
  added->containerProperty = propertyIndex;
  holder->containsOthers = true;
  return true;
}

}  // namespace kd::zero
