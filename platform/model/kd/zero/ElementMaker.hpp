#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

#include "kd/zero/DeferredReleases.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/meta/Class.hpp"

namespace kd::zero {

/// Creates and destroys elements.
///
/// The implementation class of a kind of elements names it as a friend and has a constructor, a
/// static `classOf` that returns what `describe` made for it, and `releaseAll`, which calls
/// `releaseAll` of its base and of each of its collections of elements; debug builds assert that.
/// Where it has collections, it also has `verifyParts`, which reports each of them. It has no
/// virtual functions, and its first base is the implementation class of its base kind.
/// docs/model.md has an example.
struct ElementMaker {
  /// Returns a new, detached element of kind `K` that belongs to the model of `storage`. Throws
  /// std::bad_alloc, std::logic_error if the implementation class has another base first, or what
  /// the constructor throws; the model is unchanged in that case.
  template <class K, class... Arguments>
  static K make(ModelStorage& storage, Arguments&&... arguments) {
    using Impl = typename K::Impl;
    static_assert(sizeof(Impl) + meta::Class::kPrefixBytes <= ModelStorage::kLargestBlock &&
                  alignof(Impl) <= 8);
    static_assert(!std::is_polymorphic_v<Impl>, "an implementation class has no virtual functions");
    static_assert(HasOwnClass<Impl, typename K::BaseKind::Impl>::value,
                  "an implementation class has its own classOf");
    const std::size_t prefixBytes = prefixBytesOf<Impl>();
    const std::size_t sizeBytes = prefixBytes + sizeof(Impl);
    auto* block = static_cast<std::byte*>(storage.allocateElement(sizeBytes));
    try {
      requireElementFirst<Impl>(block + prefixBytes);
      if (prefixBytes != 0) *reinterpret_cast<const meta::Class**>(block) = &Impl::classOf();
      return K::adopt(new (block + prefixBytes) Impl(std::forward<Arguments>(arguments)...));
    } catch (...) {
      storage.deallocateElement(block, sizeBytes);
      throw;
    }
  }

  /// Returns the description of the class `Impl`, which is derived from `base`. `qualifiedName` is
  /// borrowed for the life of the process.
  template <class Impl>
  static meta::Class describe(std::u16string_view qualifiedName,
                              const meta::Type::Impl& base) noexcept {
    return meta::Class(qualifiedName, &base, sizeof(Impl), &dismantle<Impl>, &verify<Impl>);
  }
  /// Like it, with a fixed key, which must equal `Impl::kClassKey`.
  template <class Impl>
  static meta::Class describe(meta::ClassKey fixedKey, std::u16string_view qualifiedName,
                              const meta::Type::Impl& base) noexcept {
    return meta::Class(fixedKey, qualifiedName, &base, sizeof(Impl), &dismantle<Impl>,
                       &verify<Impl>);
  }

 private:
  template <class Impl>
  static std::size_t prefixBytesOf() noexcept {
    // The size is a constant for classes with a fixed key, so their description is not read.
    if constexpr (requires { Impl::kClassKey; }) {
      return meta::Class::prefixBytes(Impl::kClassKey);
    } else {
      return Impl::classOf().getPrefixBytes();
    }
  }

  // An inherited `classOf` would describe a smaller or abstract class, which destroys too little or
  // cannot destroy at all. Compared as template arguments: where g++ instruments the code, the
  // comparison of two function pointers is not a constant expression.
  template <auto function>
  struct Function {};
  template <class Impl, class BaseImpl>
  struct HasOwnClass : std::true_type {};
  template <class Impl, class BaseImpl>
  requires requires { &BaseImpl::classOf; }
  struct HasOwnClass<Impl, BaseImpl>
      : std::negation<std::is_same<Function<&Impl::classOf>, Function<&BaseImpl::classOf>>> {};

  // An element is found and deallocated by the address of its base ModelElement::Impl. The offset
  // of a base is a constant, so the compiler removes this check.
  template <class Impl>
  static void requireElementFirst(std::byte* place) {
    const ModelElement::Impl* element = reinterpret_cast<Impl*>(place);
    if (static_cast<const void*>(element) == place) return;
    throw std::logic_error("the first base of an implementation class is that of its base kind");
  }

  template <class Impl>
  static void dismantle(ModelElement::Impl& element,
                        ModelElement::DeferredReleases& releases) noexcept {
    auto& impl = static_cast<Impl&>(element);
    impl.releaseAll(releases);
    impl.~Impl();
  }

  template <class Impl>
  static void verify(const ModelElement::Impl& element, Verification& verification) {
    static_cast<const Impl&>(element).verifyParts(verification);
  }
};

}  // namespace kd::zero
