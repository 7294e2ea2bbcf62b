#include "tessera/files/permissions.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include "apps/tessera/support/TemporaryFolder.hpp"
#include "apps/tessera/support/asUser.hpp"
#include "tessera/files/Descriptor.hpp"

namespace {

using tessera::files::copyPermissions;
using tessera::files::Descriptor;
using tessera::files::restrictPermissions;

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr uid_t kUser = 12345;
constexpr gid_t kGroup = 23456;

/// An access control list as the system stores it: a version, and for each entry its kind, rights
/// and user. One more user has rights, of which those of the mask count.
std::vector<std::uint16_t> accessList(std::uint16_t userRights, std::uint16_t mask) {
  constexpr std::uint16_t kNone = 0xFFFF;
  // clang-format off
  return {2, 0,
          0x01, 6, kNone, kNone,
          0x02, userRights, 54321, 0,
          0x04, 0, kNone, kNone,
          0x10, mask, kNone, kNone,
          0x20, 4, kNone, kNone};
  // clang-format on
}

class PermissionsTest : public testing::Test {
 protected:
  static mode_t modeOf(const Descriptor& file) {
    struct stat status = {};
    EXPECT_EQ(::fstat(file.get(), &status), 0);
    return status.st_mode & ALLPERMS;
  }

  /// Returns the bytes of an attribute; "none" if there is none.
  static std::string attributeOf(const Descriptor& file, const char* name) {
    std::string value(1000, ' ');
    const ssize_t size = ::fgetxattr(file.get(), name, value.data(), value.size());
    return size < 0 ? "none" : value.substr(0, static_cast<std::size_t>(size));
  }

  static bool setAccessList(const Descriptor& file, const std::vector<std::uint16_t>& list) {
    return ::fsetxattr(file.get(), kAccessList, list.data(), 2 * list.size(), 0) == 0;
  }

  Descriptor make(const std::string& name) const {
    return Descriptor(::open(folder.path(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  }

  const TemporaryFolder folder;
  const Descriptor from = make("old");
  const Descriptor to = make("new");
};

TEST_F(PermissionsTest, TheModeIsThatOfTheOldFile) {
  for (const mode_t mode : {0400U, 0640U, 0666U, 0751U}) {
    ASSERT_EQ(::fchmod(from.get(), mode), 0);
    EXPECT_TRUE(copyPermissions(from.get(), to.get()));
    EXPECT_EQ(modeOf(to), mode);
  }
}

TEST_F(PermissionsTest, TheAccessControlListIsThatOfTheOldFile) {
  if (!setAccessList(from, accessList(4, 5))) GTEST_SKIP() << "there are no such lists here";
  ASSERT_TRUE(setAccessList(to, accessList(6, 7)));
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  EXPECT_EQ(attributeOf(to, kAccessList), attributeOf(from, kAccessList));
  EXPECT_EQ(modeOf(to), 0654U);
}

// Its entries would count with the group's rights.
TEST_F(PermissionsTest, AnInheritedAccessControlListIsRemoved) {
  if (!setAccessList(to, accessList(6, 6))) GTEST_SKIP() << "there are no such lists here";
  ASSERT_EQ(::fchmod(from.get(), 0660), 0);
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  EXPECT_EQ(attributeOf(to, kAccessList), "none");
  EXPECT_EQ(modeOf(to), 0660U);
  ASSERT_TRUE(setAccessList(to, accessList(6, 6)));
  EXPECT_TRUE(restrictPermissions(from.get(), to.get()));
  EXPECT_EQ(attributeOf(to, kAccessList), "none");
}

// It may deny somebody what others may do.
TEST_F(PermissionsTest, ARestrictedFileWithAnAccessControlListIsForItsOwner) {
  if (!setAccessList(from, accessList(0, 4))) GTEST_SKIP() << "there are no such lists here";
  EXPECT_TRUE(restrictPermissions(from.get(), to.get()));
  EXPECT_EQ(attributeOf(to, kAccessList), "none");
  EXPECT_EQ(modeOf(to), 0600U);
}

TEST_F(PermissionsTest, AttributesOfUsersAreKept) {
  if (::fsetxattr(from.get(), "user.a", "text", 4, 0) != 0 ||
      ::fsetxattr(from.get(), "user.empty", "", 0, 0) != 0) {
    GTEST_SKIP() << "there are none here";
  }
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  EXPECT_EQ(attributeOf(to, "user.a"), "text");
  EXPECT_EQ(attributeOf(to, "user.empty"), "");
}

// The system has them, too: for what a program may do, for example.
TEST_F(PermissionsTest, OtherAttributesAreNotCopied) {
  if (::fsetxattr(from.get(), "trusted.a", "text", 4, 0) != 0) GTEST_SKIP() << "not allowed";
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  EXPECT_EQ(attributeOf(to, "trusted.a"), "none");
}

// The old owner is one of the group or of the others if the owner is another one.
TEST_F(PermissionsTest, ARestrictedFileGivesNoMoreThanTheOwnerHad) {
  const struct {
    mode_t old;
    mode_t restricted;
  } cases[] = {{0600, 0600}, {0640, 0640}, {0664, 0664}, {0607, 0606}, {0477, 0444}, {06755, 0755}};
  for (const auto& [old, restricted] : cases) {
    ASSERT_EQ(::fchmod(from.get(), old), 0);
    EXPECT_TRUE(restrictPermissions(from.get(), to.get()));
    EXPECT_EQ(modeOf(to), restricted) << std::oct << old;
  }
}

/// Files of an ordinary user who may not give them away; `from` belongs to another group.
class OwnershipTest : public PermissionsTest {
 protected:
  void SetUp() override {
    if (::fchown(from.get(), kUser, kGroup) != 0) GTEST_SKIP() << "files cannot be given away";
    ASSERT_EQ(::fchown(to.get(), kUser, kUser), 0);
    if (!asUser(kUser, [] { return true; }))
      GTEST_SKIP() << "this process cannot be another user's";
  }

  bool copyAsUser() const {
    return asUser(kUser, [this] { return copyPermissions(from.get(), to.get()); }).value();
  }

  bool restrictAsUser() const {
    return asUser(kUser, [this] { return restrictPermissions(from.get(), to.get()); }).value();
  }
};

TEST_F(OwnershipTest, OwnerAndGroupAreThoseOfTheOldFile) {
  ASSERT_EQ(::fchmod(from.get(), 06750), 0);
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  struct stat status = {};
  ASSERT_EQ(::fstat(to.get(), &status), 0);
  EXPECT_EQ(status.st_uid, kUser);
  EXPECT_EQ(status.st_gid, kGroup);
  EXPECT_EQ(modeOf(to), 06750U);
}

TEST_F(OwnershipTest, AnotherOwnerOrGroupIsAnError) {
  EXPECT_FALSE(copyAsUser());
  ASSERT_EQ(::fchown(from.get(), kUser + 1, kUser), 0);
  EXPECT_FALSE(copyAsUser());
  ASSERT_EQ(::fchown(from.get(), kUser, kUser), 0);
  EXPECT_TRUE(copyAsUser());
}

// The system takes the bit off without an error.
TEST_F(OwnershipTest, ASetGroupIdBitThatIsNotKeptIsAnError) {
  ASSERT_EQ(::fchown(to.get(), kUser, kGroup), 0);
  ASSERT_EQ(::fchmod(from.get(), 0755), 0);
  EXPECT_TRUE(copyAsUser());
  ASSERT_EQ(::fchmod(from.get(), 02755), 0);
  const auto isRefused = [this] {
    return !copyPermissions(from.get(), to.get()) && errno == EPERM;
  };
  EXPECT_TRUE(asUser(kUser, isRefused).value());
}

TEST_F(OwnershipTest, ARestrictedFileBelongsToTheUser) {
  ASSERT_TRUE(copyPermissions(from.get(), to.get()));
  ASSERT_EQ(::fchmod(from.get(), 0640), 0);
  ASSERT_TRUE(restrictPermissions(from.get(), to.get()));
  struct stat status = {};
  ASSERT_EQ(::fstat(to.get(), &status), 0);
  EXPECT_EQ(status.st_uid, ::geteuid());
  EXPECT_EQ(status.st_gid, kGroup);
  EXPECT_EQ(modeOf(to), 0640U);
}

TEST_F(OwnershipTest, AnotherGroupHasTheRightsThatGroupAndOthersHad) {
  const struct {
    mode_t old;
    mode_t restricted;
  } cases[] = {{0640, 0600}, {0644, 0644}, {0604, 0600}, {0666, 0666}, {0675, 0644}, {06755, 0755}};
  for (const auto& [old, restricted] : cases) {
    ASSERT_EQ(::fchmod(from.get(), old), 0);
    EXPECT_TRUE(restrictAsUser());
    EXPECT_EQ(modeOf(to), restricted) << std::oct << old;
  }
}

TEST_F(OwnershipTest, TheGroupStaysIfOnlyTheOwnerIsAnotherOne) {
  ASSERT_EQ(::fchown(from.get(), kUser + 1, kUser), 0);
  ASSERT_EQ(::fchmod(from.get(), 0660), 0);
  EXPECT_TRUE(restrictAsUser());
  EXPECT_EQ(modeOf(to), 0660U);
}

}  // namespace
