#pragma once

#include <semaphore.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tessera/progress/InputProgress.hpp"

namespace tessera::workers {

/// A ring of text buffers in memory that a worker shares with its parent. The worker fills slots in
/// turn, the parent frees them in the same order; a worker that is ahead by all of them waits.
///
/// That a slot was filled is told elsewhere, through a socket, which also orders the accesses.
class SharedSlots {
 public:
  static constexpr std::size_t kSlotBytes = 256 * 1024;
  /// A worker is at most 8 MiB ahead of the output.
  static constexpr std::size_t kSlots = 32;

  /// Throws std::bad_alloc.
  SharedSlots();
  ~SharedSlots();
  SharedSlots(const SharedSlots&) = delete;
  SharedSlots& operator=(const SharedSlots&) = delete;

  /// In the worker: copies `text`, at most kSlotBytes, into the next slot, once that is free.
  void fill(std::string_view text) noexcept;

  /// In the parent: the text of the oldest slot, which has `size` bytes, until `release`.
  std::string_view oldest(std::size_t size) const noexcept;
  /// Like `oldest`, of the slot after so many that were filled before it.
  std::string_view after(std::size_t count, std::size_t size) const noexcept;
  void release() noexcept;

  /// How far the worker is with its current input.
  progress::InputProgress& progress() noexcept { return shared->progress; }

  /// How many inputs the worker has begun.
  std::atomic<std::uint64_t>& begun() noexcept { return shared->begun; }

 private:
  struct Shared {
    sem_t free;
    progress::InputProgress progress;
    std::atomic<std::uint64_t> begun;
    char slots[kSlots][kSlotBytes];
  };

  Shared* shared;
  // Counts of their own in each process: the next slot to fill, the oldest one.
  std::size_t filled = 0;
  std::size_t released = 0;
};

}  // namespace tessera::workers
