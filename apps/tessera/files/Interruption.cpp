#include "tessera/files/Interruption.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstddef>
#include <stdexcept>

#include "tessera/diagnostics/StatusLine.hpp"

namespace tessera::files {
namespace {

/// A path in memory that a signal handler may read.
struct RemovedPath {
  std::atomic<bool> isUsed = false;
  std::array<char, PATH_MAX> path{};
};

std::array<RemovedPath, 4> removedPaths;

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

extern "C" void endProcess(int signal) {
  for (const RemovedPath& entry : removedPaths) {
    if (entry.isUsed) ::unlink(entry.path.data());
  }
  diagnostics::removeStatusAtExit();
  ::_exit(128 + signal);
}

}  // namespace

void endOnInterruption() noexcept {
  for (const int number : kSignals) {
    struct sigaction action = {};
    ::sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = endProcess;
    ::sigaction(number, &action, nullptr);
  }
}

HeldInterruptions::HeldInterruptions() noexcept {
  sigset_t held;
  ::sigemptyset(&held);
  for (const int number : kSignals) ::sigaddset(&held, number);
  ::pthread_sigmask(SIG_BLOCK, &held, &previous);
}

HeldInterruptions::~HeldInterruptions() {
  ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

RemovedOnInterruption::RemovedOnInterruption(const std::string& path) {
  const auto free =
      std::ranges::find_if(removedPaths, [](const auto& entry) { return !entry.isUsed; });
  if (free == removedPaths.end() || path.size() >= PATH_MAX) {
    throw std::length_error("the path of an output is too long");
  }
  std::ranges::copy(path, free->path.begin());
  free->path[path.size()] = '\0';
  free->isUsed = true;
  slot = static_cast<std::size_t>(free - removedPaths.begin());
}

RemovedOnInterruption::~RemovedOnInterruption() {
  removedPaths[slot].isUsed = false;
}

}  // namespace tessera::files
