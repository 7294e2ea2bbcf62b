#pragma once

#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <new>
#include <thread>

namespace tessera::tests {

/// A number that a test and the processes that it forks share. It is 0 at first.
class SharedNumber {
 public:
  SharedNumber()
      : memory(::mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                      -1, 0)),
        number(*new (memory) Number(0)) {}
  ~SharedNumber() { ::munmap(memory, sizeof(Number)); }
  SharedNumber(const SharedNumber&) = delete;
  SharedNumber& operator=(const SharedNumber&) = delete;

  std::atomic<std::int64_t>& operator*() const noexcept { return number; }

  /// Waits until it is not 0, but not forever.
  void await() const {
    for (int i = 0; i < 6000 && number == 0; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

 private:
  using Number = std::atomic<std::int64_t>;

  void* memory;
  Number& number;
};

}  // namespace tessera::tests
