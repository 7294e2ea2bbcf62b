#include "tessera/workers/SharedSlots.hpp"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <numeric>

namespace tessera::workers {
namespace {

constexpr std::size_t kSlotsOfAllWorkers = 1024;

}  // namespace

SharedSlots::SharedSlots(std::size_t workerCount)
    : count(std::clamp(kSlotsOfAllWorkers / workerCount, kFewestSlots, kMostSlots)), free(count) {
  map();
  shared->begun = 0;
  shared->beganAt = 0;
  ::sem_init(&shared->freed, 1, 0);
  free.resize(count);
  // The last one is taken first.
  std::iota(free.rbegin(), free.rend(), std::uint16_t{0});
}

void SharedSlots::map() {
  const auto tryToMap = [this] {
    return ::mmap(nullptr, mappedBytes(), PROT_READ | PROT_WRITE,
                  MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  };
  void* memory = tryToMap();
  if (memory == MAP_FAILED) {
    count = kFewestSlots;
    memory = tryToMap();
  }
  if (memory == MAP_FAILED) throw std::bad_alloc();
  shared = new (memory) Shared;
}

SharedSlots::~SharedSlots() {
  ::sem_destroy(&shared->freed);
  ::munmap(shared, mappedBytes());
}

void SharedSlots::beginInput() noexcept {
  shared->progress.begin();
  shared->beganAt = Clock::now().time_since_epoch().count();
  ++shared->begun;
}

bool SharedSlots::haveFree() noexcept {
  while (::sem_trywait(&shared->freed) == 0) takeFreed();
  return !free.empty();
}

std::uint16_t SharedSlots::take() noexcept {
  while (!haveFree()) {
    if (::sem_wait(&shared->freed) == 0) takeFreed();
  }
  const std::uint16_t slot = free.back();
  free.pop_back();
  return slot;
}

void SharedSlots::copy(std::uint16_t slot, std::size_t used, std::string_view text) noexcept {
  std::memcpy(begin(slot) + used, text.data(), text.size());
}

/// There is room in `free` for all slots.
void SharedSlots::takeFreed() noexcept {
  free.push_back(shared->freedSlots[taken++ % count]);
}

std::string_view SharedSlots::text(std::uint16_t slot, std::size_t bytes) const noexcept {
  return {begin(slot), bytes};
}

char* SharedSlots::begin(std::uint16_t slot) const noexcept {
  return reinterpret_cast<char*>(shared + 1) + slot * kSlotBytes;
}

void SharedSlots::release(std::uint16_t slot) noexcept {
  shared->freedSlots[released++ % count] = slot;
  ::sem_post(&shared->freed);
}

}  // namespace tessera::workers
