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

/// What a collection keeps of its property: the place in the table of properties, and whether it
/// is unique with the link to the container as its opposite, as is usual.
struct PropertyKey {
  std::uint16_t index;
  bool linksContainer;
};

/// Describes one property of a class of elements: a collection or a single value. One static
/// object a property; it lives as long as the process.
class QUENLITH_MODEL_EXPORT Property {
 public:
  /// What a property is. Only the fields that its kind needs are set.
  struct Traits {
    std::u16string_view name;
    /// Holds any number of values; else one.
    bool many = false;
    /// No value stands in the collection twice.
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
    /// of its values when it holds many.
    void (*assign)(ModelElement::Impl& element, ModelElement::Impl& owner,
                   const Property& collection) = nullptr;
    /// Collection that contains its elements: that of `owner`, which holds an element.
    ReferenceCollection* (*collectionOf)(ModelElement::Impl& owner) noexcept = nullptr;
  };

  /// Throws std::length_error when kCapacity properties are there already.
  explicit Property(const Traits& traits);
  /// Like it, at a place below kFixedPlaces that no other property has, where collections of the
  /// property are to begin with constants. The key must tell the truth about `traits`.
  Property(PropertyKey fixedKey, const Traits& traits);
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  static constexpr std::size_t kCapacity = 1024;
  static constexpr std::size_t kFixedPlaces = 4;
  static const Property& at(std::uint16_t index) noexcept { return *registered[index]; }

  std::uint16_t getIndex() const noexcept { return key.index; }
  // NOLINTNEXTLINE(google-explicit-constructor): a property is named wherever its key is wanted.
  operator PropertyKey() const noexcept { return key; }
  std::u16string_view getName() const noexcept { return is.name; }
  bool isMany() const noexcept { return is.many; }
  bool isUnique() const noexcept { return is.unique; }
  bool isContainer() const noexcept { return is.container; }
  bool isComposite() const noexcept { return is.composite; }
  const Property* getOpposite() const noexcept { return is.opposite; }
  const Traits& traits() const noexcept { return is; }

 private:
  static std::array<const Property*, kCapacity> registered;

  Traits is;
  PropertyKey key;
};

}  // namespace kd::zero::meta
