#include "tessera/diagnostics/writeAll.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace tessera::diagnostics {
namespace {

bool awaitRoom(int descriptor) noexcept {
  pollfd stream{.fd = descriptor, .events = POLLOUT, .revents = 0};
  return ::poll(&stream, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

int writeAll(int descriptor, std::string_view text) noexcept {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN ? !awaitRoom(descriptor) : errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace tessera::diagnostics
