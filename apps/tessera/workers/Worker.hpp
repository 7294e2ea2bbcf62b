#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tessera/progress/RunProgress.hpp"
#include "tessera/workers/Collector.hpp"
#include "tessera/workers/Frame.hpp"
#include "tessera/workers/Job.hpp"
#include "tessera/workers/SharedSlots.hpp"

namespace tessera::workers {

/// A worker process, as its parent sees it: the inputs given to it and the frames that came back.
/// When the process has ended, what came back can still be read.
class Worker {
 public:
  using Clock = std::chrono::steady_clock;

  /// One of so many.
  explicit Worker(std::size_t workerCount) : slots(workerCount) {}
  /// Ends the process if it is still there.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Starts the process. Returns false in the process itself, which is to call `work` and to exit.
  /// Throws ProblemError.
  bool start();

  /// In the process itself: makes a job and does it until there are no more inputs.
  void work(const MakeJob& makeJob);
  /// In a process that was started later: closes what belongs to this worker's parent.
  void closeParentSide() noexcept;

  bool isRunning() const noexcept { return process > 0; }
  bool isReady() const noexcept { return ready; }
  /// Whether its job could not be made or ended with an error; `endReason` is the message then.
  bool isUnusable() const noexcept { return unusable; }
  /// The descriptor to wait for frames on; negative when the process has ended.
  int descriptor() const noexcept { return socket; }

  /// How many inputs it was given and has not finished.
  std::size_t unfinished() const noexcept { return inputs.size() - finished; }
  void give(std::size_t index);
  /// Tells the process which inputs it was given.
  void sendInputs() noexcept;
  /// Tells the process that there are no more inputs.
  void finish() noexcept;

  /// Reads the frames that have arrived. At the end of the process, which loses the input that it
  /// was at, returns the other inputs that are not done.
  std::deque<std::size_t> receive();

  /// Does not count a time against the process in which nobody listened to it.
  void excuse(Clock::duration time) noexcept;
  /// When the process is to be ended if it is still at the same input. It has all the time to
  /// start.
  Clock::time_point deadline(std::chrono::milliseconds timeout) const noexcept;
  /// Ends a process that is past its deadline, unless it only waits until text is taken from it.
  void endIfLate(std::chrono::milliseconds timeout);

  /// Appends the inputs that it has finished or is at, and how far each is.
  void appendProgress(std::vector<progress::RunProgress::Current>& current);

  /// The input whose frames are the next ones, if there is one.
  std::optional<std::size_t> currentInput() const noexcept;
  /// Whether all frames of the current input have arrived.
  bool isComplete() const noexcept { return finished > 0; }
  bool hasFrame() const noexcept { return !frames.empty(); }
  /// How many slots are filled.
  std::size_t filledSlots() const noexcept { return slotsInUse; }
  const Frame& frame() const noexcept { return frames.front(); }
  /// The text of the current frame.
  std::string_view text() const noexcept { return textOf(frames.front()); }
  /// Removes the current frame, and with it the current input if it was the last of that.
  void removeFrame() noexcept;

  /// Why the process ended. Valid after it has ended.
  const std::string& endReason() const noexcept { return reason; }
  /// Like that, and the line it was at.
  Loss loss() noexcept { return {.reason = reason, .cause = cause, .line = slots.progress().line}; }

 private:
  void send(std::span<const std::uint64_t> commands) const noexcept;
  std::string_view textOf(const Frame& frame) const noexcept;
  void add(const Frame& frame);
  void end();
  std::deque<std::size_t> loseInput();
  void dropUnfinishedText() noexcept;
  Clock::time_point lastBegin() const noexcept;
  void releaseSlot(const Frame& frame) noexcept;

  SharedSlots slots;
  pid_t process = 0;
  int socket = -1;
  bool ready = false;
  bool unusable = false;
  bool isLate = false;
  // Inputs in the order given, from the one whose frames are the next; how many of them are
  // complete.
  std::deque<std::size_t> inputs;
  std::size_t finished = 0;
  // How many ends have arrived.
  std::uint64_t endCount = 0;
  // The inputs that the process has not been told.
  std::vector<std::uint64_t> unsent;
  std::deque<Frame> frames;
  std::size_t slotsInUse = 0;
  Clock::time_point since = Clock::now();
  std::string reason;
  Loss::Cause cause = Loss::Cause::kOther;
};

}  // namespace tessera::workers
