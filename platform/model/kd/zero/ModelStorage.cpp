#include "kd/zero/ModelStorage.hpp"

#include <algorithm>
#include <new>

#include "kd/zero/Poison.hpp"
#include "kd/zero/Verification.hpp"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace kd::zero {

namespace {

/// Asks the kernel to back [`begin`, `begin` + `sizeBytes`) with large pages where the range spans
/// them. Otherwise most of the cost of filling a large model is the page fault of each small page.
void useLargePages([[maybe_unused]] std::byte* begin, [[maybe_unused]] std::size_t sizeBytes) {
#ifdef __linux__
  constexpr std::size_t kLargePage = std::size_t{2} * 1024 * 1024;
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  const std::uintptr_t first = (address + kLargePage - 1) & ~(kLargePage - 1);
  const std::uintptr_t last = (address + sizeBytes) & ~(kLargePage - 1);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): rounding an address has no other form.
  if (first < last) ::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}

}  // namespace

ModelStorage::~ModelStorage() {
  for (const Slab& slab : slabs) {
    unpoison(slab.begin, slab.sizeBytes);
    ::operator delete (slab.begin, std::align_val_t{kChunkAlignment});
  }
}

void ModelStorage::destroy() noexcept {
  delete this;
}

void ModelStorage::beginNextChunk() {
  if (slabs.empty() || end == slabs.back().begin + slabs.back().sizeBytes) addSlab();
  const Slab& slab = slabs.back();
  std::byte* chunk = end;
  const auto left = static_cast<std::size_t>(slab.begin + slab.sizeBytes - chunk);
  *reinterpret_cast<ModelStorage**>(chunk) = this;
  // NOLINTNEXTLINE(bugprone-sizeof-expression): skips the pointer that was just stored.
  free = chunk + kChunkHeaderBytes;
  end = chunk + std::min(left, kChunkAlignment);
  poison(free, static_cast<std::size_t>(end - free));
}

void ModelStorage::addSlab() {
  // A sixteenth of the present size limits how much an unused end can waste.
  const std::size_t chunks = std::clamp<std::size_t>(chunksSoFar / 16, 1, kLargestSlabChunks);
  const std::size_t sizeBytes = chunks * kChunkAlignment - kAllocatorBytes;
  slabs.reserve(slabs.size() + 1);
  auto* begin =
      static_cast<std::byte*>(::operator new (sizeBytes, std::align_val_t{kChunkAlignment}));
  useLargePages(begin, sizeBytes);
  slabs.push_back({begin, sizeBytes});
  chunksSoFar += chunks;
  end = begin;
}

bool ModelStorage::hasInChunk(const void* begin, std::size_t sizeBytes) const noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  if (address % kGranule != 0) return false;
  const std::uintptr_t chunk = address & ~(kChunkAlignment - 1);
  // The newest slab first: most lookups are for blocks that were allocated recently.
  for (auto slab = slabs.rbegin(); slab != slabs.rend(); ++slab) {
    const auto slabBegin = reinterpret_cast<std::uintptr_t>(slab->begin);
    const std::uintptr_t slabEnd = slabBegin + slab->sizeBytes;
    if (address < slabBegin || address >= slabEnd) continue;
    const bool current = chunk == (reinterpret_cast<std::uintptr_t>(free) & ~(kChunkAlignment - 1));
    const std::uintptr_t usedEnd = current ? reinterpret_cast<std::uintptr_t>(end)
                                           : std::min(chunk + kChunkAlignment, slabEnd);
    return address >= chunk + kChunkHeaderBytes && sizeBytes <= usedEnd - address;
  }
  return false;
}

void ModelStorage::verify(Verification& verification) const {
  for (const Slab& slab : slabs) {
    const bool newest = slab.begin == slabs.back().begin;
    const std::byte* usedEnd = newest ? end : slab.begin + slab.sizeBytes;
    for (const std::byte* chunk = slab.begin; chunk < usedEnd; chunk += kChunkAlignment) {
      verification.expect(&of(chunk) == this, "a chunk begins with the address of its storage");
    }
  }
  verification.expect(free <= end, "the unused end of a chunk has a size");
  if (free < end) verification.addBlock(free, static_cast<std::size_t>(end - free));
  for (std::size_t granules = 1; granules < freeBlocks.size(); ++granules) {
    verifyFreeBlocks(granules, verification);
  }
}

namespace {

/// Reads the link of a free block, which the address sanitizer would report as a use after free.
template <class Block>
#if defined(__SANITIZE_ADDRESS__) || defined(__clang__)
__attribute__((no_sanitize("address")))
#endif
Block*
nextOf(const Block* block) noexcept {
  return block->next;
}

}  // namespace

void ModelStorage::verifyFreeBlocks(std::size_t granules, Verification& verification) const {
  const std::size_t sizeBytes = granules * kGranule;
  // If there are more blocks than there is space for, the list is a cycle.
  std::size_t left = chunksSoFar * kChunkAlignment / sizeBytes;
  const FreeBlock* block = freeBlocks[granules];
  while (block != nullptr && verification.getBroken() == nullptr) {
    verification.addBlock(block, sizeBytes);
    verification.expect(left-- > 0, "a list of free blocks ends");
    if (verification.getBroken() == nullptr) block = nextOf(block);
  }
}

}  // namespace kd::zero
