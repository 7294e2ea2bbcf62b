#pragma once

#include <cstdint>
#include <utility>

namespace cppmicroservices {

namespace detail {
class FrameworkListeners;
}

using ListenerTokenId = std::uint64_t;

/// Identifies one listener that was added, so that it can be removed. Move-only.
class ListenerToken {
 public:
  /// Makes a token without a listener.
  ListenerToken() = default;
  ListenerToken(const ListenerToken&) = delete;
  ListenerToken& operator=(const ListenerToken&) = delete;
  ListenerToken(ListenerToken&& other) noexcept : id(std::exchange(other.id, 0)) {}
  ListenerToken& operator=(ListenerToken&& other) noexcept {
    id = std::exchange(other.id, 0);
    return *this;
  }

  /// Says whether the token has a listener. A moved-from token has none.
  explicit operator bool() const { return id != 0; }

 private:
  friend class detail::FrameworkListeners;
  explicit ListenerToken(ListenerTokenId id) : id(id) {}

  ListenerTokenId id = 0;
};

}  // namespace cppmicroservices
