#pragma once

#include <cstdint>
#include <utility>

namespace cppmicroservices {

namespace detail {
class FrameworkListeners;
}

using ListenerTokenId = std::uint64_t;

/// Names one listener that was added, so that it can be removed. Can only be moved.
class ListenerToken {
 public:
  /// Makes a token that names no listener.
  ListenerToken() = default;
  ListenerToken(const ListenerToken&) = delete;
  ListenerToken& operator=(const ListenerToken&) = delete;
  ListenerToken(ListenerToken&& other) noexcept : id(std::exchange(other.id, 0)) {}
  ListenerToken& operator=(ListenerToken&& other) noexcept {
    id = std::exchange(other.id, 0);
    return *this;
  }

  /// Says whether the token names a listener: not after it was moved from.
  explicit operator bool() const { return id != 0; }

 private:
  friend class detail::FrameworkListeners;
  explicit ListenerToken(ListenerTokenId token) : id(token) {}

  ListenerTokenId id = 0;
};

}  // namespace cppmicroservices
