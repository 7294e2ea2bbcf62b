#pragma once

#include <string_view>
#include <utility>

#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/ReferenceCollection.hpp"
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
    return makeWithRoom<K>(storage, 0, std::forward<Arguments>(arguments)...);
  }

  /// Like `make`, with `roomBytes` more bytes behind the object in the same block, or with none
  /// when the block would be too large.
  template <class K, class... Arguments>
  static K makeWithRoom(ModelStorage& storage, std::size_t roomBytes, Arguments&&... arguments) {
    using Impl = typename K::Impl;
    static_assert(sizeof(Impl) <= ModelStorage::kLargestBlock && alignof(Impl) <= 8);
    constexpr std::size_t kGranule = ModelElement::Impl::kRoomGranule;
    constexpr std::size_t kLargestRoom = ModelStorage::kLargestBlock - sizeof(Impl);
    const std::size_t granules =
        roomBytes > kLargestRoom ? 0 : (roomBytes + kGranule - 1) / kGranule;
    const std::size_t sizeBytes = sizeof(Impl) + granules * kGranule;

    void* room = storage.allocateElement(sizeBytes);
    try {
      auto* made = new (room) Impl(std::forward<Arguments>(arguments)...);
      static_cast<ModelElement::Impl*>(made)->roomGranules = granules & 0x3F;
      return K::adopt(made);
    } catch (...) {
      storage.deallocateElement(room, sizeBytes);
      throw;
    }
  }

  /// Appends `element` to `collection`, where both are new: the collection is the empty one of an
  /// element that was just made, stands in it, and has the link to the container as its opposite.
  static void appendFirst(ReferenceCollection& collection, ModelElement element) noexcept {
    collection.appendFirst(std::move(element));
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
