#include "tessera/session/nextBlockVersion.hpp"

#include <atomic>

namespace tessera::session {

std::uint64_t nextBlockVersion() noexcept {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace tessera::session
