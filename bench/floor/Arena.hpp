#pragma once

#include <cstddef>
#include <vector>

namespace bench::floor {

/// Allocates blocks from chunks, one after the other, and frees all of them at once.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() { clear(); }

  /// Returns `sizeBytes` bytes of memory, aligned to eight.
  void* allocate(std::size_t sizeBytes) {
    const std::size_t size = (sizeBytes + 7) & ~std::size_t{7};
    if (size > static_cast<std::size_t>(end - free)) addChunk(size);
    std::byte* const room = free;
    free += size;
    return room;
  }
  void clear() noexcept;

 private:
  void addChunk(std::size_t leastBytes);

  std::byte* free = nullptr;
  std::byte* end = nullptr;
  std::vector<std::byte*> chunks;
};

}  // namespace bench::floor
