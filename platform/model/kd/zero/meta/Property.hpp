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

/// What a collection stores of its property: the index in the table of properties, and whether the
/// property is unique and its opposite is the link to the container, which is the usual case.
struct PropertyKey {
  std::uint16_t index;
  bool linksContainer;
};

/// Describes one property of a class of elements: a collection or a single value. There is one
/// static object per property; it exists as long as the process. Descriptions may be created on
/// several threads.
class QUENLITH_MODEL_EXPORT Property {
 public:
  /// Describes a property. Only the fields that its kind needs are set.
  struct Traits {
    std::u16string_view name;
    /// It has any number of values; otherwise one.
    bool many = false;
    /// Appending skips a value that is in the collection already.
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
  /// When kCapacity properties exist already, creating a collection of this one throws.
  explicit Property(const Traits& traits) noexcept;
  /// Like it, with a fixed key below kFixedKeys that no other property has and that agrees with
  /// `traits`. Fixed keys are for the model library: another library cannot know which are in use.
  /// A key that is out of range or in use ends the process with a message. A constant key makes the
  /// header of a new collection a constant, which is one store.
  Property(PropertyKey key, const Traits& traits) noexcept;
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  static constexpr std::size_t kCapacity = 65536;
  static constexpr std::size_t kFixedKeys = 1;
  static const Property& at(std::uint16_t index) noexcept { return *table[index]; }
  /// Tells whether there is a property at `index` of the table.
  static bool isAt(std::uint16_t index) noexcept { return table[index] != nullptr; }

  std::uint16_t getIndex() const noexcept { return key.index; }
  /// Throws std::length_error if kCapacity properties existed before this one was created.
  // NOLINTNEXTLINE(google-explicit-constructor): callers pass a property where a key is expected.
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
