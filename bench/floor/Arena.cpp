#include "floor/Arena.hpp"

#include <algorithm>

namespace bench::floor {

void Arena::addChunk(std::size_t leastBytes) {
  constexpr std::size_t kChunkBytes = 64 * 1024;
  const std::size_t size = std::max(leastBytes, kChunkBytes);
  chunks.push_back(nullptr);
  chunks.back() = new std::byte[size];
  free = chunks.back();
  end = free + size;
}

void Arena::clear() noexcept {
  for (std::byte* const chunk : chunks) delete[] chunk;
  chunks = {};
  free = end = nullptr;
}

}  // namespace bench::floor
