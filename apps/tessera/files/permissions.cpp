#include "tessera/files/permissions.hpp"

#include <linux/limits.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>

namespace tessera::files {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

/// Returns whether the error means that there is no such attribute.
bool isAbsent(int error) {
  return error == ENODATA || error == ENOTSUP;
}

bool removeAccessList(int file) {
  return ::fremovexattr(file, kAccessList) == 0 || isAbsent(errno);
}

bool copyAttribute(const char* name, int from, int to, std::string& value) {
  const ssize_t size = ::fgetxattr(from, name, value.data(), value.size());
  if (size < 0) return false;
  return ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0) == 0;
}

bool hasAccessList(int file) {
  return ::fgetxattr(file, kAccessList, nullptr, 0) >= 0 || !isAbsent(errno);
}

/// A new file inherits an access control list from its folder.
bool copyAccessList(int from, int to, std::string& value) {
  return hasAccessList(from) ? copyAttribute(kAccessList, from, to, value) : removeAccessList(to);
}

bool copyUserAttributes(int from, int to, std::string& list, std::string& value) {
  const ssize_t size = ::flistxattr(from, list.data(), list.size());
  if (size < 0) return isAbsent(errno);
  std::string_view names(list.data(), static_cast<std::size_t>(size));
  while (!names.empty()) {
    const std::string_view name = names.substr(0, names.find('\0'));
    if (name.starts_with("user.") && !copyAttribute(name.data(), from, to, value)) return false;
    names.remove_prefix(name.size() + 1);
  }
  return true;
}

/// Where all files have the same owner and mode, the system may refuse to set them.
bool setOwner(int file, uid_t owner, gid_t group) {
  struct stat now;
  if (::fstat(file, &now) != 0) return false;
  return (now.st_uid == owner && now.st_gid == group) || ::fchown(file, owner, group) == 0;
}

bool hasMode(int file, mode_t mode) {
  struct stat now;
  return ::fstat(file, &now) == 0 && (now.st_mode & ALLPERMS) == mode;
}

/// The system takes off the set-group-ID bit of a group to which the user does not belong, and
/// reports no error.
bool setMode(int file, mode_t mode) {
  if (hasMode(file, mode)) return true;
  if (::fchmod(file, mode) != 0) return false;
  errno = EPERM;
  return hasMode(file, mode);
}

/// Returns those of the rights that everybody keeps when the owner, and perhaps the group, changes:
/// the old owner is one of the group or of the others then, and the old group is one of the others.
mode_t commonRights(mode_t mode, bool keepsGroup) {
  const mode_t owner = (mode >> 6) & 7;
  mode_t group = (mode >> 3) & owner;
  mode_t others = mode & owner;
  if (!keepsGroup) group = others = group & others;
  return (owner << 6) | (group << 3) | others;
}

}  // namespace

bool copyPermissions(int from, int to) {
  // Not on the stack, which may be small, and before anything is changed: there may be no memory.
  std::string list(XATTR_LIST_MAX, '\0');
  std::string value(XATTR_SIZE_MAX, '\0');
  struct stat old;
  // A change of the owner may clear bits of the mode, and a change of the list sets some.
  return ::fstat(from, &old) == 0 && setOwner(to, old.st_uid, old.st_gid) &&
         copyUserAttributes(from, to, list, value) && copyAccessList(from, to, value) &&
         setMode(to, old.st_mode & ALLPERMS);
}

bool restrictPermissions(int from, int to) {
  struct stat old;
  if (::fstat(from, &old) != 0 || !removeAccessList(to)) return false;
  const bool keepsGroup = setOwner(to, ::geteuid(), old.st_gid);
  const mode_t mode = hasAccessList(from) ? old.st_mode & S_IRWXU : old.st_mode;
  return setMode(to, commonRights(mode, keepsGroup));
}

}  // namespace tessera::files
