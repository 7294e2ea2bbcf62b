// writeFile FILE BYTES: writes BYTES bytes to a file.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>

#include "programs/ownTime.hpp"

namespace {

bool writeAll(const char* path, std::size_t size, const std::string& block) {
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (file < 0) return false;
  while (size > 0) {
    const ssize_t count = write(file, block.data(), std::min(size, block.size()));
    if (count <= 0) break;
    size -= static_cast<std::size_t>(count);
  }
  return close(file) == 0 && size == 0;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr std::size_t kBlockBytes = 256 * 1024;
  const std::string block(kBlockBytes, 'x');
  bool isWritten = false;
  if (argc == 3) {
    const std::size_t size = std::strtoull(argv[2], nullptr, 10);
    bench::programs::printOwnTime([&] { isWritten = writeAll(argv[1], size, block); });
  }
  return isWritten ? 0 : 1;
}
