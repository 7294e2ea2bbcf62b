#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "kd/zero/ModelElement.hpp"
#include "kd/zero/Poison.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

class ChangeListener;

/// What one model owns: the storage of its elements and its listeners.
///
/// Elements, short texts and small arrays are allocated one after the other in chunks, in the order
/// in which they are created; a deallocated block is reused for a block of the same size. A chunk
/// begins at a multiple of its size and with a pointer to the storage, so the address of an element
/// leads to its model and no element needs a pointer to it.
class QUENLITH_MODEL_EXPORT ModelStorage {
 public:
  /// Returns the storage that `element` is in.
  static ModelStorage& of(const void* element) noexcept {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): rounding an address down has no other form.
    return *(*reinterpret_cast<ModelStorage* const*>(reinterpret_cast<std::uintptr_t>(element) &
                                                     ~(kChunkAlignment - 1)));
  }

  /// Creates storage with one reference, which the caller's model handle adopts.
  static ModelStorage* make() { return new ModelStorage; }
  ModelStorage(const ModelStorage&) = delete;
  ModelStorage& operator=(const ModelStorage&) = delete;

  void addHandle() noexcept { ++users; }
  /// Destroys the storage with its last handle or element.
  void dropHandle() noexcept {
    if (--users == 0) destroy();
  }

  /// Returns a block of `sizeBytes` bytes, aligned to eight. Throws std::bad_alloc.
  void* allocate(std::size_t sizeBytes) {
    return sizeBytes > kLargestBlock ? ::operator new(sizeBytes) : allocateBlock(sizeBytes);
  }
  /// Deallocates a block; `sizeBytes` is the size that was requested.
  void deallocate(void* block, std::size_t sizeBytes) noexcept {
    if (sizeBytes > kLargestBlock) {
      ::operator delete(block);
    } else {
      deallocateBlock(block, sizeBytes);
    }
  }
  /// Like `allocate`, but for an element: its size must be at most kLargestBlock.
  void* allocateElement(std::size_t sizeBytes) {
    void* element = allocateBlock(sizeBytes);
    ++users;
    return element;
  }
  /// Enlarges the block that ends at `blockEnd` by `sizeBytes`, a multiple of eight. Returns false
  /// and changes nothing unless that block was the last one taken from the current chunk, which
  /// has the space.
  bool extendLastBlock(const void* blockEnd, std::size_t sizeBytes) noexcept {
    if (blockEnd != free || static_cast<std::size_t>(end - free) < sizeBytes) return false;
    unpoison(free, sizeBytes);
    free += sizeBytes;
    return true;
  }
  void deallocateElement(void* element, std::size_t sizeBytes) noexcept {
    deallocateBlock(element, sizeBytes);
    if (--users == 0) destroy();
  }

  /// Number of collection operations opened so far.
  std::uint64_t operations = 0;
  /// Borrowed, in the order in which they were added.
  std::vector<ChangeListener*> listeners;

  /// Checks the chunks; reports the free blocks and the unused end of the current chunk.
  void verify(Verification& verification) const;
  /// Tells whether [`begin`, `begin` + `sizeBytes`) is aligned to eight and within what was taken
  /// from one chunk of this storage. Linear in the number of slabs.
  bool hasInChunk(const void* begin, std::size_t sizeBytes) const noexcept;

  /// The element at the top of the document, borrowed; null in a model without a document.
  const ModelElement::Impl* root = nullptr;

  static constexpr std::size_t kLargestBlock = 512;

 private:
  static constexpr std::size_t kGranule = 8;
  static constexpr std::size_t kChunkAlignment = std::size_t{64} * 1024;
  // A chunk begins with the pointer to its storage.
  static constexpr std::size_t kChunkHeaderBytes = sizeof(void*);
  // Chunks are allocated in slabs, which grow with the model up to this many chunks. A slab is a
  // little smaller than its chunks, so that the header which the allocator stores with the next one
  // fits in between and the next slab needs no padding for its alignment.
  static constexpr std::size_t kLargestSlabChunks = 64;
  static constexpr std::size_t kAllocatorBytes = 64;

  struct FreeBlock {
    FreeBlock* next;
  };
  struct Slab {
    std::byte* begin;
    std::size_t sizeBytes;
  };

  ModelStorage() = default;
  ~ModelStorage();
  static constexpr std::size_t roundUp(std::size_t sizeBytes, std::size_t granule) noexcept {
    return (sizeBytes + granule - 1) & ~(granule - 1);
  }
  void* allocateBlock(std::size_t sizeBytes);
  void deallocateBlock(void* block, std::size_t sizeBytes) noexcept;
  void verifyFreeBlocks(std::size_t granules, Verification& verification) const;
  void beginNextChunk();
  void addSlab();
  // Not inline: g++ 12 would warn of a use after the `delete` that it sees in each handle's
  // destructor.
  void destroy() noexcept;

  std::byte* free = nullptr;
  std::byte* end = nullptr;
  // Number of handles and elements.
  std::uint64_t users = 1;
  std::array<FreeBlock*, kLargestBlock / kGranule + 1> freeBlocks{};
  std::size_t chunksSoFar = 0;
  std::vector<Slab> slabs;
};

inline void* ModelStorage::allocateBlock(std::size_t sizeBytes) {
  const std::size_t size = roundUp(sizeBytes, kGranule);
  FreeBlock*& reusable = freeBlocks[size / kGranule];
  if (reusable != nullptr) {
    FreeBlock* block = reusable;
    unpoison(block, size);
    reusable = block->next;
    return block;
  }
  if (static_cast<std::size_t>(end - free) < size) beginNextChunk();
  std::byte* block = free;
  free += size;
  unpoison(block, size);
  return block;
}

inline void ModelStorage::deallocateBlock(void* block, std::size_t sizeBytes) noexcept {
  const std::size_t size = roundUp(sizeBytes, kGranule);
  auto* freeBlock = static_cast<FreeBlock*>(block);
  freeBlock->next = freeBlocks[size / kGranule];
  freeBlocks[size / kGranule] = freeBlock;
  poison(block, size);
}

inline bool ModelElement::Impl::extendBlock(const void* objectEnd, std::size_t sizeBytes) noexcept {
  const std::size_t granules = (sizeBytes + kExtraGranule - 1) / kExtraGranule;
  if (!ModelStorage::of(this).extendLastBlock(objectEnd, granules * kExtraGranule)) return false;
  extraGranules = granules & kLargestExtraGranules;
  return true;
}

}  // namespace kd::zero
