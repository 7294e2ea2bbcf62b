// readFile FILE: reads a file into memory.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <memory>

#include "programs/ownTime.hpp"

namespace {

bool readAll(const char* path) {
  const int file = open(path, O_RDONLY);
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) return false;
  const auto size = static_cast<std::size_t>(status.st_size);
  // Not initialised: that would be a second pass over the memory.
  const std::unique_ptr<char[]> text(new char[size]);
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t count = read(file, text.get() + filled, size - filled);
    if (count <= 0) break;
    filled += static_cast<std::size_t>(count);
  }
  close(file);
  return filled == size;
}

}  // namespace

int main(int argc, char** argv) {
  bool isRead = false;
  if (argc == 2) bench::programs::printOwnTime([&] { isRead = readAll(argv[1]); });
  return isRead ? 0 : 1;
}
