#include "tessera/files/Interruption.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace {

constexpr int kIsPending = 7;
constexpr int kIsLost = 8;

/// Ends the process with kIsPending if a signal that another thread takes waits for this thread,
/// which holds it back.
[[noreturn]] void holdBackWhatAnotherThreadTakes() {
  tessera::files::endOnInterruption();
  const tessera::files::HeldInterruptions held;
  std::jthread other([] {
    sigset_t taken;
    ::sigemptyset(&taken);
    ::sigaddset(&taken, SIGINT);
    ::pthread_sigmask(SIG_UNBLOCK, &taken, nullptr);
    ::raise(SIGINT);
  });
  other.join();
  sigset_t pending;
  ::sigpending(&pending);
  ::_exit(::sigismember(&pending, SIGINT) == 1 ? kIsPending : kIsLost);
}

/// Is ended by a signal that another thread takes.
[[noreturn]] void letAnotherThreadTake() {
  tessera::files::endOnInterruption();
  std::jthread([] { ::raise(SIGINT); }).join();
  while (true) ::pause();
}

/// Returns the status with which a process ends that calls `function`.
int statusOf(void (*function)()) {
  const pid_t process = ::fork();
  if (process == 0) function();
  int status = 0;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Interruption, ThatAnotherThreadTakesIsHeldBack) {
  EXPECT_EQ(statusOf(holdBackWhatAnotherThreadTakes), kIsPending);
}

TEST(Interruption, ThatAnotherThreadTakesEndsTheProcess) {
  EXPECT_EQ(statusOf(letAnotherThreadTake), 128 + SIGINT);
}

}  // namespace
