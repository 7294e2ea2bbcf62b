#pragma once

#include <sys/stat.h>

namespace tessera::files {

/// Gives the open file `to`, which is to take the place of the open file `from`, its owner, group,
/// mode, access control list and the attributes of users ("user.*"). Nobody gets a right that he
/// does not have on `from`.
///
/// Who may not give files away becomes the owner. The group may then be another one as well, but
/// only if the old one has the rights of all others. Returns false, with errno, when something
/// cannot be kept: then nobody but the owner can be sure of his rights.
bool copyPermissions(int from, int to) noexcept;

/// Gives the open file `to` the mode of an old one whose other permissions could not be kept, and
/// no access control list: its group gets only the rights that all others have as well. Returns
/// false, with errno, on an error.
bool limitPermissions(int to, mode_t oldMode) noexcept;

}  // namespace tessera::files
