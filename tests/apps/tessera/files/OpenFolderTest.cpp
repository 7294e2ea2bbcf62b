#include "tessera/files/OpenFolder.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "apps/tessera/support/TemporaryFolder.hpp"

namespace {

using tessera::files::Descriptor;
using tessera::files::OpenFolder;
namespace fs = std::filesystem;

class OpenFolderTest : public testing::Test {
 protected:
  const TemporaryFolder holder;
  const fs::path file = holder.write("inside", "text");
  const fs::path root = file.parent_path();
};

TEST_F(OpenFolderTest, WhatIsDoneStaysInTheFolderThatWasOpened) {
  fs::create_directories(root / "folder" / "below");
  fs::create_directories(root / "other" / "below");
  const OpenFolder folder(root / "folder" / "below" / "name");
  fs::rename(root / "folder", root / "moved");
  fs::create_directory_symlink(root / "other", root / "folder");
  std::string temporary;
  ASSERT_GE(Descriptor(folder.createTemporary("name", temporary)).get(), 0);
  EXPECT_TRUE(folder.rename(temporary, "name"));
  EXPECT_TRUE(fs::exists(root / "moved" / "below" / "name"));
  EXPECT_TRUE(fs::is_empty(root / "other" / "below"));
  EXPECT_TRUE(folder.unlink("name"));
  EXPECT_TRUE(fs::is_empty(root / "moved" / "below"));
}

TEST_F(OpenFolderTest, LinksAreFollowedInTheNamedPartOnly) {
  fs::create_directories(root / "real" / "a" / "b");
  fs::create_directory_symlink(root / "real", root / "link");
  fs::create_directory_symlink(root / "real" / "a", root / "real" / "inner");
  const auto isOpenWith = [](const fs::path& path, const fs::path& followed) {
    return OpenFolder(path.string(), followed.string().size()).isOpen();
  };
  EXPECT_TRUE(OpenFolder(root / "link" / "inner" / "b" / "name").isOpen());
  EXPECT_TRUE(isOpenWith(root / "link" / "a" / "b" / "name", root / "link" / ""));
  EXPECT_FALSE(isOpenWith(root / "link" / "a" / "b" / "name", root / ""));
  EXPECT_FALSE(isOpenWith(root / "link" / "inner" / "b" / "name", root / "link" / ""));
  EXPECT_EQ(errno, ENOTDIR);
  EXPECT_TRUE(isOpenWith(root / "link" / "inner" / "b" / "name", root / "link" / "inner" / ""));
}

TEST_F(OpenFolderTest, ALinkIsNotOpened) {
  fs::create_symlink("inside", root / "link");
  const OpenFolder folder(file);
  EXPECT_GE(Descriptor(folder.open("inside", O_RDONLY)).get(), 0);
  EXPECT_LT(Descriptor(folder.open("link", O_RDONLY)).get(), 0);
  EXPECT_EQ(errno, ELOOP);
  struct stat status = {};
  ASSERT_TRUE(folder.stat("link", status));
  EXPECT_TRUE(S_ISLNK(status.st_mode));
}

/// Gives up the lease of the open file when another process wants to open it.
int leased = -1;
void giveUpLease(int /*signal*/) {
  ::fcntl(leased, F_SETLEASE, F_UNLCK);
}

TEST_F(OpenFolderTest, AFileThatAnotherProcessHasALeaseOnIsAwaited) {
  std::array<int, 2> channel{};
  ASSERT_EQ(::pipe(channel.data()), 0);
  const pid_t holder = ::fork();
  if (holder == 0) {
    ::signal(SIGIO, giveUpLease);
    leased = ::open(file.c_str(), O_RDWR);
    const bool isHeld = ::fcntl(leased, F_SETLEASE, F_WRLCK) == 0;
    const bool isTold = ::write(channel[1], isHeld ? "y" : "n", 1) == 1;
    if (!isHeld || !isTold) std::_Exit(EXIT_SUCCESS);
    while (true) ::pause();
  }
  ::close(channel[1]);
  char answer = 'n';
  EXPECT_EQ(::read(channel[0], &answer, 1), 1);
  if (answer == 'y') {
    const OpenFolder folder(file);
    EXPECT_GE(folder.openToRead("inside").get(), 0);
  }
  ::kill(holder, SIGKILL);
  ::waitpid(holder, nullptr, 0);
  ::close(channel[0]);
  if (answer != 'y') GTEST_SKIP() << "there are no leases here";
}

TEST_F(OpenFolderTest, AFolderThatDoesNotExistIsNotOpen) {
  EXPECT_FALSE(OpenFolder(root / "none" / "name").isOpen());
  EXPECT_EQ(errno, ENOENT);
  EXPECT_FALSE(OpenFolder(file / "name").isOpen());
  EXPECT_TRUE(OpenFolder("name").isOpen());
  EXPECT_TRUE(OpenFolder("/name").isOpen());
  EXPECT_TRUE(OpenFolder("//tmp//./name", 2).isOpen());
}

TEST_F(OpenFolderTest, TemporaryNamesDiffer) {
  const OpenFolder folder(file);
  std::string first;
  std::string second;
  ASSERT_GE(Descriptor(folder.createTemporary("inside", first)).get(), 0);
  ASSERT_GE(Descriptor(folder.createTemporary("inside", second)).get(), 0);
  EXPECT_NE(first, second);
  EXPECT_TRUE(first.starts_with(".inside.tessera-")) << first;
  EXPECT_EQ(fs::status(root / first).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(OpenFolderTest, ATemporaryNameIsNotTooLong) {
  const OpenFolder folder(file);
  const auto makeFor = [&](const std::string& name) {
    std::string temporary;
    EXPECT_GE(Descriptor(folder.createTemporary(name, temporary)).get(), 0) << name.size();
    return temporary;
  };
  EXPECT_TRUE(
      makeFor(std::string(239, 'n')).starts_with("." + std::string(239, 'n') + ".tessera-"));
  EXPECT_TRUE(
      makeFor(std::string(255, 'n')).starts_with("." + std::string(239, 'n') + ".tessera-"));
  // A character stays whole.
  std::string accents;
  while (accents.size() < 254) accents += "\xC3\xA9";
  EXPECT_TRUE(makeFor(accents).starts_with("." + accents.substr(0, 238) + ".tessera-"));
}

}  // namespace
