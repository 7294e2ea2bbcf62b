#include "kd/zero/ModelStorage.hpp"

#include <algorithm>
#include <new>

#include "kd/zero/Poison.hpp"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace kd::zero {

namespace {

/// Asks for large pages behind [`begin`, `begin` + `sizeBytes`) where that is large enough. Most
/// of what filling a large model costs is otherwise the first touch of each small page.
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
  // NOLINTNEXTLINE(bugprone-sizeof-expression): what is skipped is the pointer just stored.
  free = chunk + sizeof(ModelStorage*);
  end = chunk + std::min(left, kChunkAlignment);
  poison(free, static_cast<std::size_t>(end - free));
}

void ModelStorage::addSlab() {
  // A sixteenth of what there is bounds what an unused end can waste.
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

}  // namespace kd::zero
