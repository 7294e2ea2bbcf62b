#include "tessera/files/openBelow.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "apps/tessera/support/TemporaryFolder.hpp"

namespace {

using tessera::files::openBelow;
namespace fs = std::filesystem;

class OpenBelowTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(holder.path("root/folder"));
    holder.write("root/folder/file", "text");
    fs::create_directory_symlink("folder", holder.path("root/link"));
    fs::create_symlink("file", holder.path("root/folder/link"));
    fs::create_directory_symlink("root", holder.path("named"));
  }

  /// Opens a path below a folder that was named, perhaps through a link.
  bool canOpen(const std::string& folder, const std::string& path, int flags = 0) const {
    const std::string named = holder.path(folder);
    return openBelow(named + path, named.size(), flags).get() >= 0;
  }

  const TemporaryFolder holder;
};

TEST_F(OpenBelowTest, LinksAreFollowedInTheNamedPartOnly) {
  for (const char* const folder : {"root/", "named/"}) {
    EXPECT_TRUE(canOpen(folder, "folder/file"));
    EXPECT_FALSE(canOpen(folder, "folder/link"));
    EXPECT_FALSE(canOpen(folder, "link/file"));
    EXPECT_FALSE(canOpen(folder, "folder/none"));
  }
}

TEST_F(OpenBelowTest, AFolderIsOpenedLikeAFile) {
  for (const char* const folder : {"root/", "named/"}) {
    EXPECT_TRUE(canOpen(folder, "", O_DIRECTORY));
    EXPECT_TRUE(canOpen(folder, "folder/", O_DIRECTORY));
    EXPECT_FALSE(canOpen(folder, "link/", O_DIRECTORY));
    EXPECT_FALSE(canOpen(folder, "folder/file", O_DIRECTORY));
  }
}

TEST_F(OpenBelowTest, APipeIsNotWaitedFor) {
  ASSERT_EQ(::mkfifo(holder.path("root/pipe").c_str(), 0600), 0);
  EXPECT_TRUE(canOpen("root/", "pipe"));
  EXPECT_TRUE(canOpen("named/", "pipe"));
}

}  // namespace
