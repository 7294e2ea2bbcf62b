#include "tessera/files/permissions.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "tessera/files/Descriptor.hpp"

namespace {

using tessera::files::copyPermissions;
using tessera::files::Descriptor;
using tessera::files::limitPermissions;

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr uid_t kUser = 12345;
constexpr gid_t kGroup = 23456;

/// An access control list of the form that the system stores: version 2, and for each entry its
/// kind, rights and user.
std::vector<std::uint16_t> accessList(std::uint16_t namedUserRights, std::uint16_t mask) {
  constexpr std::uint16_t kNobody = 0xFFFF;
  return {2,       0,  // Version.
          1,       6,
          kNobody, kNobody,  // Owner.
          2,       namedUserRights,
          54321,   0,  // A user.
          4,       0,
          kNobody, kNobody,  // Group.
          0x10,    mask,
          kNobody, kNobody,  // Mask.
          0x20,    0,
          kNobody, kNobody};
}

class PermissionsTest : public testing::Test {
 protected:
  mode_t modeOf(const Descriptor& file) const {
    struct stat status = {};
    EXPECT_EQ(::fstat(file.get(), &status), 0);
    return status.st_mode & ALLPERMS;
  }

  bool hasAttribute(const Descriptor& file, const char* name) const {
    return ::fgetxattr(file.get(), name, nullptr, 0) >= 0;
  }

  bool setAccessList(const Descriptor& file, const std::vector<std::uint16_t>& list) const {
    return ::fsetxattr(file.get(), kAccessList, list.data(), 2 * list.size(), 0) == 0;
  }

  /// Runs `step` as an ordinary user in a process of its own, and returns what it returns.
  template <class Step>
  bool asUser(Step step) const {
    const pid_t process = ::fork();
    if (process == 0) {
      const bool isOther = ::setgid(kUser) == 0 && ::setuid(kUser) == 0;
      std::_Exit(isOther && step() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
  }

  /// Copies as a user who may not give files away, nor to another group.
  bool copyAsUser() const {
    EXPECT_EQ(::fchown(to.get(), kUser, kUser), 0);
    return asUser([this] { return copyPermissions(from.get(), to.get()); });
  }

  Descriptor make(const std::string& name, mode_t mode) const {
    return Descriptor(::open(folder.path(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, mode));
  }

  const TemporaryFolder folder;
  const Descriptor from = make("old", 0600);
  const Descriptor to = make("new", 0600);
};

TEST_F(PermissionsTest, TheModeIsThatOfTheOldFile) {
  for (const mode_t mode : {0400U, 0640U, 0666U, 0751U}) {
    ASSERT_EQ(::fchmod(from.get(), mode), 0);
    EXPECT_TRUE(copyPermissions(from.get(), to.get()));
    EXPECT_EQ(modeOf(to), mode);
  }
}

TEST_F(PermissionsTest, TheAccessControlListIsThatOfTheOldFile) {
  if (!setAccessList(from, accessList(4, 4))) GTEST_SKIP() << "there are no such lists here";
  const mode_t mode = modeOf(from);
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  EXPECT_TRUE(hasAttribute(to, kAccessList));
  EXPECT_EQ(modeOf(to), mode);
}

// Its entries would count with the group's rights.
TEST_F(PermissionsTest, AnInheritedAccessControlListIsRemoved) {
  if (!setAccessList(to, accessList(6, 6))) GTEST_SKIP() << "there are no such lists here";
  ASSERT_EQ(::fchmod(from.get(), 0660), 0);
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  EXPECT_FALSE(hasAttribute(to, kAccessList));
  EXPECT_EQ(modeOf(to), 0660U);
  ASSERT_TRUE(setAccessList(to, accessList(6, 6)));
  EXPECT_TRUE(limitPermissions(to.get(), 0664));
  EXPECT_FALSE(hasAttribute(to, kAccessList));
  EXPECT_EQ(modeOf(to), 0644U);
}

TEST_F(PermissionsTest, AttributesOfUsersAreKept) {
  if (::fsetxattr(from.get(), "user.a", "text", 4, 0) != 0 ||
      ::fsetxattr(from.get(), "user.empty", "", 0, 0) != 0) {
    GTEST_SKIP() << "there are none here";
  }
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  std::string value(8, ' ');
  ASSERT_EQ(::fgetxattr(to.get(), "user.a", value.data(), value.size()), 4);
  EXPECT_EQ(value, "text    ");
  EXPECT_TRUE(hasAttribute(to, "user.empty"));
}

TEST_F(PermissionsTest, TheGroupOfAFallbackHasOnlyTheRightsOfOthers) {
  const struct {
    mode_t old;
    mode_t limited;
  } cases[] = {{0600, 0600}, {0640, 0600}, {0644, 0644}, {0666, 0666}, {0674, 0644}, {06755, 0755}};
  for (const auto& [old, limited] : cases) {
    EXPECT_TRUE(limitPermissions(to.get(), old));
    EXPECT_EQ(modeOf(to), limited) << std::oct << old;
  }
}

class OwnershipTest : public PermissionsTest {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  }
};

TEST_F(OwnershipTest, OwnerAndGroupAreThoseOfTheOldFile) {
  ASSERT_EQ(::fchown(from.get(), kUser, kGroup), 0);
  ASSERT_EQ(::fchmod(from.get(), 06750), 0);
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  struct stat status = {};
  ASSERT_EQ(::fstat(to.get(), &status), 0);
  EXPECT_EQ(status.st_uid, kUser);
  EXPECT_EQ(status.st_gid, kGroup);
  EXPECT_EQ(modeOf(to), 06750U);
}

TEST_F(OwnershipTest, AnotherGroupDoesNotGetTheRightsOfTheOldOne) {
  ASSERT_EQ(::fchown(from.get(), kUser, kGroup), 0);
  ASSERT_EQ(::fchmod(from.get(), 0640), 0);
  EXPECT_FALSE(copyAsUser());
  EXPECT_EQ(modeOf(to), 0600U);
  // It has as many rights as all others.
  ASSERT_EQ(::fchmod(from.get(), 0644), 0);
  EXPECT_TRUE(copyAsUser());
  EXPECT_EQ(modeOf(to), 0644U);
}

TEST_F(OwnershipTest, AnotherOwnerOrGroupIsNotThatOfAProgram) {
  // The owner is another one.
  ASSERT_EQ(::fchown(from.get(), kUser + 1, kUser), 0);
  ASSERT_EQ(::fchmod(from.get(), 04755), 0);
  EXPECT_TRUE(copyAsUser());
  EXPECT_EQ(modeOf(to), 0755U);
  // The group is another one.
  ASSERT_EQ(::fchown(from.get(), kUser, kGroup), 0);
  ASSERT_EQ(::fchmod(from.get(), 02755), 0);
  EXPECT_TRUE(copyAsUser());
  EXPECT_EQ(modeOf(to), 0755U);
}

}  // namespace
