#pragma once

#include <poll.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tessera/progress/RunProgress.hpp"
#include "tessera/workers/Collector.hpp"
#include "tessera/workers/Job.hpp"
#include "tessera/workers/Worker.hpp"

namespace tessera::workers {

/// Thrown when the job of a worker cannot be made or ends with an error: that ends the run.
class WorkerUnusable : public std::runtime_error {
 public:
  /// `message` is complete, and meant for the user.
  using std::runtime_error::runtime_error;
};

/// How many processes work, and how long one may take for an input.
struct PoolSettings {
  std::size_t workers = 1;
  /// Zero: no limit.
  std::chrono::milliseconds timeout{0};
  /// Borrowed.
  progress::RunProgress* progress = nullptr;
};

/// Works on inputs in several processes and passes the results on in the order of the inputs.
///
/// A process that ends loses the input that it was at; another one takes its place. No process is
/// ahead of the results by more than its slots.
class WorkerPool {
 public:
  /// Borrows `collector`.
  WorkerPool(const PoolSettings& settings, MakeJob makeJob, Collector& collector);

  /// Works on the inputs numbered from 0 up to, but not including, `count`. Throws WorkerUnusable,
  /// ProblemError, what the collector throws, and std::system_error.
  void run(std::size_t count);

 private:
  void startWorker(std::deque<std::size_t> inputs);
  void giveInputs();
  void showProgress();
  void awaitFrames();
  int poll(int timeoutMilliseconds);
  void receiveFrames();
  void requireUsable(const Worker& worker);
  template <class Action>
  void withoutTheirTime(Action action);
  void excuse(Worker::Clock::duration time);
  void passResultsOn();
  Worker* findWorkerOf(std::size_t index) const;
  bool passFrameOn(Worker& worker);
  void removeEnded();
  bool showsProgress() const noexcept;
  int pollTimeout() const;
  int timeToDeadline() const;

  PoolSettings settings;
  MakeJob makeJob;
  Collector& collector;
  std::vector<std::unique_ptr<Worker>> workers;
  // Those of the workers, in the same order.
  std::vector<pollfd> sockets;
  // The next input to give to a worker, the one whose result is the next, and the end of all.
  std::size_t nextToGive = 0;
  std::size_t nextResult = 0;
  std::size_t end = 0;
  // Whether a worker was ready, and how many others ended before they were.
  bool hasReadyWorker = false;
  std::size_t lostStarts = 0;
};

}  // namespace tessera::workers
