#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "tessera/inputs/Input.hpp"
#include "tessera/progress/describeProgress.hpp"

namespace tessera::progress {

/// When the progress of a run is shown. kAuto: on a terminal, if the run takes longer than half a
/// second.
enum class Mode { kAuto, kAlways, kNever };

/// Shows how far a run is: on a terminal as a row that changes and is gone at the end, elsewhere as
/// lines, at most one per second, and one at the end.
class RunProgress {
 public:
  using Clock = std::chrono::steady_clock;

  /// How often `show` is to be called.
  static constexpr std::chrono::milliseconds kInterval{100};

  /// An input that is worked on.
  struct Current {
    std::size_t index = 0;
    /// In parts of InputProgress::kWhole.
    std::uint64_t share = 0;
  };

  /// Borrows `inputs`.
  RunProgress(Mode mode, const std::vector<inputs::Input>& inputs);

  /// Whether anything is shown.
  bool isActive() const noexcept { return target != Target::kNone; }

  /// The first inputs, `count` of them, are done. May be called while another thread calls `show`.
  void setDone(std::size_t count);
  /// Shows the progress if it is time to: the inputs in `current` are worked on.
  void show(std::span<const Current> current);
  /// The run is over.
  void finish();

 private:
  enum class Target { kNone, kTerminal, kLines };

  static Target targetOf(Mode mode);
  std::uint64_t sizeOf(std::size_t index);
  Figures figuresAt(Clock::time_point now, std::span<const Current> current);

  Target target;
  const std::vector<inputs::Input>& inputs;
  std::mutex mutex;
  Clock::time_point begin = Clock::now();
  Clock::time_point next;
  // The sizes of the first inputs in bytes, as far as they are known, and their sum.
  std::vector<std::uint64_t> sizes;
  std::uint64_t knownBytes = 0;
  std::size_t done = 0;
  std::uint64_t doneBytes = 0;
};

}  // namespace tessera::progress
