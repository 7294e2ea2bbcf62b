#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero::meta {

/// What an element keeps of its class: the place in the table of classes.
struct ClassKey {
  std::uint8_t index;
};

/// Describes one class of model elements. One static object a class; it lives as long as
/// the process.
class QUENLITH_MODEL_EXPORT Class : public Type::Impl {
 public:
  /// Lets go of everything that an element holds and runs its destructor; its storage is
  /// given back by the caller.
  using Dismantle = void (*)(ModelElement::Impl& element,
                             ModelElement::Releases& releases) noexcept;

  /// `sizeBytes` is the size of an element's implementation object; `base` may be null.
  /// Throws std::length_error when kCapacity classes are there already.
  Class(std::u16string_view qualifiedName, const Type::Impl* base, std::size_t sizeBytes,
        Dismantle dismantle);
  /// Like it, at a place below kFixedPlaces that no other class has. Where the place is a constant,
  /// so is what a new element begins with.
  Class(ClassKey place, std::u16string_view qualifiedName, const Type::Impl* base,
        std::size_t sizeBytes, Dismantle dismantle);

  /// The type that every class of elements conforms to.
  static const Type::Impl& modelElement() noexcept;

  static constexpr std::size_t kCapacity = 128;
  static constexpr std::size_t kFixedPlaces = 4;
  static const Class& at(std::uint8_t index) noexcept { return *registered[index]; }

  std::uint8_t getIndex() const noexcept { return key.index; }
  // NOLINTNEXTLINE(google-explicit-constructor): a class is named wherever its key is wanted.
  operator ClassKey() const noexcept { return key; }
  std::size_t getSizeBytes() const noexcept { return size; }
  Dismantle getDismantle() const noexcept { return dismantleElement; }

 private:
  static std::array<const Class*, kCapacity> registered;

  std::size_t size;
  Dismantle dismantleElement;
  ClassKey key;
};

}  // namespace kd::zero::meta

namespace kd::zero {

inline ModelElement::Impl::Impl(meta::ClassKey metaClass, Parts parts) noexcept
    : classIndex(metaClass.index & (meta::Class::kCapacity - 1)), hasParts(parts == Parts::kSome) {}

}  // namespace kd::zero
