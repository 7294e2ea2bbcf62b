#include "tessera/files/SpoolFile.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "tessera/files/Interruption.hpp"

namespace {

/// Makes one file after the other in the folder until it is interrupted.
[[noreturn]] void makeFiles(const std::string& folder) {
  ::setenv("TMPDIR", folder.c_str(), 1);
  tessera::files::endOnInterruption();
  while (true) tessera::files::SpoolFile();
}

/// Interrupts the process until it has ended: it may not react to signals yet.
void interrupt(pid_t process) {
  while (::waitpid(process, nullptr, WNOHANG) == 0) {
    ::kill(process, SIGINT);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

TEST(SpoolFile, AnInterruptionLeavesNoName) {
  const TemporaryFolder folder;
  std::minstd_rand random(1);
  for (int i = 0; i < 50; ++i) {
    const pid_t process = ::fork();
    ASSERT_GE(process, 0);
    if (process == 0) makeFiles(folder.path(""));
    std::this_thread::sleep_for(std::chrono::microseconds(2000 + random() % 2000));
    interrupt(process);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path("")));
}

}  // namespace
