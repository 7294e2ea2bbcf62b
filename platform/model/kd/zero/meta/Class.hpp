#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero::meta {

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

  /// The type that every class of elements conforms to.
  static const Type::Impl& modelElement() noexcept;

  static constexpr std::size_t kCapacity = 256;
  static const Class& at(std::uint8_t index) noexcept { return *registered[index]; }

  std::uint8_t getIndex() const noexcept { return index; }
  std::size_t getSizeBytes() const noexcept { return size; }
  Dismantle getDismantle() const noexcept { return dismantleElement; }

 private:
  static std::array<const Class*, kCapacity> registered;

  std::size_t size;
  Dismantle dismantleElement;
  std::uint8_t index;
};

}  // namespace kd::zero::meta

namespace kd::zero {

inline ModelElement::Impl::Impl(const meta::Class& metaClass) noexcept
    : classIndex(metaClass.getIndex()) {}

}  // namespace kd::zero
