#include "tessera/files/RewritableFile.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "tessera/diagnostics/Problem.hpp"

namespace {

using tessera::diagnostics::ProblemError;
using tessera::files::RewritableFile;
using namespace std::string_view_literals;

class RewritableFileTest : public testing::Test {
 protected:
  static std::string read(const std::string& name) {
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  static void write(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
  }

  /// Expects that `file` cannot be replaced for the reason `what`, and stays `content`.
  void expectRefused(RewritableFile& file, const std::string& what, const std::string& content) {
    try {
      file.replace("new");
      ADD_FAILURE() << "replaced";
    } catch (const ProblemError& error) {
      EXPECT_EQ(error.problem().file, name);
      EXPECT_EQ(error.problem().what, what);
      EXPECT_FALSE(error.problem().remedy.empty());
    }
    EXPECT_EQ(read(name), content);
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(name).parent_path())) {
      EXPECT_EQ(entry.path().string().find(".tessera-"), std::string::npos) << entry.path();
    }
  }

  const TemporaryFolder folder;
  const std::string name = folder.write("file", "old\0text"sv);
};

TEST_F(RewritableFileTest, ReplacesTheWholeContent) {
  RewritableFile file(name);
  EXPECT_EQ(file.bytes(), "old\0text"sv);
  file.replace("new\0text"sv);
  EXPECT_EQ(read(name), "new\0text"sv);
  EXPECT_EQ(std::distance(
                std::filesystem::directory_iterator(std::filesystem::path(name).parent_path()), {}),
            1);
}

TEST_F(RewritableFileTest, AFileThatWasWrittenMeanwhileStays) {
  RewritableFile file(name);
  write(name, "other text");
  expectRefused(file, "changed after it was read", "other text");
}

TEST_F(RewritableFileTest, AFileWhoseModeWasChangedMeanwhileStays) {
  RewritableFile file(name);
  struct stat before = {};
  struct stat after = {};
  ASSERT_EQ(::stat(name.c_str(), &before), 0);
  // The clock of the file system may be slower than two calls.
  do {
    ASSERT_EQ(::chmod(name.c_str(), 0640), 0);
    ASSERT_EQ(::stat(name.c_str(), &after), 0);
  } while (after.st_ctim.tv_sec == before.st_ctim.tv_sec &&
           after.st_ctim.tv_nsec == before.st_ctim.tv_nsec);
  expectRefused(file, "changed after it was read", file.bytes());
}

TEST_F(RewritableFileTest, AFileThatWasReplacedMeanwhileStays) {
  RewritableFile file(name);
  const std::string other = name + "2";
  write(other, file.bytes());
  std::filesystem::rename(other, name);
  expectRefused(file, "changed after it was read", file.bytes());
}

TEST_F(RewritableFileTest, AFileThatWasReplacedOnceIsNotReplacedAgain) {
  RewritableFile file(name);
  file.replace("once");
  expectRefused(file, "changed after it was read", "once");
}

TEST_F(RewritableFileTest, AFileThatWasRemovedIsNotMadeAgain) {
  RewritableFile file(name);
  std::filesystem::remove(name);
  EXPECT_THROW(file.replace("new"), ProblemError);
  EXPECT_FALSE(std::filesystem::exists(name));
}

TEST_F(RewritableFileTest, TheModeStays) {
  std::filesystem::permissions(name, std::filesystem::perms(0751));
  RewritableFile(name).replace("new");
  EXPECT_EQ(std::filesystem::status(name).permissions(), std::filesystem::perms(0751));
}

TEST_F(RewritableFileTest, ASymbolicLinkStaysOne) {
  const std::string link = name + "-link";
  std::filesystem::create_symlink(name, link);
  RewritableFile(link).replace("new");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(read(name), "new");
}

TEST_F(RewritableFileTest, AFileThatBecameALinkStaysOne) {
  RewritableFile file(name);
  const std::string victim = folder.write("victim", "victim");
  std::filesystem::remove(name);
  std::filesystem::create_symlink(victim, name);
  EXPECT_THROW(file.replace("new"), ProblemError);
  EXPECT_TRUE(std::filesystem::is_symlink(name));
  EXPECT_EQ(read(victim), "victim");
}

TEST_F(RewritableFileTest, TheFileIsReplacedInTheFolderFromWhichItWasRead) {
  namespace fs = std::filesystem;
  const fs::path root = fs::path(name).parent_path();
  for (const char* below : {"named", "other"}) {
    fs::create_directory(root / below);
    write(root / below / "file", "old");
  }
  RewritableFile file(root / "named" / "file");
  fs::rename(root / "named", root / "moved");
  fs::create_directory_symlink(root / "other", root / "named");
  file.replace("new");
  EXPECT_EQ(read(root / "moved" / "file"), "new");
  EXPECT_EQ(read(root / "other" / "file"), "old");
}

TEST_F(RewritableFileTest, AFileThatWasFoundIsNotReachedThroughALink) {
  namespace fs = std::filesystem;
  const fs::path root = fs::path(name).parent_path();
  fs::create_directories(root / "named" / "below");
  fs::create_directory(root / "other");
  write(root / "other" / "file", "other");
  const std::string found = root / "named" / "below" / "file";
  const std::size_t namedBytes = (root / "named").string().size() + 1;
  fs::create_symlink(root / "other" / "file", found);
  EXPECT_THROW(RewritableFile(found, namedBytes), ProblemError);
  EXPECT_EQ(RewritableFile(found).bytes(), "other");
  fs::remove_all(root / "named" / "below");
  fs::create_directory_symlink(root / "other", root / "named" / "below");
  EXPECT_THROW(RewritableFile(found, namedBytes), ProblemError);
  EXPECT_EQ(RewritableFile(found).bytes(), "other");
}

TEST_F(RewritableFileTest, AFileWithSeveralNamesIsRefused) {
  std::filesystem::create_hard_link(name, name + "2");
  RewritableFile file(name);
  expectRefused(file, "has several names (hard links), and only one would get the new content",
                file.bytes());
}

TEST_F(RewritableFileTest, OnlyARegularFileIsRead) {
  EXPECT_THROW(RewritableFile("/dev/null"), ProblemError);
  EXPECT_THROW(RewritableFile(std::filesystem::path(name).parent_path().string()), ProblemError);
  EXPECT_THROW(RewritableFile(name + "none"), ProblemError);
}

TEST_F(RewritableFileTest, AFileWithMoreBytesThanItsSizeSaysIsRefused) {
  // The size of such a file is 0, as if all of it were written while it is read.
  try {
    const RewritableFile file("/proc/self/status");
    ADD_FAILURE() << "read";
  } catch (const ProblemError& error) {
    EXPECT_EQ(error.problem().what, "changed while it was read");
  }
}

}  // namespace
