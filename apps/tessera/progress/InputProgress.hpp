#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace tessera::progress {

/// How far the work on an input is. Written by the process that works on it, read by others at any
/// time.
struct InputProgress {
  /// `share` of an input that is done.
  static constexpr std::uint64_t kWhole = 1'000'000;

  void begin() noexcept {
    line = 0;
    share = 0;
  }

  /// The 1-based line that the work is at; 0 is none.
  std::atomic<std::uint64_t> line = 0;
  /// How much of the work is done, in parts of kWhole.
  std::atomic<std::uint64_t> share = 0;
};

/// A stage of the work on an input: it leads from one share to another.
struct Stage {
  /// `done` of `total` steps of the stage are done.
  void show(std::uint64_t done, std::uint64_t total) const noexcept {
    if (progress == nullptr || total == 0) return;
    const std::uint64_t part = (end - begin) * std::min(done, total) / total;
    progress->share.store(begin + part, std::memory_order_relaxed);
  }

  /// Null: nobody looks.
  InputProgress* progress = nullptr;
  std::uint64_t begin = 0;
  std::uint64_t end = InputProgress::kWhole;
};

/// Calls Stage::show only at every so many steps: most are much shorter.
inline constexpr std::uint64_t kStepsPerShow = 256;

}  // namespace tessera::progress
