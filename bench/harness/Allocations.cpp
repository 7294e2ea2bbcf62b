#include "harness/Allocations.hpp"

#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

// The C library's own functions that malloc and the others call.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace bench {

namespace {

struct Counter {
  bool isOn = false;
  std::int64_t bytes = 0;
  std::int64_t peakBytes = 0;
  std::size_t allocations = 0;

  void add(void* block) noexcept {
    ++allocations;
    bytes += sizeOf(block);
    peakBytes = std::max(peakBytes, bytes);
  }
  void remove(void* block) noexcept { bytes -= sizeOf(block); }

 private:
  static std::int64_t sizeOf(void* block) noexcept {
    // The allocator's header word is not part of the usable size of a block.
    const std::size_t overhead = sizeof(std::size_t);
    return block == nullptr ? 0 : static_cast<std::int64_t>(malloc_usable_size(block) + overhead);
  }
};

Counter counter;

void* counted(void* block) noexcept {
  if (counter.isOn) counter.add(block);
  return block;
}

}  // namespace

void startCounting() noexcept {
  counter = Counter();
  counter.isOn = true;
}

AllocationCount stopCounting() noexcept {
  counter.isOn = false;
  return {counter.allocations, static_cast<std::size_t>(counter.peakBytes)};
}

std::size_t liveBytes() noexcept {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void keepMemory() noexcept {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_TRIM_THRESHOLD, -1);
}

}  // namespace bench

// The program and all libraries that it loads call these instead of the C library's own.
extern "C" {

// While counting is off, as during time measurements, these two add a test and a jump.
void* malloc(std::size_t size) {
  if (!bench::counter.isOn) [[likely]]
    return __libc_malloc(size);
  return bench::counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
  return bench::counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
  if (bench::counter.isOn) bench::counter.remove(block);
  return bench::counted(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size) {
  return bench::counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
  if (!bench::counter.isOn) [[likely]]
    return __libc_free(block);
  bench::counter.remove(block);
  __libc_free(block);
}
}
