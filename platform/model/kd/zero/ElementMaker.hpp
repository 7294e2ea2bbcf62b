#pragma once

#include <string_view>
#include <utility>

#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/Releases.hpp"
#include "kd/zero/meta/Class.hpp"

namespace kd::zero {

/// Makes and ends elements. A class of elements names it as a friend and has `classOf`, a
/// constructor, and `releaseAll`, which lets go of the elements that it holds.
struct ElementMaker {
  /// Returns a new, detached element of kind `K` that belongs to the model of `storage`. Throws
  /// std::bad_alloc or what the constructor throws; the model is then as it was.
  template <class K, class... Arguments>
  static K make(ModelStorage& storage, Arguments&&... arguments) {
    using Impl = typename K::Impl;
    static_assert(sizeof(Impl) <= ModelStorage::kLargestBlock && alignof(Impl) <= 8);
    void* block = storage.allocateElement(sizeof(Impl));
    try {
      return K::adopt(new (block) Impl(std::forward<Arguments>(arguments)...));
    } catch (...) {
      storage.deallocateElement(block, sizeof(Impl));
      throw;
    }
  }

  /// Ends an element of class `Impl`.
  template <class Impl>
  static void dismantle(ModelElement::Impl& element, ModelElement::Releases& releases) noexcept {
    auto& ended = static_cast<Impl&>(element);
    ended.releaseAll(releases);
    ended.~Impl();
  }

  /// Returns the description of the class `Impl`, which is derived from `base`.
  template <class Impl>
  static meta::Class describe(std::u16string_view qualifiedName, const meta::Type::Impl& base) {
    return meta::Class(qualifiedName, &base, sizeof(Impl), &dismantle<Impl>);
  }
  /// Like it, at a fixed place.
  template <class Impl>
  static meta::Class describe(meta::ClassKey place, std::u16string_view qualifiedName,
                              const meta::Type::Impl& base) {
    return meta::Class(place, qualifiedName, &base, sizeof(Impl), &dismantle<Impl>);
  }
};

}  // namespace kd::zero
