#include "tessera/workers/Worker.hpp"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/workers/runWorker.hpp"

namespace tessera::workers {
namespace {

/// How long a worker may take to stop its bundles.
constexpr std::chrono::seconds kStopPatience{10};

[[noreturn]] void failStart(int error) {
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = "a worker process cannot be started: " + std::generic_category().message(error),
       .remedy = "run fewer workers (-j)"});
}

/// The ends of a channel, closed unless they are taken.
struct Channel {
  Channel() {
    // Not a pipe: a send to a process that has ended must not raise a signal.
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
      failStart(errno);
    }
  }
  ~Channel() {
    for (const int end : ends) {
      if (end >= 0) ::close(end);
    }
  }
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  int takeParentEnd() noexcept { return std::exchange(ends[0], -1); }
  int takeWorkerEnd() noexcept { return std::exchange(ends[1], -1); }

  std::array<int, 2> ends{-1, -1};
};

/// Gives a signal its default effect, unless it is ignored.
void reset(int signal) noexcept {
  if (::signal(signal, SIG_DFL) == SIG_IGN) ::signal(signal, SIG_IGN);
}

/// Prepares the process of a worker: it ends with its parent, which alone reacts to the terminal
/// and removes files.
void settle(pid_t parent) noexcept {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) std::_Exit(EXIT_FAILURE);
  ::signal(SIGINT, SIG_IGN);
  ::signal(SIGHUP, SIG_IGN);
  reset(SIGTERM);
  reset(SIGPIPE);
}

std::string describeStatus(int status) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return "the process that worked on it was ended by signal " + std::to_string(signal) + " (" +
           ::strsignal(signal) + ")";
  }
  return "the process that worked on it exited with status " + std::to_string(WEXITSTATUS(status));
}

int awaitEnd(pid_t process) noexcept {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

Worker::~Worker() {
  if (process > 0) {
    // With work left the run has failed, and the process may wait for a slot forever. One that is
    // unusable waits for nothing.
    if (unfinished() != 0 && !unusable) ::kill(process, SIGKILL);
    finish();
    // The channel ends with the process.
    pollfd ended{.fd = socket, .events = 0, .revents = 0};
    const auto patience = std::chrono::milliseconds(kStopPatience).count();
    if (::poll(&ended, 1, static_cast<int>(patience)) <= 0) ::kill(process, SIGKILL);
    awaitEnd(process);
  }
  closeParentSide();
}

bool Worker::start() {
  Channel channel;
  const pid_t parent = ::getpid();
  // None arrives between the fork and `settle`.
  const files::HeldInterruptions held;
  process = ::fork();
  if (process < 0) {
    failStart(errno);
  }
  if (process == 0) {
    settle(parent);
    socket = channel.takeWorkerEnd();
    return false;
  }
  socket = channel.takeParentEnd();
  return true;
}

void Worker::work(const MakeJob& makeJob) {
  runWorker(makeJob, slots, socket);
}

void Worker::closeParentSide() noexcept {
  if (socket >= 0) ::close(std::exchange(socket, -1));
}

void Worker::give(std::size_t index) {
  if (unfinished() == 0) since = Clock::now();
  inputs.push_back(index);
  unsent.push_back(index);
}

void Worker::sendInputs() noexcept {
  if (!unsent.empty()) send(unsent);
  unsent.clear();
}

void Worker::finish() noexcept {
  send({&kNoMoreInputs, 1});
}

/// A process that has ended does not read it; `receive` notices. One that cannot be told would wait
/// forever: it is ended.
void Worker::send(std::span<const std::uint64_t> commands) const noexcept {
  // So few bytes are sent as a whole.
  while (::send(socket, commands.data(), commands.size_bytes(), MSG_NOSIGNAL) < 0) {
    if (errno == EINTR) continue;
    if (process > 0) ::kill(process, SIGKILL);
    return;
  }
}

std::deque<std::size_t> Worker::receive() {
  while (true) {
    std::array<Frame, 64> arrived;
    const ssize_t count = ::recv(socket, arrived.data(), sizeof arrived, MSG_DONTWAIT);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) return {};
    // The end, or an error: the process has left commands unread, or cannot be heard any more.
    if (count < 0) ::kill(process, SIGKILL);
    if (count <= 0) break;
    const auto frameCount = static_cast<std::size_t>(count) / sizeof(Frame);
    for (std::size_t i = 0; i < frameCount; ++i) add(arrived[i]);
  }
  end();
  return loseInput();
}

std::string_view Worker::textOf(const Frame& frame) const noexcept {
  return slots.text(frame.slot, frame.size);
}

void Worker::add(const Frame& frame) {
  if (frame.kind == Frame::Kind::kReady) {
    ready = true;
    since = Clock::now();
  } else if (frame.kind == Frame::Kind::kUnusable) {
    unusable = true;
    // The message came just before; that of a job that could not be made is known.
    if (ready) reason = textOf(frames.back());
  } else if (!ready) {
    reason = textOf(frame);
    slots.release(frame.slot);
  } else {
    frames.push_back(frame);
    if (frame.kind != Frame::Kind::kEnd) {
      ++slotsInUse;
    } else {
      ++finished;
      ++endCount;
      since = Clock::now();
    }
  }
}

/// The process has ended: the channel has.
void Worker::end() {
  const int status = awaitEnd(std::exchange(process, 0));
  closeParentSide();
  if (unusable) return;
  if (isLate) {
    reason = "it took longer than --timeout allows";
    cause = Loss::Cause::kLate;
  } else {
    reason = describeStatus(status);
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) cause = Loss::Cause::kKilled;
  }
}

/// Returns the inputs that are not done, without the one that the process was at: that one is lost.
std::deque<std::size_t> Worker::loseInput() {
  const auto firstUndone = inputs.begin() + static_cast<std::ptrdiff_t>(finished);
  std::deque<std::size_t> undone(firstUndone, inputs.end());
  inputs.erase(firstUndone, inputs.end());
  const std::uint64_t begun = slots.begun();
  if (begun <= endCount) return undone;
  // Inputs before it may be done, but their frames were held back.
  const auto lost = undone.begin() + static_cast<std::ptrdiff_t>(begun - endCount - 1);
  inputs.push_back(*lost);
  undone.erase(lost);
  dropUnfinishedText();
  frames.push_back({.kind = Frame::Kind::kLost});
  ++finished;
  return undone;
}

/// Drops the text of the lost input that has arrived, but not its messages: text that was passed on
/// would have to be taken back.
void Worker::dropUnfinishedText() noexcept {
  const auto isEnd = [](const Frame& frame) { return frame.kind == Frame::Kind::kEnd; };
  const auto isText = [](const Frame& frame) { return frame.kind == Frame::Kind::kText; };
  const auto first = std::find_if(frames.rbegin(), frames.rend(), isEnd).base();
  for (auto frame = first; frame != frames.end(); ++frame) {
    if (isText(*frame)) releaseSlot(*frame);
  }
  frames.erase(std::remove_if(first, frames.end(), isText), frames.end());
}

void Worker::releaseSlot(const Frame& frame) noexcept {
  slots.release(frame.slot);
  --slotsInUse;
}

void Worker::excuse(Clock::duration time) noexcept {
  since = std::min(lastBegin() + time, Clock::now());
}

/// Returns when the time of the current input began. The end of the one before may not have come.
Worker::Clock::time_point Worker::lastBegin() const noexcept {
  return std::max(since, slots.beganAt());
}

Worker::Clock::time_point Worker::deadline(std::chrono::milliseconds timeout) const noexcept {
  return unfinished() == 0 || !ready ? Clock::time_point::max() : lastBegin() + timeout;
}

void Worker::endIfLate(std::chrono::milliseconds timeout) {
  if (!isRunning() || Clock::now() < deadline(timeout)) return;
  if (slotsInUse == slots.size()) {
    since = Clock::now();
  } else {
    isLate = true;
    ::kill(process, SIGKILL);
  }
}

void Worker::appendProgress(std::vector<progress::RunProgress::Current>& current) {
  for (std::size_t i = 0; i < finished; ++i) {
    current.push_back({inputs[i], progress::InputProgress::kWhole});
  }
  if (isRunning() && finished < inputs.size()) {
    current.push_back({inputs[finished], slots.progress().share});
  }
}

std::optional<std::size_t> Worker::currentInput() const noexcept {
  if (inputs.empty()) return std::nullopt;
  return inputs.front();
}

void Worker::removeFrame() noexcept {
  const Frame frame = frames.front();
  frames.pop_front();
  if (frame.kind == Frame::Kind::kText || frame.kind == Frame::Kind::kMessage) {
    // It has waited until now.
    if (slotsInUse == slots.size()) since = Clock::now();
    releaseSlot(frame);
  } else {
    inputs.pop_front();
    --finished;
  }
}

}  // namespace tessera::workers
