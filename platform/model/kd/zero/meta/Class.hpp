#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Type.hpp"

namespace kd::zero {
class Verification;
}

namespace kd::zero::meta {

/// What an element stores of its class, in seven bits: the index in the table of classes, or
/// kNotInTable for a class that was described after the table was full.
///
/// Seven bits keep the header of an element at 16 bytes. A block of a class outside the table
/// begins with a pointer to the class, before the element, so the number of classes has no limit
/// and only elements of the classes after the 127th are larger.
struct ClassKey {
  static constexpr std::uint8_t kNotInTable = 127;

  std::uint8_t index;
};

/// Describes one class of model elements. There is one static object per class; it exists as long
/// as the process. Bundles that define classes may create descriptions on several threads.
class QUENLITH_MODEL_EXPORT Class : public Type::Impl {
 public:
  /// Releases everything that an element refers to and runs its destructor; the caller
  /// returns its block.
  using Dismantle = void (*)(ModelElement::Impl& element,
                             ModelElement::DeferredReleases& releases) noexcept;
  /// Checks the invariants of an element and reports its collections; see Verification.
  using Verify = void (*)(const ModelElement::Impl& element, Verification& verification);

  /// `sizeBytes` is the size of an element's implementation object; `base` may be null. An abstract
  /// class, one without elements, has no `dismantle` and no `verify`.
  ///
  /// Does not throw, so that a library with classes in static storage can always be loaded.
  Class(std::u16string_view qualifiedName, const Type::Impl* base, std::size_t sizeBytes = 0,
        Dismantle dismantle = nullptr, Verify verify = nullptr) noexcept;
  /// Like it, with a fixed key below kFixedKeys that no other class has. Fixed keys are for the
  /// model library: another library cannot know which are in use. A key that is out of range or in
  /// use ends the process with a message. A constant key makes the header of a new element a
  /// constant: one store instead of a load and two.
  Class(ClassKey key, std::u16string_view qualifiedName, const Type::Impl* base,
        std::size_t sizeBytes, Dismantle dismantle, Verify verify) noexcept;

  /// The type that every class of elements conforms to.
  static const Type::Impl& modelElement() noexcept;

  static constexpr std::size_t kFixedKeys = 2;
  /// Returns the class at `index` of the table, or null; kNotInTable gives null.
  static const Class* at(std::uint8_t index) noexcept { return table[index]; }

  // NOLINTNEXTLINE(google-explicit-constructor): callers pass a class where a key is expected.
  operator ClassKey() const noexcept { return key; }
  std::size_t getSizeBytes() const noexcept { return sizeBytes; }
  /// Size of the pointer to its class that precedes an element whose class is not in the table.
  static constexpr std::size_t kPrefixBytes = sizeof(void*);
  /// Size of what precedes an element in its block.
  std::size_t getPrefixBytes() const noexcept { return prefixBytes(key); }
  static constexpr std::size_t prefixBytes(ClassKey key) noexcept {
    return key.index == ClassKey::kNotInTable ? kPrefixBytes : 0;
  }
  Dismantle getDismantle() const noexcept { return dismantle; }
  Verify getVerify() const noexcept { return verify; }

 private:
  static std::array<const Class*, ClassKey::kNotInTable + 1> table;
  static ClassKey enter(const Class* entry) noexcept;

  std::size_t sizeBytes;
  Dismantle dismantle;
  Verify verify;
  ClassKey key;
};

}  // namespace kd::zero::meta

namespace kd::zero {

inline ModelElement::Impl::Impl(meta::ClassKey metaClass, Parts parts) noexcept
    : classIndex(metaClass.index & meta::ClassKey::kNotInTable), hasParts(parts == Parts::kSome) {}

inline const meta::Class& ModelElement::Impl::getMetaClass() const noexcept {
  if (classIndex != meta::ClassKey::kNotInTable) return *meta::Class::at(classIndex);
  return **(reinterpret_cast<const meta::Class* const*>(this) - 1);
}

}  // namespace kd::zero
