#include "tessera/files/Interruption.hpp"

#include <fcntl.h>
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

// Some file systems limit characters, not bytes.
constexpr std::size_t kMostNameBytes = std::size_t{4} * NAME_MAX;

/// A file in memory that a signal handler may read.
struct RemovedFile {
  std::atomic<bool> isUsed = false;
  int folder = -1;
  std::array<char, kMostNameBytes + 1> name{};
};

std::array<RemovedFile, 4> removedFiles;

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGPIPE};

/// Passes the signal on to the main thread, unless this is it, and returns whether it did.
bool passToMainThread(int signal) noexcept {
  const pid_t process = ::getpid();
  return ::gettid() != process && ::tgkill(process, process, signal) == 0;
}

extern "C" void endProcess(int signal) {
  // A thread of a framework or a server may take a signal that the main thread holds back.
  if (passToMainThread(signal)) return;
  for (const RemovedFile& file : removedFiles) {
    if (file.isUsed) ::unlinkat(file.folder, file.name.data(), 0);
  }
  diagnostics::removeStatusAtExit();
  ::_exit(128 + signal);
}

extern "C" void doNothing(int /*signal*/) {}

}  // namespace

void setUpSignals() noexcept {
  // Not SIG_IGN: a browser that is started would inherit that.
  ::signal(SIGXFSZ, doNothing);
  ::signal(SIGCHLD, SIG_DFL);
}

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

RemovedOnInterruption::RemovedOnInterruption(int folder, const std::string& name) {
  const auto free =
      std::ranges::find_if(removedFiles, [](const auto& file) { return !file.isUsed; });
  if (free == removedFiles.end() || name.size() > kMostNameBytes) {
    throw std::length_error("the name of an output is too long");
  }
  std::ranges::copy(name, free->name.begin());
  free->name[name.size()] = '\0';
  free->folder = folder;
  free->isUsed = true;
  slot = static_cast<std::size_t>(free - removedFiles.begin());
}

RemovedOnInterruption::~RemovedOnInterruption() {
  removedFiles[slot].isUsed = false;
}

}  // namespace tessera::files
