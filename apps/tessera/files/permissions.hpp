#pragma once

namespace tessera::files {

/// Gives the open file `to`, which is to take the place of the open file `from`, its owner, group,
/// mode, POSIX access control list, and the attributes of users ("user.*"). Returns false, with
/// errno, if one of them cannot be kept; those of `to` are unspecified then. Throws std::bad_alloc
/// before it changes anything.
bool copyPermissions(int from, int to);

/// Gives the open file `to`, which then belongs to this user, the group of the open file `from` if
/// possible, and as much of its mode as gives nobody else a right that he does not have on `from`.
/// If `from` has an access control list, only the owner gets rights. Returns false, with errno, on
/// an error.
bool restrictPermissions(int from, int to);

}  // namespace tessera::files
