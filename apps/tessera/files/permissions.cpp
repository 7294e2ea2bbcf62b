#include "tessera/files/permissions.hpp"

#include <linux/limits.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <string_view>

namespace tessera::files {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr uid_t kSameOwner = static_cast<uid_t>(-1);

mode_t groupRights(mode_t mode) {
  return mode & S_IRWXG;
}

/// Returns the rights of others as those of a group.
mode_t othersRights(mode_t mode) {
  return (mode & S_IRWXO) << 3;
}

/// Sets owner and group, and takes bits off `mode` that are not to be those of others.
bool copyOwner(const struct stat& old, int to, mode_t& mode) noexcept {
  if (::fchown(to, old.st_uid, old.st_gid) == 0) return true;
  mode &= ~mode_t{S_ISUID};
  if (::fchown(to, kSameOwner, old.st_gid) == 0) return true;
  mode &= ~mode_t{S_ISGID};
  return groupRights(mode) == othersRights(mode);
}

/// Returns whether the error means that there is no such attribute.
bool isAbsent(int error) {
  return error == ENODATA || error == ENOTSUP;
}

bool copyAttribute(const char* name, int from, int to) noexcept {
  std::array<char, XATTR_SIZE_MAX> value;
  const ssize_t size = ::fgetxattr(from, name, value.data(), value.size());
  if (size >= 0) {
    return ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0) == 0;
  }
  if (!isAbsent(errno)) return false;
  // A new file inherits an access control list from its folder.
  return ::fremovexattr(to, name) == 0 || isAbsent(errno);
}

bool copyUserAttributes(int from, int to) noexcept {
  std::array<char, XATTR_LIST_MAX> list;
  const ssize_t size = ::flistxattr(from, list.data(), list.size());
  if (size < 0) return isAbsent(errno);
  std::string_view names(list.data(), static_cast<std::size_t>(size));
  while (!names.empty()) {
    const std::string_view name = names.substr(0, names.find('\0'));
    if (name.starts_with("user.") && !copyAttribute(name.data(), from, to)) return false;
    names.remove_prefix(name.size() + 1);
  }
  return true;
}

}  // namespace

bool copyPermissions(int from, int to) noexcept {
  struct stat old;
  if (::fstat(from, &old) != 0) return false;
  mode_t mode = old.st_mode & ALLPERMS;
  // A change of the owner may clear bits of the mode, so that comes first.
  return copyOwner(old, to, mode) && copyUserAttributes(from, to) &&
         copyAttribute(kAccessList, from, to) && ::fchmod(to, mode) == 0;
}

bool limitPermissions(int to, mode_t oldMode) noexcept {
  if (::fremovexattr(to, kAccessList) != 0 && !isAbsent(errno)) return false;
  const mode_t mode = oldMode & ACCESSPERMS;
  return ::fchmod(to, (mode & ~mode_t{S_IRWXG}) | (groupRights(mode) & othersRights(mode))) == 0;
}

}  // namespace tessera::files
