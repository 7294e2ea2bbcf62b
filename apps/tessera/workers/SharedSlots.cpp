#include "tessera/workers/SharedSlots.hpp"

#include <sys/mman.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace tessera::workers {

SharedSlots::SharedSlots() {
  void* memory = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  shared = new (memory) Shared;
  shared->begun = 0;
  ::sem_init(&shared->free, 1, kSlots);
}

SharedSlots::~SharedSlots() {
  ::sem_destroy(&shared->free);
  ::munmap(shared, sizeof(Shared));
}

void SharedSlots::fill(std::string_view text) noexcept {
  while (::sem_wait(&shared->free) != 0 && errno == EINTR) {
  }
  std::memcpy(shared->slots[filled % kSlots], text.data(), text.size());
  ++filled;
}

std::string_view SharedSlots::oldest(std::size_t size) const noexcept {
  return after(0, size);
}

std::string_view SharedSlots::after(std::size_t count, std::size_t size) const noexcept {
  return {shared->slots[(released + count) % kSlots], size};
}

void SharedSlots::release() noexcept {
  ++released;
  ::sem_post(&shared->free);
}

}  // namespace tessera::workers
