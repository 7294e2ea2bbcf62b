#pragma once

#include <cstddef>
#include <cstdint>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/meta/Property.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

class OCDChangeDescriptor;

/// A collection that one element owns through one of its properties.
///
/// It is a member of its owner and cannot be copied. To keep elements small it stores its distance
/// from the owner in 12 bits, not a pointer.
class QUENLITH_MODEL_EXPORT AbstractOwnedCollection {
 public:
  class Operation;

  AbstractOwnedCollection(const AbstractOwnedCollection&) = delete;
  AbstractOwnedCollection& operator=(const AbstractOwnedCollection&) = delete;

  ModelElement getOwner() const noexcept { return ModelElement::share(&owner()); }
  const meta::Property& getCollectionProperty() const noexcept {
    return meta::Property::at(propertyIndex);
  }
  /// Tells whether appending skips an element that is in the collection already.
  bool isUnique() const noexcept { return getCollectionProperty().isUnique(); }

  std::size_t size() const noexcept { return count; }
  bool empty() const noexcept { return count == 0; }

 protected:
  enum class Content : bool { kElements, kValues };

  /// A collection that is a member of `collectionOwner`.
  AbstractOwnedCollection(const ModelElement::Impl& collectionOwner, meta::PropertyKey property,
                          Content content) noexcept
      : AbstractOwnedCollection(&collectionOwner, property, content, false) {}
  /// A collection that is a member of an object that the owner allocates separately;
  /// `collectionOwner` is a member of the same object.
  AbstractOwnedCollection(ModelElement::Impl* const& collectionOwner, meta::PropertyKey property,
                          Content content) noexcept
      : AbstractOwnedCollection(&collectionOwner, property, content, true) {}
  ~AbstractOwnedCollection() = default;

  ModelElement::Impl& owner() const noexcept {
    const std::byte* place = ownerAddress();
    if ((shape & kOwnerIsIndirect) != 0) {
      return **reinterpret_cast<ModelElement::Impl* const*>(place);
    }
    return *const_cast<ModelElement::Impl*>(reinterpret_cast<const ModelElement::Impl*>(place));
  }
  /// Returns the owner of a collection that is a direct member of it, otherwise null.
  ModelElement::Impl* enclosingOwner() const noexcept {
    if ((shape & kOwnerIsIndirect) != 0) return nullptr;
    return const_cast<ModelElement::Impl*>(
        reinterpret_cast<const ModelElement::Impl*>(ownerAddress()));
  }

  bool containsValues() const noexcept { return (shape & kContainsValues) != 0; }
  /// Tells whether it is unique and its opposite is the link to the container: the usual case.
  bool linksContainer() const noexcept { return (shape & kLinksContainer) != 0; }
  /// Tells whether its elements are in a block; otherwise it contains its only element itself.
  bool inBlock() const noexcept { return (shape & kInBlock) != 0; }
  void setInBlock(bool value) noexcept {
    shape = static_cast<std::uint16_t>(value ? shape | kInBlock : shape & ~kInBlock);
  }

  /// Notifies the listeners of the model of a change that is about to be made. Creates no record
  /// when there is no listener. Throws what a listener throws.
  void modifying(const OCDChangeDescriptor& change) const;

  std::uint32_t count = 0;
  std::uint16_t propertyIndex;

 private:
  // `shape` packs the distance from the owner, in granules, and four flags into 16 bits. With the
  // count and the property index it makes a header of 8 bytes instead of 16 with a pointer to the
  // owner. The distance has 12 bits, so a collection is at most 16 KiB into its owner; an element
  // has at most ModelStorage::kLargestBlock bytes.
  static constexpr std::uint16_t kGranule = 4;
  static constexpr std::uint16_t kDistance = 0x0FFF;
  static constexpr std::uint16_t kOwnerIsIndirect = 0x1000;
  static constexpr std::uint16_t kContainsValues = 0x2000;
  static constexpr std::uint16_t kLinksContainer = 0x4000;
  static constexpr std::uint16_t kInBlock = 0x8000;

  AbstractOwnedCollection(const void* place, meta::PropertyKey property, Content content,
                          bool ownerIsIndirect) noexcept
      : propertyIndex(property.index),
        shape(static_cast<std::uint16_t>(
            static_cast<std::size_t>(reinterpret_cast<const std::byte*>(this) -
                                     static_cast<const std::byte*>(place)) /
                kGranule |
            (ownerIsIndirect ? kOwnerIsIndirect : 0U) |
            (content == Content::kValues ? kContainsValues : 0U) |
            (property.linksContainer ? kLinksContainer : 0U))) {}

  const std::byte* ownerAddress() const noexcept {
    return reinterpret_cast<const std::byte*>(this) - std::ptrdiff_t{shape & kDistance} * kGranule;
  }

  std::uint16_t shape;
};

/// A scoped change of a collection: the destructor removes what was appended since the constructor,
/// unless the change was committed.
class QUENLITH_MODEL_EXPORT AbstractOwnedCollection::Operation {
 public:
  /// Borrows `collection` for the life of the operation.
  explicit Operation(AbstractOwnedCollection& collection) noexcept
      : collection(collection), oldCount(collection.count) {
    ++ModelStorage::of(&collection.owner()).operations;
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;
  ~Operation() {
    if (!committed) rollBack();
  }

  void commit() noexcept { committed = true; }

 private:
  void rollBack() noexcept;

  AbstractOwnedCollection& collection;
  std::size_t oldCount;
  bool committed = false;
};

}  // namespace kd::zero
