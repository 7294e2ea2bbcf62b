#include "tessera/files/SpoolFile.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <system_error>
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

/// Sets the folder of temporary files until it is destroyed.
class TemporaryFolderSetting {
 public:
  explicit TemporaryFolderSetting(const std::string& folder) {
    if (const char* const value = std::getenv("TMPDIR")) before = value;
    ::setenv("TMPDIR", folder.c_str(), 1);
  }
  ~TemporaryFolderSetting() {
    before ? ::setenv("TMPDIR", before->c_str(), 1) : ::unsetenv("TMPDIR");
  }
  TemporaryFolderSetting(const TemporaryFolderSetting&) = delete;
  TemporaryFolderSetting& operator=(const TemporaryFolderSetting&) = delete;

 private:
  std::optional<std::string> before;
};

/// Returns whether this process has a file open that is, or was, in `folder`.
bool hasOpenFileIn(const std::string& folder) {
  const auto begin = std::filesystem::canonical(folder).string() + '/';
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    // That of the iterator may be closed before it is read.
    std::error_code error;
    if (std::filesystem::read_symlink(entry, error).string().starts_with(begin)) return true;
  }
  return false;
}

TEST(SpoolFile, IsInTheTemporaryFolderWithoutAName) {
  const TemporaryFolder folder;
  const TemporaryFolderSetting setting(folder.path(""));
  EXPECT_FALSE(hasOpenFileIn(folder.path("")));
  const tessera::files::SpoolFile file;
  EXPECT_TRUE(hasOpenFileIn(folder.path("")));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path("")));
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
