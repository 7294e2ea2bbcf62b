#include "tessera/files/openBelow.hpp"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

#include "tessera/files/OpenFolder.hpp"

namespace tessera::files {

Descriptor openBelow(const std::string& path, std::size_t followed, int flags) {
  struct open_how how = {};
  how.flags = static_cast<std::uint64_t>(O_RDONLY | O_NONBLOCK | O_CLOEXEC | flags);
  how.resolve = RESOLVE_NO_SYMLINKS;
  const auto number = ::syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof(how));
  if (number >= 0) return Descriptor(static_cast<int>(number));
  // There is a link, perhaps one to follow, or the system does not have that call.
  const OpenFolder folder(path, followed);
  if (!folder.isOpen()) return Descriptor(-1);
  const std::string name = nameOfFile(path);
  return folder.openToRead(name.empty() ? "." : name, flags);
}

}  // namespace tessera::files
