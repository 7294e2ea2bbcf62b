#include "tessera/workers/WorkerPool.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/StatusLine.hpp"

namespace tessera::workers {
namespace {

// One that is worked on and some that wait, so that no worker waits for its parent. Fewer at the
// end, so that all workers end at about the same time.
constexpr std::size_t kLeastInputsPerWorker = 2;
constexpr std::size_t kMostInputsPerWorker = 64;

// The text of an input is passed on as a whole if it needs no more slots: then nothing has to be
// taken back when the worker ends within it.
constexpr std::size_t kSlotsHeldBack = SharedSlots::kFewestSlots / 2;

// How many processes may end before they are ready if another one was ready before.
constexpr std::size_t kMostLostStarts = 8;

// After so long without a result, those that have come are written.
constexpr int kRestMilliseconds = 20;

}  // namespace

WorkerPool::WorkerPool(const PoolSettings& settings, MakeJob makeJob, Collector& collector)
    : settings(settings), makeJob(std::move(makeJob)), collector(collector) {}

/// Does something that may take long, for example because nobody reads the output.
template <class Action>
void WorkerPool::withoutTheirTime(Action action) {
  const auto begin = Worker::Clock::now();
  action();
  excuse(Worker::Clock::now() - begin);
}

/// Does not count a time against the workers.
void WorkerPool::excuse(Worker::Clock::duration time) {
  for (const auto& worker : workers) worker->excuse(time);
}

void WorkerPool::run(std::size_t count) {
  nextToGive = 0;
  nextResult = 0;
  end = count;
  for (std::size_t i = 0; i < std::min(settings.workers, count); ++i) startWorker({});
  while (nextResult < end) {
    giveInputs();
    showProgress();
    awaitFrames();
    receiveFrames();
    withoutTheirTime([this] { passResultsOn(); });
    removeEnded();
  }
  for (const auto& worker : workers) worker->finish();
  workers.clear();
}

/// Starts a worker that is to work on `inputs` first.
void WorkerPool::startWorker(std::deque<std::size_t> inputs) {
  auto worker = std::make_unique<Worker>(settings.workers);
  if (!worker->start()) {
    for (const auto& other : workers) other->closeParentSide();
    if (showsProgress()) diagnostics::expectForeignStatus();
    worker->work(makeJob);
    // Not back to the caller: what that owns belongs to the parent.
    std::exit(EXIT_SUCCESS);
  }
  for (const std::size_t index : inputs) worker->give(index);
  worker->sendInputs();
  workers.push_back(std::move(worker));
}

void WorkerPool::giveInputs() {
  const std::size_t share = (end - nextToGive) / (4 * std::max(workers.size(), std::size_t{1}));
  const std::size_t most = std::clamp(share, kLeastInputsPerWorker, kMostInputsPerWorker);
  // Many at a time: each message to a worker takes system calls in both processes.
  std::vector<Worker*> receivers;
  for (const auto& worker : workers) {
    if (worker->isRunning() && worker->unfinished() <= most / 2) receivers.push_back(worker.get());
  }
  // In turn, so that each has one before any has two.
  for (std::size_t wanted = 1; wanted <= most; ++wanted) {
    for (Worker* const worker : receivers) {
      if (nextToGive == end) break;
      if (worker->unfinished() < wanted) worker->give(nextToGive++);
    }
  }
  for (const auto& worker : workers) worker->sendInputs();
}

bool WorkerPool::showsProgress() const noexcept {
  return settings.progress != nullptr && settings.progress->isActive();
}

void WorkerPool::showProgress() {
  if (!showsProgress()) return;
  settings.progress->setDone(nextResult);
  std::vector<progress::RunProgress::Current> current;
  for (const auto& worker : workers) worker->appendProgress(current);
  settings.progress->show(current);
}

/// Returns the time in milliseconds after which there is something to do though no worker has sent
/// anything; -1 without one. No longer than that is counted against a worker when the run was
/// suspended meanwhile.
int WorkerPool::pollTimeout() const {
  constexpr auto kInterval = static_cast<int>(progress::RunProgress::kInterval.count());
  const int rest = settings.timeout.count() == 0 ? -1 : timeToDeadline();
  if (rest < 0) return showsProgress() ? kInterval : -1;
  return std::min(rest, kInterval);
}

/// Returns the time in milliseconds to the first deadline; -1 without one.
int WorkerPool::timeToDeadline() const {
  auto deadline = Worker::Clock::time_point::max();
  for (const auto& worker : workers) {
    if (worker->isRunning()) deadline = std::min(deadline, worker->deadline(settings.timeout));
  }
  if (deadline == Worker::Clock::time_point::max()) return -1;
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(deadline - Worker::Clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(rest.count(), 0, INT_MAX));
}

void WorkerPool::awaitFrames() {
  sockets.clear();
  for (const auto& worker : workers) {
    // Of one that has ended the descriptor is negative, which poll() leaves out.
    sockets.push_back({.fd = worker->descriptor(), .events = POLLIN, .revents = 0});
  }
  if (poll(kRestMilliseconds) != 0) return;
  withoutTheirTime([this] { collector.rest(); });
  poll(pollTimeout());
}

/// Returns how many workers have sent something. When it takes longer than asked for, all processes
/// were suspended.
int WorkerPool::poll(int timeoutMilliseconds) {
  const auto begin = Worker::Clock::now();
  const int count = ::poll(sockets.data(), sockets.size(), timeoutMilliseconds);
  if (count < 0 && errno != EINTR) {
    throw std::system_error(errno, std::generic_category(), "waiting for a worker");
  }
  const auto excess = Worker::Clock::now() - begin - std::chrono::milliseconds(timeoutMilliseconds);
  if (timeoutMilliseconds >= 0 && excess.count() > 0) excuse(excess);
  return count;
}

void WorkerPool::receiveFrames() {
  std::vector<std::deque<std::size_t>> notBegun;
  for (std::size_t i = 0; i < workers.size(); ++i) {
    const auto& worker = workers[i];
    if (sockets[i].revents != 0) {
      std::deque<std::size_t> inputs = worker->receive();
      requireUsable(*worker);
      const bool needsSuccessor = !inputs.empty() || nextToGive < end;
      if (!worker->isRunning() && needsSuccessor) notBegun.push_back(std::move(inputs));
    }
    if (settings.timeout.count() != 0) worker->endIfLate(settings.timeout);
  }
  for (auto& inputs : notBegun) startWorker(std::move(inputs));
}

/// Throws WorkerUnusable when a further worker would be of no use either.
void WorkerPool::requireUsable(const Worker& worker) {
  if (worker.isUnusable()) throw WorkerUnusable(worker.endReason());
  hasReadyWorker |= worker.isReady();
  if (worker.isRunning() || worker.isReady()) return;
  // The bundles can be started: something else ended it.
  if (hasReadyWorker && lostStarts++ < kMostLostStarts) return;
  throw WorkerUnusable(
      diagnostics::describe({.file = "tessera",
                             .place = {},
                             .what = "the bundles cannot be started: " + worker.endReason(),
                             .remedy = "leave out the bundle that ends the process"}));
}

void WorkerPool::passResultsOn() {
  while (nextResult < end) {
    Worker* const worker = findWorkerOf(nextResult);
    if (worker == nullptr) return;
    if (!worker->isComplete() && worker->filledSlots() < kSlotsHeldBack) return;
    while (worker->hasFrame() && passFrameOn(*worker)) {
    }
    if (worker->currentInput() == nextResult) return;
    ++nextResult;
  }
}

Worker* WorkerPool::findWorkerOf(std::size_t index) const {
  const auto found = std::ranges::find_if(
      workers, [index](const auto& worker) { return worker->currentInput() == index; });
  return found == workers.end() ? nullptr : found->get();
}

/// Returns whether the current input has more frames.
bool WorkerPool::passFrameOn(Worker& worker) {
  const Frame frame = worker.frame();
  switch (frame.kind) {
    case Frame::Kind::kText:
      collector.addText(worker.text());
      break;
    case Frame::Kind::kMessage:
      collector.addMessage(worker.text());
      break;
    case Frame::Kind::kLost:
      collector.loseInput(nextResult, worker.loss());
      break;
    default:
      collector.endInput(nextResult, frame.outcome);
      break;
  }
  worker.removeFrame();
  return frame.kind == Frame::Kind::kText || frame.kind == Frame::Kind::kMessage;
}

void WorkerPool::removeEnded() {
  std::erase_if(workers,
                [](const auto& worker) { return !worker->isRunning() && !worker->hasFrame(); });
}

}  // namespace tessera::workers
