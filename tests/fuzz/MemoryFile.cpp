#include "fuzz/MemoryFile.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/require.hpp"

namespace quenlith::fuzz {

MemoryFile::MemoryFile()
    : descriptor(::memfd_create("fuzz", MFD_CLOEXEC)),
      name("/proc/self/fd/" + std::to_string(descriptor)) {
  require(descriptor >= 0, "the system has memory for a file");
}

MemoryFile::~MemoryFile() {
  ::close(descriptor);
}

void MemoryFile::write(std::string_view bytes) {
  const bool isEmptied = ::ftruncate(descriptor, 0) == 0;
  const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), 0);
  require(isEmptied && written == static_cast<ssize_t>(bytes.size()), "the file is written");
}

}  // namespace quenlith::fuzz
