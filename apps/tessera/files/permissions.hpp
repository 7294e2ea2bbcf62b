#pragma once

namespace tessera::files {

/// Gives the open file `to`, which is to take the place of the open file `from`, its owner, group,
/// mode, POSIX access control list, and the attributes of users ("user.*"). Returns false, with
/// errno, if one of them cannot be kept; those of `to` are unspecified then.
bool copyPermissions(int from, int to);

/// Gives the open file `to` as much of the permissions of the open file `from` as does not give
/// anybody else a right that he does not have on `from`, although the owner may be another one. If
/// `from` has an access control list, they are for the owner only. Returns false, with errno, on an
/// error.
bool restrictPermissions(int from, int to);

}  // namespace tessera::files
