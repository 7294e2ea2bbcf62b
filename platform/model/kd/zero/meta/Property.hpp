#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/Value.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero {
class ReferenceCollection;
}

namespace kd::zero::meta {

/// What a collection keeps of its property: its place in the table of properties, and whether it
/// is unique with the link to the container as its opposite, as is usual.
struct PropertyKey {
  std::uint16_t index;
  bool linksContainer;
};

/// Describes one property of a class of elements: a collection or a single value. There is one
/// static object per property; it exists as long as the process. Descriptions may be made on
/// several threads.
class QUENLITH_MODEL_EXPORT Property {
 public:
  /// What a property is. Only the fields that its kind needs are set.
  struct Traits {
    std::u16string_view name;
    /// It has any number of values; otherwise one.
    bool many = false;
    /// No value is in the collection twice.
    bool unique = false;
    /// The collection owns its elements.
    bool composite = false;
    /// The property at the other end of a bidirectional reference, or null.
    const Property* opposite = nullptr;
    /// Single-valued: it is the link from an element to its container, and `read` and `assign`
    /// are those of Containment.
    bool container = false;
    /// Single-valued: the value that an element has.
    Value (*read)(const ModelElement::Impl& element) = nullptr;
    /// Opposite: makes `owner`, whose collection is `collection`, the value of `element`, or one
    /// of its values when it has many.
    void (*assign)(ModelElement::Impl& element, ModelElement::Impl& owner,
                   const Property& collection) = nullptr;
    /// Collection that contains its elements: returns the collection of `owner`, which contains at
    /// least one element.
    ReferenceCollection* (*collectionOf)(ModelElement::Impl& owner) noexcept = nullptr;
  };

  /// Does not throw, so that a library with properties in static storage can always be loaded.
  /// When kCapacity properties exist already, making a collection of this one throws.
  explicit Property(const Traits& traits) noexcept;
  /// Like it, with a fixed key below kFixedKeys that no other property has, where new collections
  /// of the property are to be constants. The key must agree with `traits`.
  Property(PropertyKey fixedKey, const Traits& traits) noexcept;
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  static constexpr std::size_t kCapacity = 65536;
  static constexpr std::size_t kFixedKeys = 4;
  static const Property& at(std::uint16_t index) noexcept { return *table[index]; }
  /// Tells whether there is a property at a place of the table.
  static bool isAt(std::uint16_t index) noexcept { return table[index] != nullptr; }

  std::uint16_t getIndex() const noexcept { return key.index; }
  /// Throws std::length_error when kCapacity properties existed before this one was made.
  // NOLINTNEXTLINE(google-explicit-constructor): a property is named wherever its key is wanted.
  operator PropertyKey() const {
    if (!inTable) throwNotInTable();
    return key;
  }
  std::u16string_view getName() const noexcept { return propertyTraits.name; }
  bool isMany() const noexcept { return propertyTraits.many; }
  bool isUnique() const noexcept { return propertyTraits.unique; }
  bool isContainer() const noexcept { return propertyTraits.container; }
  bool isComposite() const noexcept { return propertyTraits.composite; }
  const Property* getOpposite() const noexcept { return propertyTraits.opposite; }
  /// Tells whether an element of the collection has the collection's owner as its container.
  bool containsElements() const noexcept {
    const Property* opposite = propertyTraits.opposite;
    return opposite == nullptr ? propertyTraits.composite : opposite->isContainer();
  }
  const Traits& traits() const noexcept { return propertyTraits; }

 private:
  // Half a megabyte of zeros, of which the process touches only the pages that are in use.
  static std::array<const Property*, kCapacity> table;
  [[noreturn]] static void throwNotInTable();

  Traits propertyTraits;
  PropertyKey key;
  bool inTable;
};

}  // namespace kd::zero::meta
