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
/// It stands inside its owner and is not copied. To keep an element small it holds no pointer
/// to its owner but the distance from it.
class QUENLITH_MODEL_EXPORT AbstractOwnedCollection {
 public:
  class Operation;

  AbstractOwnedCollection(const AbstractOwnedCollection&) = delete;
  AbstractOwnedCollection& operator=(const AbstractOwnedCollection&) = delete;

  ModelElement getOwner() const noexcept { return ModelElement::share(&owner()); }
  const meta::Property& getCollectionProperty() const noexcept {
    return meta::Property::at(propertyIndex);
  }
  /// Tells whether no element stands in it twice.
  bool isUnique() const noexcept { return getCollectionProperty().isUnique(); }

  std::size_t size() const noexcept { return count; }
  bool empty() const noexcept { return count == 0; }

 protected:
  enum class Content : bool { kElements, kValues };

  /// A collection that is a member of `collectionOwner`.
  AbstractOwnedCollection(const ModelElement::Impl& collectionOwner, meta::PropertyKey property,
                          Content content) noexcept
      : AbstractOwnedCollection(&collectionOwner, property, content, false) {}
  /// A collection that is a member of a part of the owner which is made only when it is used;
  /// `collectionOwner` is a member of the same part.
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
  /// The owner of a collection that stands in it directly, or else null.
  ModelElement::Impl* enclosingOwner() const noexcept {
    if ((shape & kOwnerIsIndirect) != 0) return nullptr;
    return const_cast<ModelElement::Impl*>(
        reinterpret_cast<const ModelElement::Impl*>(ownerAddress()));
  }

  bool containsValues() const noexcept { return (shape & kContainsValues) != 0; }
  /// It is unique and its opposite is the link to the container, as is usual.
  bool linksContainer() const noexcept { return (shape & kLinksContainer) != 0; }
  /// Its elements stand in a block, not in itself.
  bool inBlock() const noexcept { return (shape & kInBlock) != 0; }
  void setInBlock(bool now) noexcept {
    shape = static_cast<std::uint16_t>(now ? shape | kInBlock : shape & ~kInBlock);
  }

  /// Tells the listeners of the model of a change that is about to be made. With no listener
  /// no record is made. Throws what a listener throws.
  void modifying(const OCDChangeDescriptor& change) const;

  std::uint32_t count = 0;
  std::uint16_t propertyIndex;

 private:
  // The shape: the distance from the owner, in granules, and four facts. One word, so that the
  // usual append asks for all of it at once.
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

/// A scoped change of a collection: what was appended since it was opened is dropped again
/// unless it is committed.
class QUENLITH_MODEL_EXPORT AbstractOwnedCollection::Operation {
 public:
  /// Borrows `changed` for the life of the operation.
  explicit Operation(AbstractOwnedCollection& changed) noexcept
      : collection(changed), oldCount(changed.count) {
    ++ModelStorage::of(&changed.owner()).operations;
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
