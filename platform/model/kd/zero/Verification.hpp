#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "kd/zero/ModelElement.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

/// One run over an element and everything that can be reached from it, which checks the invariants
/// of the model. docs/model.md lists them.
///
/// A class of elements takes part with `verifyParts(Verification&) const`, which calls `verify` of
/// each of its collections, `addBlock` for each block that it took from the storage, and `expect`
/// for its other invariants. Elements wait in a list, so a run does not recurse, however deep the
/// tree is. Linear in the number of elements and places, apart from one sort of the blocks.
class QUENLITH_MODEL_EXPORT Verification {
 public:
  /// Borrows `storage` for the life of the run.
  explicit Verification(const ModelStorage& storage) noexcept : storage(storage) {}

  /// Checks `top` and what can be reached from it, except elements that were checked before.
  void checkTree(const ModelElement::Impl& top);
  /// Checks the chunks and lists of free blocks of the storage.
  void checkStorage();
  /// Checks that no two blocks that were reported overlap and that no element is in more places
  /// than it has references. The last step.
  void finish();

  /// Records `invariant`, a static text, as broken unless `holds`; the first one is kept.
  void expect(bool holds, const char* invariant) noexcept {
    if (!holds && broken == nullptr) broken = invariant;
  }
  /// Reports a block that was taken from the storage.
  void addBlock(const void* begin, std::size_t sizeBytes);
  /// Reports that `element` is in one place of a collection. It is checked later.
  void addPlace(const ModelElement::Impl* element);

  /// Returns the first invariant that was found broken, or null.
  const char* getBroken() const noexcept { return broken; }

 private:
  struct Block {
    const std::byte* begin;
    std::size_t sizeBytes;
  };

  bool canBeRead(const ModelElement::Impl* element) noexcept;
  void checkElement(const ModelElement::Impl& element);
  void checkContainer(const ModelElement::Impl& element);

  const ModelStorage& storage;
  const char* broken = nullptr;
  std::vector<const ModelElement::Impl*> pending;
  // Maps each element that was reached to the number of its places.
  std::unordered_map<const ModelElement::Impl*, std::uint32_t> places;
  std::vector<Block> blocks;
};

}  // namespace kd::zero
