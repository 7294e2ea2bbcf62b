#include "tessera/files/SpoolFile.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
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
#include "tessera/diagnostics/Problem.hpp"
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

TEST(SpoolFile, AFolderWithoutFilesIsNamedAndHowToSetIt) {
  const TemporaryFolderSetting setting("/proc");
  try {
    const tessera::files::SpoolFile file;
    ADD_FAILURE() << "created";
  } catch (const tessera::diagnostics::OutputError& error) {
    EXPECT_TRUE(error.problem().file.starts_with("/proc/tessera-")) << error.problem().file;
    EXPECT_NE(error.problem().remedy.find("TMPDIR"), std::string::npos);
  }
}

/// Lets files of this process have at most that many bytes until it is destroyed.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{.rlim_cur = bytes, .rlim_max = before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before = {};
  sighandler_t handler = ::signal(SIGXFSZ, SIG_IGN);
};

TEST(SpoolFile, AnErrorOfTheFileNamesIt) {
  const TemporaryFolder folder;
  const TemporaryFolderSetting setting(folder.path(""));
  tessera::files::SpoolFile file;
  file.output().text() = std::string(1 << 20, 'x');
  const FileSizeLimit limit(1);
  try {
    file.rewind();
    ADD_FAILURE() << "written";
  } catch (const tessera::diagnostics::OutputError& error) {
    EXPECT_TRUE(error.problem().file.starts_with(folder.path("tessera-"))) << error.problem().file;
    EXPECT_NE(error.problem().remedy.find("ulimit -f"), std::string::npos);
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
