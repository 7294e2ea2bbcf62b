#pragma once

#include <cstdint>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

namespace detail {
class FrameworkListeners;
}

using ListenerTokenId = std::uint64_t;

/// Names one listener that was added, so that it can be removed. Can only be moved.
class QUENLITH_CPPMICROSERVICES_EXPORT ListenerToken {
 public:
  /// Makes a token that names no listener.
  ListenerToken();
  ListenerToken(const ListenerToken&) = delete;
  ListenerToken& operator=(const ListenerToken&) = delete;
  ListenerToken(ListenerToken&& other) noexcept;
  ListenerToken& operator=(ListenerToken&& other) noexcept;

  /// Says whether the token names a listener: not after it was moved from.
  explicit operator bool() const;

 private:
  friend class detail::FrameworkListeners;
  explicit ListenerToken(ListenerTokenId token);

  ListenerTokenId id;
};

}  // namespace cppmicroservices
