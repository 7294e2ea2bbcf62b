#include "tessera/files/PartialFile.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "apps/tessera/support/asUser.hpp"
#include "tessera/diagnostics/Problem.hpp"

namespace {

using tessera::diagnostics::OutputError;
using tessera::files::Incomplete;
using tessera::files::Leftover;
using tessera::files::PartialFile;
namespace fs = std::filesystem;

class PartialFileTest : public testing::Test {
 protected:
  static std::string read(const fs::path& name) {
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// Expects that `name` cannot be written, and says why.
  void expectRefused(const std::string& what) {
    for (const Leftover leftover : {Leftover::kReplaced, Leftover::kContinued}) {
      try {
        const PartialFile file(name, leftover);
        ADD_FAILURE() << "opened";
      } catch (const OutputError& error) {
        EXPECT_EQ(error.problem().what, what);
        EXPECT_FALSE(error.problem().remedy.empty());
      }
    }
    EXPECT_FALSE(fs::exists(name));
    EXPECT_EQ(read(victim), "victim");
  }

  const TemporaryFolder holder;
  const fs::path victim = holder.write("victim", "victim");
  const fs::path root = victim.parent_path();
  const fs::path folder = root / "folder";
  const fs::path name = folder / "out";
  const bool isMade = fs::create_directory(folder);
};

TEST_F(PartialFileTest, ItAppearsWhenItIsComplete) {
  PartialFile file(name, Leftover::kReplaced);
  file.output().text() = "text";
  file.output().flush();
  EXPECT_FALSE(fs::exists(name));
  EXPECT_TRUE(fs::exists(folder / "out.partial"));
  file.complete();
  EXPECT_EQ(read(name), "text");
  EXPECT_FALSE(fs::exists(folder / "out.partial"));
}

TEST_F(PartialFileTest, AFileThatCannotTakeItsPlaceIsAnErrorAndIsRemoved) {
  {
    PartialFile file(name, Leftover::kReplaced);
    file.output().text() = "text";
    fs::create_directory(name);
    try {
      file.complete();
      ADD_FAILURE() << "completed";
    } catch (const OutputError& error) {
      EXPECT_EQ(error.problem().what, "cannot be replaced: Is a directory");
    }
  }
  EXPECT_TRUE(fs::is_directory(name));
  EXPECT_FALSE(fs::exists(folder / "out.partial"));
}

TEST_F(PartialFileTest, ALinkInTheWayIsNotFollowed) {
  fs::create_symlink(victim, folder / "out.partial");
  expectRefused("exists, and is not the incomplete output of another run");
  EXPECT_TRUE(fs::is_symlink(folder / "out.partial"));
}

TEST_F(PartialFileTest, AFileWithASecondNameInTheWayIsNotWritten) {
  fs::create_hard_link(victim, folder / "out.partial");
  expectRefused("exists, and is not the incomplete output of another run");
}

TEST_F(PartialFileTest, APipeInTheWayIsNotWritten) {
  ASSERT_EQ(::mkfifo((folder / "out.partial").c_str(), 0600), 0);
  expectRefused("exists, and is not the incomplete output of another run");
}

TEST_F(PartialFileTest, AFolderInTheWayIsReported) {
  fs::create_directory(folder / "out.partial");
  expectRefused("exists, and is not the incomplete output of another run");
  EXPECT_TRUE(fs::is_directory(folder / "out.partial"));
}

TEST_F(PartialFileTest, TheFileHasThePermissionsOfTheOneThatItReplaces) {
  for (const auto mode : {fs::perms(0600), fs::perms(0640), fs::perms(0444), fs::perms(0777)}) {
    std::ofstream(name) << "old";
    fs::permissions(name, mode);
    PartialFile file(name, Leftover::kReplaced);
    EXPECT_EQ(fs::status(folder / "out.partial").permissions(), fs::perms(0600));
    file.output().text() = "text";
    file.complete();
    EXPECT_EQ(fs::status(name).permissions(), mode);
    fs::remove(name);
  }
}

// Somebody may have opened it while it was readable.
TEST_F(PartialFileTest, ALeftoverHasThePermissionsOfThisRun) {
  const auto permissionsWith = [&](Leftover leftover) {
    std::ofstream(folder / "out.partial") << "leftover";
    fs::permissions(folder / "out.partial", fs::perms(0666));
    std::ifstream reader(folder / "out.partial");
    PartialFile file(name, leftover, Incomplete::kKept);
    file.cutAfter(0);
    file.output().text() = "text";
    file.output().flush();
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}),
              leftover == Leftover::kReplaced ? "leftover" : "text");
    struct stat status = {};
    EXPECT_EQ(::stat((folder / "out.partial").c_str(), &status), 0);
    return fs::perms(status.st_mode & 07777);
  };
  const mode_t old = ::umask(027);
  EXPECT_EQ(permissionsWith(Leftover::kReplaced), fs::perms(0640));
  EXPECT_EQ(permissionsWith(Leftover::kContinued), fs::perms(0666));
  std::ofstream(name) << "old";
  EXPECT_EQ(permissionsWith(Leftover::kReplaced), fs::perms(0600));
  EXPECT_EQ(permissionsWith(Leftover::kContinued), fs::perms(0600));
  ::umask(old);
}

TEST_F(PartialFileTest, ALeftoverOfAnotherUserIsReplacedButNotContinued) {
  std::ofstream(folder / "out.partial") << "leftover";
  fs::permissions(folder / "out.partial", fs::perms(0666));
  if (::chown((folder / "out.partial").c_str(), 12345, 12345) != 0) GTEST_SKIP() << "not allowed";
  try {
    const PartialFile file(name, Leftover::kContinued);
    ADD_FAILURE() << "continued";
  } catch (const OutputError& error) {
    EXPECT_EQ(error.problem().what, "exists, and belongs to another user");
  }
  EXPECT_EQ(read(folder / "out.partial"), "leftover");
  PartialFile file(name, Leftover::kReplaced);
  file.complete();
  struct stat status = {};
  ASSERT_EQ(::stat(name.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, ::geteuid());
}

// Its owner and group cannot be kept, and its group becomes one of the others.
TEST_F(PartialFileTest, AFileOfAnotherUserIsReplacedWithTheRightsThatEverybodyHad) {
  constexpr uid_t kUser = 12345;
  std::ofstream(name) << "old";
  fs::permissions(name, fs::perms(0664));
  for (const fs::path& part : {root, folder}) fs::permissions(part, fs::perms(0777));
  const auto replace = [this] {
    PartialFile file(name, Leftover::kReplaced);
    file.complete();
    return true;
  };
  if (!asUser(kUser, replace)) GTEST_SKIP() << "this process cannot be another user's";
  struct stat status = {};
  ASSERT_EQ(::stat(name.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kUser);
  EXPECT_EQ(fs::perms(status.st_mode & 07777), fs::perms(0644));
}

TEST_F(PartialFileTest, ANewFileHasThePermissionsOfANewFile) {
  const mode_t old = ::umask(027);
  PartialFile file(name, Leftover::kReplaced);
  file.complete();
  EXPECT_EQ(fs::status(name).permissions(), fs::perms(0640));
  ::umask(old);
}

TEST_F(PartialFileTest, ItStaysInTheFolderThatWasNamed) {
  const fs::path other = root / "other";
  fs::create_directory(other);
  std::ofstream(other / "out.partial") << "other";
  for (const bool isCompleted : {true, false}) {
    {
      PartialFile file(name, Leftover::kReplaced);
      file.output().text() = "text";
      file.output().flush();
      fs::rename(folder, root / "moved");
      fs::create_directory_symlink(other, folder);
      if (isCompleted) file.complete();
      EXPECT_NE(fs::exists(root / "moved" / "out.partial"), isCompleted);
    }
    EXPECT_EQ(read(root / "moved" / "out"), isCompleted ? "text" : "");
    EXPECT_FALSE(fs::exists(root / "moved" / "out.partial"));
    EXPECT_EQ(read(other / "out.partial"), "other");
    EXPECT_FALSE(fs::exists(other / "out"));
    fs::remove(folder);
    fs::rename(root / "moved", folder);
    fs::remove(name);
  }
}

TEST_F(PartialFileTest, AFileThatCannotBeReplacedCanBeContinued) {
  std::ofstream(name) << "old";
  fs::permissions(name, fs::perms(0444));
  // Only some users may do that; for others it is a file of theirs.
  [[maybe_unused]] const int result = ::chown(name.c_str(), 12345, 12345);
  PartialFile file(name, Leftover::kReplaced, Incomplete::kKept);
  file.output().text() = "text";
  fs::rename(folder / "out.partial", folder / "other");
  EXPECT_THROW(file.complete(), OutputError);
  struct stat status = {};
  ASSERT_EQ(::stat((folder / "other").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, ::geteuid());
  EXPECT_EQ(fs::perms(status.st_mode & 07777), fs::perms(0600));
  EXPECT_EQ(read(folder / "other"), "text");
}

TEST_F(PartialFileTest, ALinkThatLeadsWhereNobodyKnowsIsNotReplaced) {
  fs::create_symlink("out", name);
  EXPECT_THROW(PartialFile(name, Leftover::kReplaced), OutputError);
  EXPECT_TRUE(fs::is_symlink(name));
}

TEST_F(PartialFileTest, ALinkThatIsNamedIsFollowedOnce) {
  fs::create_symlink(victim, name);
  PartialFile file(name, Leftover::kReplaced);
  file.output().text() = "text";
  // What it leads to later does not count.
  fs::remove(name);
  fs::create_symlink(root / "later", name);
  file.complete();
  EXPECT_EQ(read(victim), "text");
  EXPECT_FALSE(fs::exists(root / "later"));
  EXPECT_TRUE(fs::is_symlink(name));
}

}  // namespace
