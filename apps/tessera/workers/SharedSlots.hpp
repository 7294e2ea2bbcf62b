#pragma once

#include <semaphore.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tessera/progress/InputProgress.hpp"

namespace tessera::workers {

/// Text buffers in memory that a worker shares with its parent. The worker fills free slots, the
/// parent frees them; a worker that has filled all of them waits.
///
/// That a slot was filled is told elsewhere, through a socket, which also orders the accesses. The
/// slot that was freed last is filled first: a worker whose text is taken at once uses a few slots,
/// which stay in the cache.
class SharedSlots {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kSlotBytes = 256 * 1024;
  static constexpr std::size_t kFewestSlots = 32;

  /// The slots of one of `workerCount` workers: 256 MiB for all together, at most 64 MiB and at
  /// least 8 MiB each; 8 MiB also if the process may not have more. Memory that no text has
  /// reached is not used. Throws std::bad_alloc.
  explicit SharedSlots(std::size_t workerCount);
  ~SharedSlots();
  SharedSlots(const SharedSlots&) = delete;
  SharedSlots& operator=(const SharedSlots&) = delete;

  std::size_t size() const noexcept { return count; }

  /// In the worker: whether `take` would not have to wait.
  bool haveFree() noexcept;

  /// In the worker: takes a slot, once one is free, and returns its number.
  std::uint16_t take() noexcept;
  /// In the worker: copies `text` into a slot that was taken, after `used` bytes. Together they are
  /// at most kSlotBytes.
  void copy(std::uint16_t slot, std::size_t used, std::string_view text) noexcept;

  /// In the parent: the text of a filled slot, which has `bytes` bytes, until `release`.
  std::string_view text(std::uint16_t slot, std::size_t bytes) const noexcept;
  void release(std::uint16_t slot) noexcept;

  /// How far the worker is with its current input.
  progress::InputProgress& progress() noexcept { return shared->progress; }

  /// In the worker: notes that it begins an input.
  void beginInput() noexcept;

  /// How many inputs the worker has begun, and when it began the last one.
  std::uint64_t begun() const noexcept { return shared->begun; }
  Clock::time_point beganAt() const noexcept {
    return Clock::time_point(Clock::duration(shared->beganAt));
  }

 private:
  static constexpr std::size_t kMostSlots = 256;

  // The slots follow it in memory.
  struct alignas(64) Shared {
    progress::InputProgress progress;
    std::atomic<std::uint64_t> begun;
    // All processes have the same clock.
    std::atomic<Clock::rep> beganAt;
    // How many of the freed slots the worker has not taken, and a ring of their numbers.
    sem_t freed;
    std::uint16_t freedSlots[kMostSlots];
  };

  void map();
  void takeFreed() noexcept;
  char* begin(std::uint16_t slot) const noexcept;
  std::size_t mappedBytes() const noexcept { return sizeof(Shared) + count * kSlotBytes; }

  std::size_t count;
  Shared* shared;
  // In the worker: its free slots, and how many freed ones it has taken.
  std::vector<std::uint16_t> free;
  std::size_t taken = 0;
  // In the parent: how many slots it has freed.
  std::size_t released = 0;
};

}  // namespace tessera::workers
