#include "tessera/inputs/isBinaryFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace tessera::inputs {
namespace {

constexpr std::size_t kExaminedBytes = 8 * 1024;

}  // namespace

bool looksBinary(std::string_view bytes) noexcept {
  return bytes.substr(0, kExaminedBytes).find('\0') != std::string_view::npos;
}

bool isBinaryFile(const std::string& path) noexcept {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return false;
  std::array<char, kExaminedBytes> bytes;
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    size += static_cast<std::size_t>(count);
  }
  ::close(descriptor);
  return looksBinary({bytes.data(), size});
}

}  // namespace tessera::inputs
